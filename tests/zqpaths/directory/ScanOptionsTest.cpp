#include "zqpaths/directory/ScanOptions.hpp"

#include <gtest/gtest.h>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

const ScanOptions kAll{{"follow", ""},
                       {"hidden", ""},
                       {"one-file-system", ""},
                       {"exclude", "*.o"},
                       {"exclude", ""},
                       {"type", "f,d"},
                       {"max-depth", "18446744073709551615"}};

TEST(ScanOptions, tellHowAWalkReads) {
    const WalkOptions walk = walkOptionsOf(kAll, 7);
    EXPECT_TRUE(walk.follow);
    EXPECT_FALSE(walk.skipHidden);
    EXPECT_TRUE(walk.oneFileSystem);
    EXPECT_EQ(walk.exclude, (std::vector<std::string>{"*.o", ""}));
    EXPECT_EQ(walk.types, "fd");
    EXPECT_EQ(walk.maxDepth, ~std::uint64_t{0});
    EXPECT_EQ(walk.jobs, 7U);
    EXPECT_EQ(scanOptionsOf(walk), kAll);
}

TEST(ScanOptions, leaveOutWhatIsNotAskedFor) {
    const WalkOptions walk = walkOptionsOf({}, 1);
    EXPECT_FALSE(walk.follow);
    EXPECT_TRUE(walk.skipHidden);
    EXPECT_FALSE(walk.oneFileSystem);
    EXPECT_TRUE(walk.exclude.empty());
    EXPECT_EQ(walk.types, "");
    EXPECT_EQ(walk.maxDepth, std::nullopt);
    EXPECT_EQ(scanOptionsOf(walk), ScanOptions{});
}

TEST(ScanOptions, areOfALaterVersionIfTheySayWhatThisOneDoesNotKnow) {
    for (const ScanOptions& options :
         {ScanOptions{{"follow", ""}, {"sparse", ""}}, ScanOptions{{"", ""}},
          ScanOptions{{"max-depth", "0"}}, ScanOptions{{"max-depth", ""}},
          ScanOptions{{"max-depth", "2 "}}, ScanOptions{{"max-depth", "18446744073709551616"}}}) {
        try {
            walkOptionsOf(options, 1);
            ADD_FAILURE() << textOf(options) << " is taken";
        } catch (const Error& error) {
            EXPECT_EQ(error.kind(), ErrorKind::kNotASet);
            EXPECT_STREQ(error.what(), "is a set that needs a newer version of this program");
        }
    }
}

TEST(ScanOptions, areTextAsTheProgramTakesThem) {
    EXPECT_EQ(textOf({}), "no options");
    EXPECT_EQ(textOf({{"follow", ""}, {"exclude", "*.o"}}), "--follow --exclude *.o");
}

}  // namespace
}  // namespace zqpaths
