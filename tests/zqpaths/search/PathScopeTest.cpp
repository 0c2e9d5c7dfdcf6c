#include "zqpaths/search/PathScope.hpp"

#include <gtest/gtest.h>

namespace zqpaths {
namespace {

TEST(PathScope, takesWholeNames) {
    const PathScope scope("/usr/lib");
    EXPECT_TRUE(scope.contains("/usr/lib/x"));
    EXPECT_TRUE(scope.contains("/usr/lib"));
    EXPECT_FALSE(scope.contains("/usr/library/x"));
    EXPECT_FALSE(scope.contains("/usr/li"));
    EXPECT_FALSE(scope.contains("/usr"));
    EXPECT_FALSE(scope.contains("/opt/usr/lib/x"));
}

TEST(PathScope, doesNotCountSeparators) {
    for (const char* folder : {"a/b", "a/b/", "a//b", "a/b///"}) {
        const PathScope scope(folder);
        EXPECT_TRUE(scope.contains("a/b/c")) << folder;
        EXPECT_TRUE(scope.contains("a//b///c")) << folder;
        EXPECT_FALSE(scope.contains("a/bc")) << folder;
    }
}

TEST(PathScope, tellsPathsFromTheRootFromOthers) {
    EXPECT_FALSE(PathScope("/a").contains("a/b"));
    EXPECT_FALSE(PathScope("a").contains("/a/b"));
    EXPECT_TRUE(PathScope("/").contains("/a/b"));
    EXPECT_TRUE(PathScope("/").contains("//a"));
    EXPECT_FALSE(PathScope("/").contains("a/b"));
}

TEST(PathScope, withoutFolderHoldsAllPaths) {
    const PathScope scope("");
    EXPECT_TRUE(scope.contains("/a"));
    EXPECT_TRUE(scope.contains("a"));
    EXPECT_TRUE(scope.contains("/"));
}

TEST(PathScope, countsTheNamesBehindItsFolder) {
    const PathScope scope("a", 2);
    EXPECT_TRUE(scope.contains("a/b"));
    EXPECT_TRUE(scope.contains("a/b/c"));
    EXPECT_TRUE(scope.contains("a/b//c/"));
    EXPECT_FALSE(scope.contains("a/b/c/d"));
    EXPECT_TRUE(PathScope("a", 0).contains("a"));
    EXPECT_FALSE(PathScope("a", 0).contains("a/b"));
    EXPECT_TRUE(PathScope("", 1).contains("/a"));
    EXPECT_FALSE(PathScope("", 1).contains("a/b"));
}

}  // namespace
}  // namespace zqpaths
