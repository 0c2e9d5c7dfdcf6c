#include "zqpaths/set/CollectedPaths.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zqpaths {
namespace {

TEST(CollectedPaths, areEmptyAtFirst) {
    const CollectedPaths paths;
    EXPECT_TRUE(paths.isEmpty());
    EXPECT_EQ(paths.size(), 0U);
    EXPECT_EQ(paths.textSize(), 0U);
}

TEST(CollectedPaths, giveBackWhatWasAppended) {
    CollectedPaths paths;
    paths.append("usr/bin/env");
    paths.append("x");
    paths.append("\xFF");
    ASSERT_EQ(paths.size(), 3U);
    EXPECT_EQ(paths[0], "usr/bin/env");
    EXPECT_EQ(paths[1], "x");
    EXPECT_EQ(paths[2], "\xFF");
    EXPECT_EQ(paths.textSize(), 11U + 1 + 1 + 3);
}

TEST(CollectedPaths, canBeFilledAgain) {
    CollectedPaths paths;
    paths.append("usr/bin/env");
    paths.clear();
    EXPECT_TRUE(paths.isEmpty());
    paths.append("new");
    EXPECT_EQ(paths[0], "new");
    EXPECT_EQ(paths.textSize(), 4U);
}

TEST(CollectedPaths, moveWithTheirContent) {
    CollectedPaths paths;
    paths.append("a");
    CollectedPaths others;
    others.append("b");
    std::swap(paths, others);
    EXPECT_EQ(paths[0], "b");
    EXPECT_EQ(others[0], "a");
}

TEST(CollectedPaths, endAtTheMostPaths) {
    CollectedPaths paths;
    while (paths.hasRoomFor("f")) paths.append("f");
    EXPECT_EQ(paths.size(), CollectedPaths::kMaxPaths);
}

TEST(CollectedPaths, endAtTheMostText) {
    CollectedPaths paths;
    const std::string path(std::size_t{1} << 20, 'x');
    while (paths.hasRoomFor(path)) paths.append(path);
    EXPECT_EQ(paths.size(), 64U);
    EXPECT_EQ(paths.textSize(), CollectedPaths::kMaxTextSize + 64);
    EXPECT_FALSE(paths.hasRoomFor("x"));
}

TEST(CollectedPaths, haveRoomForOnePathHoweverLong) {
    CollectedPaths paths;
    const std::string path(CollectedPaths::kMaxTextSize + 1, 'x');
    EXPECT_TRUE(paths.hasRoomFor(path));
    paths.append(path);
    EXPECT_EQ(paths[0], path);
    EXPECT_FALSE(paths.hasRoomFor("x"));
}

TEST(CollectedPaths, endAtTheMostFolders) {
    CollectedPaths paths;
    std::size_t made = 0;
    const auto next = [&made] {
        return "a/" + std::to_string(made) + "/b/c/d/e/f/g/h/i/j/k/l/file";
    };
    for (; paths.hasRoomFor(next()); ++made) paths.append(next());
    EXPECT_LT(paths.size(), CollectedPaths::kMaxFolders / 10);
    EXPECT_GT(paths.size(), CollectedPaths::kMaxFolders / 14);
}

TEST(CollectedPaths, countAFolderThatIsMetAgainOnce) {
    std::vector<std::string> some;
    some.reserve(1000);
    for (int i = 0; i < 1000; ++i) some.push_back("a/b/c/d/e/f/g/" + std::to_string(i) + "/h/file");
    CollectedPaths paths;
    while (paths.hasRoomFor(some[paths.size() % 1000])) paths.append(some[paths.size() % 1000]);
    EXPECT_EQ(paths.size(), CollectedPaths::kMaxPaths);
}

}  // namespace
}  // namespace zqpaths
