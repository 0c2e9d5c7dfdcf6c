#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/OrdinaryUser.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/directory/Walked.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"

namespace zqpaths {
namespace {

using test_support::OrdinaryUser;
using test_support::TemporaryTree;
using testing::ElementsAre;
using testing::IsEmpty;

/// What is directly in a directory, or all; returns its sub-directories.
std::vector<std::string> addPart(const std::string& root, const WalkPart& part,
                                 const WalkOptions& options, Walked& walked) {
    std::vector<std::string> subdirectories;
    WalkVisitors visitors = into(walked);
    visitors.onSubdirectory = [&](std::string_view name) { subdirectories.emplace_back(name); };
    walked.leftOut += walkPart(root, part, options, visitors);
    return subdirectories;
}

/// All of a directory, with all those down to `levels` below the root each as a part of its own.
void addParts(const std::string& root, const WalkPart& part, const WalkOptions& options,
              std::size_t levels, Walked& walked) {
    if (part.names.size() >= levels) {
        EXPECT_THAT(addPart(root, {part.names, true}, options, walked), IsEmpty());
        return;
    }
    for (const std::string& name : addPart(root, {part.names, false}, options, walked)) {
        WalkPart below = part;
        below.names.push_back(name);
        addParts(root, below, options, levels, walked);
    }
}

void expectThatPartsAreTheWhole(const std::string& root, const WalkOptions& options) {
    const Walked whole = walkWhole(root, options);
    ASSERT_FALSE(whole.paths.empty());
    for (const std::size_t levels : {0U, 1U, 2U, 3U, 9U}) {
        Walked walked;
        addParts(root, {}, options, levels, walked);
        EXPECT_EQ(walked.paths, whole.paths) << levels;
        EXPECT_EQ(walked.errors, whole.errors) << levels;
        EXPECT_EQ(walked.leftOut, whole.leftOut) << levels;
    }
}

/// Directories of one letter, five levels deep, with files of some numbers.
void addRandomTree(const TemporaryTree& tree) {
    std::mt19937 random(7);
    const auto name = [&random] { return std::string(1, static_cast<char>('a' + random() % 5)); };
    for (int i = 0; i < 1000; ++i) {
        std::string folder = name();
        for (auto depth = random() % 5; depth > 0; --depth) folder += "/" + name();
        const std::string dot = random() % 8 == 0 ? "." : "";
        tree.addFile(folder + "/" + dot + std::to_string(random() % 50));
    }
}

TEST(WalkPart, isADirectoryAloneOrWithAllBelowIt) {
    const TemporaryTree tree;
    for (const char* name : {"x", "a/y", "a/b/z", "a/b/c/w", "d/v"}) tree.addFile(name);
    const auto pathsOf = [&tree](const WalkPart& part) {
        Walked walked;
        addPart(tree.path(), part, {}, walked);
        return walked.paths;
    };
    EXPECT_THAT(pathsOf({{}, false}), ElementsAre(tree.pathOf("x")));
    EXPECT_THAT(pathsOf({{"a"}, false}), ElementsAre(tree.pathOf("a/y")));
    EXPECT_THAT(pathsOf({{"a", "b"}, true}),
                ElementsAre(tree.pathOf("a/b/z"), tree.pathOf("a/b/c/w")));
}

TEST(WalkPart, tellsTheSubdirectoriesThatAreWalkedInByteOrder) {
    const TemporaryTree tree;
    for (const char* name : {"b", "a", ".c", "d", "\xFF"}) tree.addDirectory(name);
    Walked walked;
    EXPECT_THAT(addPart(tree.path(), {{}, false}, {.skipHidden = true, .exclude = {"d"}}, walked),
                ElementsAre("a", "b", "\xFF"));
    EXPECT_EQ(walked.leftOut.hidden, 1U);
    EXPECT_EQ(walked.leftOut.excluded, 1U);
}

TEST(WalkPart, givesTogetherWithOthersWhatTheWholeWalkGives) {
    const TemporaryTree tree;
    addRandomTree(tree);
    tree.allow("b/a", 0);
    tree.allow("c", 0);
    const OrdinaryUser user;
    expectThatPartsAreTheWhole(tree.path(), {});
    expectThatPartsAreTheWhole(tree.path() + "/", {.jobs = 3});
    expectThatPartsAreTheWhole(tree.path(), {.skipHidden = true});
    expectThatPartsAreTheWhole(tree.path(), {.types = "fd"});
}

TEST(WalkPart, takesPatternsAndDepthFromTheRootOn) {
    const TemporaryTree tree;
    addRandomTree(tree);
    expectThatPartsAreTheWhole(tree.path(), {.exclude = {"/a/b", "b/c/", "/d/*/1*", "!/d/a/1?"}});
    for (const std::uint64_t depth : {1U, 2U, 3U, 4U, 5U}) {
        if (depth == 1) tree.addFile("at the top");
        expectThatPartsAreTheWhole(tree.path(), {.maxDepth = depth});
        expectThatPartsAreTheWhole(tree.path(), {.types = "d", .maxDepth = depth});
    }
}

TEST(WalkPart, findsLoopsThatLeadAboveIt) {
    const TemporaryTree tree;
    addRandomTree(tree);
    tree.addSymbolicLink("a/to root", "..");
    tree.addSymbolicLink("a/b/to a", "..");
    tree.addSymbolicLink("a/b/to d", "../../d");
    tree.addSymbolicLink("d/to itself", ".");
    ASSERT_GE(walkWhole(tree.path(), {.follow = true}).errors.size(), 3U);
    expectThatPartsAreTheWhole(tree.path(), {.follow = true, .jobs = 2});
}

TEST(WalkPart, staysOnTheFileSystemOfTheRoot) {
    struct stat treeStatus {};
    struct stat otherStatus {};
    const TemporaryTree tree;
    ASSERT_EQ(::stat(tree.path().c_str(), &treeStatus), 0);
    if (::stat("/proc/self/fd", &otherStatus) != 0 || otherStatus.st_dev == treeStatus.st_dev)
        GTEST_SKIP() << "there is no second file system here";
    tree.addFile("a/x");
    tree.addSymbolicLink("a/other", "/proc/self/fd");
    const WalkOptions options{.follow = true, .oneFileSystem = true};
    expectThatPartsAreTheWhole(tree.path(), options);
    Walked walked;
    addPart(tree.path(), {{"a", "other"}, true}, options, walked);
    EXPECT_EQ(walked.leftOut.onOtherFileSystems, 1U);
    EXPECT_THAT(walked.paths, IsEmpty());
}

TEST(WalkPart, reportsThatItIsNotThereAnyMore) {
    const TemporaryTree tree;
    tree.addFile("a/x");
    Walked walked;
    addPart(tree.path(), {{"none", "b"}, true}, {}, walked);
    EXPECT_THAT(walked.errors, ElementsAre(tree.pathOf("none/b") + ": No such file or directory"));
    EXPECT_THAT(walked.paths, IsEmpty());
}

}  // namespace
}  // namespace zqpaths
