#include "compressedpaths/store/Hashing.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace compressedpaths {
namespace {

TEST(Hashing, hasOneSeedInAProcess) {
    EXPECT_EQ(processSeed(), processSeed());
}

TEST(HashingDeathTest, hasAnotherSeedInEachProcess) {
    // One thread alone. NOLINTBEGIN(concurrency-mt-unsafe)
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // which starts the program anew
    ::setenv("ZQ_FIRST_SEED", std::to_string(processSeed()).c_str(), 0);  // the second keeps it
    EXPECT_EXIT(std::exit(std::getenv("ZQ_FIRST_SEED") == std::to_string(processSeed()) ? 1 : 0),
                ::testing::ExitedWithCode(0), "");
    ::unsetenv("ZQ_FIRST_SEED");
    // NOLINTEND(concurrency-mt-unsafe)
}

TEST(Hashing, dependsOnTheSeed) {
    EXPECT_EQ(hashOf("name", 4, 1), hashOf("name", 4, 1));
    EXPECT_NE(hashOf("name", 4, 1), hashOf("name", 4, 2));
    EXPECT_NE(hashOf(3, 4, 1), hashOf(3, 4, 2));
}

}  // namespace
}  // namespace compressedpaths
