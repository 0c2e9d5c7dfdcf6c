#include "zqpaths/search/PathsUnder.hpp"

#include <gtest/gtest.h>

#include "tests/zqpaths/SegmentedSets.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"
#include "zqpaths/search/PathScope.hpp"

namespace zqpaths {
namespace {

using Paths = std::vector<std::string>;

/// The paths that a set gives for a folder, which must be those of the scope.
Paths pathsUnder(const SegmentedSet& made, const std::string& folder) {
    const PathScope scope(folder);
    const auto visited = visitedBy([&](auto visit) { made.open().under(folder, visit); });
    EXPECT_EQ(visited, numberedWhere(made.paths(),
                                     [&](const std::string& path) { return scope.contains(path); }))
        << folder;
    Paths paths;
    for (const auto& [number, path] : visited) paths.push_back(path);
    return paths;
}

TEST(PathsUnder, areThoseInTheFolderAndBelow) {
    const SegmentedSet made({{SegmentForm::kImage,
                              {"/usr/lib/x", "/usr/bin/y", "/usr/lib/deep/er/z", "/usr/library/x"}},
                             {SegmentForm::kPacked, {"/usr/lib", "usr/lib/x", "/usr/lib/w"}}});
    EXPECT_EQ(pathsUnder(made, "/usr/lib"),
              (Paths{"/usr/lib/x", "/usr/lib/deep/er/z", "/usr/lib", "/usr/lib/w"}));
    EXPECT_EQ(pathsUnder(made, "/usr/lib/deep"), Paths{"/usr/lib/deep/er/z"});
    EXPECT_EQ(pathsUnder(made, "usr"), Paths{"usr/lib/x"});
    EXPECT_EQ(pathsUnder(made, "/").size(), 6U);
    EXPECT_EQ(pathsUnder(made, "").size(), 7U);
    EXPECT_EQ(pathsUnder(made, "/us"), Paths{});
    EXPECT_EQ(pathsUnder(made, "lib"), Paths{});
}

TEST(PathsUnder, doNotDependOnHowManySeparatorsStandTogether) {
    const SegmentedSet made({{SegmentForm::kImage,
                              {"a/b/c", "a//b/c", "a/b//c", "a//b", "a/b/", "a/b///", "a///b//c/d",
                               "/a/b/c", "a/bc", "a", "a/", "//a/b"}}});
    for (const char* const folder : {"a/b", "a/b/", "a//b", "a/b///", "a///b//"})
        EXPECT_EQ(pathsUnder(made, folder).size(), 7U) << folder;
    EXPECT_EQ(pathsUnder(made, "a").size(), 10U);
    EXPECT_EQ(pathsUnder(made, "/a/b"), (Paths{"/a/b/c", "//a/b"}));
    EXPECT_EQ(pathsUnder(made, "//"), (Paths{"/a/b/c", "//a/b"}));
}

TEST(PathsUnder, mayBePathsWithoutFolder) {
    const SegmentedSet made({{SegmentForm::kImage, {"/", "//", "a", "b/", "b//", "ab"}}});
    EXPECT_EQ(pathsUnder(made, "/"), (Paths{"/", "//"}));
    EXPECT_EQ(pathsUnder(made, "b"), (Paths{"b/", "b//"}));
    EXPECT_EQ(pathsUnder(made, "a"), Paths{"a"});
}

// Few are found folder by folder, many by a look at all entries.
TEST(PathsUnder, areFoundWhereTheFolderHoldsMuchOfTheSet) {
    Paths paths;
    for (int i = 0; i < 3000; ++i)
        paths.push_back("dir" + std::to_string(i % 3) + "/sub" + std::to_string(i % 200) + "/file" +
                        std::to_string(i));
    const SegmentedSet made({{SegmentForm::kImage, paths}});
    EXPECT_EQ(pathsUnder(made, "dir1").size(), 1000U);
    EXPECT_EQ(pathsUnder(made, "dir1/sub7").size(), 5U);
}

TEST(PathsUnder, areThoseOfTheScopeWhateverThePathsAre) {
    std::mt19937 random(6);
    std::size_t count = 0;
    for (unsigned seed = 0; seed < 10; ++seed) {
        Paths paths = randomPaths(500, seed);
        for (const std::string& path : separatorPaths(5)) paths.push_back(path);
        const SegmentedSet made = SegmentedSet::ofPaths(paths, 1 + seed % 4, random);
        for (std::size_t i = seed % 5; i < paths.size(); i += 5) {
            const std::string& path = paths[i];
            const std::string folder = path.substr(0, 1 + random() % path.size());
            count += pathsUnder(made, folder).size();
        }
        if (HasFailure()) return;
    }
    EXPECT_GT(count, 10000U);
}

}  // namespace
}  // namespace zqpaths
