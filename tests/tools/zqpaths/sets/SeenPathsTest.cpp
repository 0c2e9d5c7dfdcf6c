#include "tools/zqpaths/sets/SeenPaths.hpp"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

namespace zqpaths::program {
namespace {

TEST(SeenPaths, tellsTheFirstTimeFromLaterOnes) {
    SeenPaths seen;
    EXPECT_TRUE(seen.insert("a"));
    EXPECT_TRUE(seen.insert("a/"));
    EXPECT_FALSE(seen.insert("a"));
    EXPECT_FALSE(seen.insert("a/"));
    EXPECT_TRUE(seen.insert("A"));
}

TEST(SeenPaths, tellsTheSameAsASetOfStringsWhileItGrows) {
    SeenPaths seen;
    std::set<std::string> model;
    std::mt19937 random(7);
    for (int i = 0; i < 100'000; ++i) {
        const std::string path = std::to_string(random() % 50'000);
        ASSERT_EQ(seen.insert(path), model.insert(path).second) << path;
    }
}

}  // namespace
}  // namespace zqpaths::program
