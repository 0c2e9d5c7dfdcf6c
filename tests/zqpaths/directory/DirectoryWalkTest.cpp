#include "zqpaths/directory/DirectoryWalk.hpp"

#include <dirent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/OrdinaryUser.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/directory/Walked.hpp"

namespace zqpaths {
namespace {

using test_support::OrdinaryUser;
using test_support::TemporaryTree;
using testing::ElementsAre;
using testing::IsEmpty;

/// What was walked in a tree, without the tree's own path.
std::vector<std::string> below(const TemporaryTree& tree, const Walked& walked) {
    std::vector<std::string> names;
    for (const std::string& path : walked.paths) {
        EXPECT_TRUE(path.starts_with(tree.path() + '/')) << path;
        names.push_back(path.substr(tree.path().size() + 1));
    }
    return names;
}

TEST(DirectoryWalk, givesFilesInByteOrderBeforeSubdirectories) {
    const TemporaryTree tree;
    for (const char* name : {"b/z", "b/a/q", "a/x", "z", "B", "a.txt", "\xFF", "\x01"})
        tree.addFile(name);
    const Walked walked = walkWhole(tree.path());
    EXPECT_THAT(below(tree, walked),
                ElementsAre("\x01", "B", "a.txt", "z", "\xFF", "a/x", "b/z", "b/a/q"));
    EXPECT_THAT(walked.errors, IsEmpty());
}

TEST(DirectoryWalk, givesNothingForAnEmptyDirectory) {
    const TemporaryTree tree;
    tree.addDirectory("a/b");
    const Walked walked = walkWhole(tree.path());
    EXPECT_THAT(walked.paths, IsEmpty());
    EXPECT_THAT(walked.errors, IsEmpty());
}

TEST(DirectoryWalk, givesNamesOfAnyBytes) {
    const TemporaryTree tree;
    const std::string longest(255, 'l');
    for (const std::string& name : {std::string("new\nline"), std::string("\xC3("), longest,
                                    std::string("-rf"), std::string("\xF0\x9F\x98\x80")})
        tree.addFile(name);
    EXPECT_THAT(below(tree, walkWhole(tree.path())),
                ElementsAre("-rf", longest, "new\nline", "\xC3(", "\xF0\x9F\x98\x80"));
}

TEST(DirectoryWalk, givesSymbolicLinksWithoutFollowingThem) {
    const TemporaryTree tree;
    tree.addFile("a/x");
    tree.addSymbolicLink("loop", ".");
    tree.addSymbolicLink("nowhere", "none");
    EXPECT_THAT(below(tree, walkWhole(tree.path())), ElementsAre("loop", "nowhere", "a/x"));
}

TEST(DirectoryWalk, followsTheRootAndEndsItWithOneSeparator) {
    const TemporaryTree tree;
    tree.addFile("a/x");
    tree.addSymbolicLink("link", "a");
    EXPECT_THAT(walkWhole(tree.pathOf("link")).paths, ElementsAre(tree.pathOf("link/x")));
    EXPECT_THAT(walkWhole(tree.pathOf("a/")).paths, ElementsAre(tree.pathOf("a/x")));
    EXPECT_THAT(walkWhole(tree.pathOf("a//")).paths, ElementsAre(tree.pathOf("a//x")));
}

TEST(DirectoryWalk, reportsARootThatIsNoDirectory) {
    const TemporaryTree tree;
    const std::string file = tree.addFile("file");
    EXPECT_THAT(walkWhole(file).errors, ElementsAre(file + ": Not a directory"));
    const std::string none = tree.pathOf("none");
    EXPECT_THAT(walkWhole(none).errors, ElementsAre(none + ": No such file or directory"));
    EXPECT_THAT(walkWhole("").errors, ElementsAre(": No such file or directory"));
}

TEST(DirectoryWalk, goesThreeThousandLevelsDownAndBackWithFewOpenFiles) {
    constexpr std::size_t kLevels = 3000;
    const TemporaryTree tree;
    tree.addDeepLevels(kLevels, "below", "beside");

    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit few = before;
    few.rlim_cur = 100;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    const Walked walked = walkWhole(tree.path(), {.jobs = 4});
    const Walked alone = walkWhole(tree.path());
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(walked.paths, alone.paths);

    EXPECT_THAT(walked.errors, IsEmpty());
    const std::vector<std::string> names = below(tree, walked);
    ASSERT_EQ(names.size(), kLevels + 1);
    const auto levelsDown = [](std::size_t levels) {
        std::string path;
        for (; levels > 0; --levels) path += "below/";
        return path;
    };
    EXPECT_EQ(names[0], levelsDown(kLevels) + "f");
    for (std::size_t i = 1; i < names.size(); ++i)
        ASSERT_EQ(names[i], levelsDown(kLevels - i) + "beside/f");
}

TEST(DirectoryWalk, goesThroughAPathOfHundredsOfKilobytes) {
    constexpr std::size_t kLevels = 1000;
    const TemporaryTree tree;
    tree.addDeepLevels(kLevels, std::string(255, 'a'), "b");
    const Walked walked = walkWhole(tree.path());
    EXPECT_THAT(walked.errors, IsEmpty());
    ASSERT_EQ(walked.paths.size(), kLevels + 1);
    EXPECT_EQ(walked.paths[0].size(), tree.path().size() + kLevels * 256 + 2);
}

TEST(DirectoryWalk, reportsAnUnreadableDirectoryAndGoesOn) {
    const TemporaryTree tree;
    for (const char* name : {"a/x", "closed/y", "z/x"}) tree.addFile(name);
    tree.allow("closed", 0);
    const OrdinaryUser user;
    if (::geteuid() == 0) GTEST_SKIP() << "root reads every directory, and cannot step down here";

    const Walked walked = walkWhole(tree.path());
    EXPECT_THAT(below(tree, walked), ElementsAre("a/x", "z/x"));
    EXPECT_THAT(walked.errors, ElementsAre(tree.pathOf("closed") + ": Permission denied"));
}

TEST(DirectoryWalk, listsADirectoryThatCannotBeEntered) {
    const TemporaryTree tree;
    for (const char* name : {"listed/x", "listed/sub/y", "z"}) tree.addFile(name);
    tree.allow("listed", 0444);
    const OrdinaryUser user;
    if (::geteuid() == 0) GTEST_SKIP() << "root enters every directory, and cannot step down here";

    const Walked walked = walkWhole(tree.path());
    EXPECT_THAT(below(tree, walked), ElementsAre("z", "listed/x"));
    EXPECT_THAT(walked.errors, ElementsAre(tree.pathOf("listed/sub") + ": Permission denied"));
}

TEST(DirectoryWalk, givesTheSameForAnyNumberOfThreads) {
    const TemporaryTree tree;
    std::mt19937 random(7);
    const auto name = [&random] { return std::string(1, static_cast<char>('a' + random() % 6)); };
    for (int i = 0; i < 2000; ++i) {
        std::string folder = name();
        for (auto depth = random() % 5; depth > 0; --depth) folder += "/" + name();
        tree.addFile(folder + "/" + std::to_string(random() % 100));
    }
    tree.allow("b", 0);
    const OrdinaryUser user;
    const Walked alone = walkWhole(tree.path());
    ASSERT_GT(alone.paths.size(), 1000U);
    for (const unsigned jobs : {0U, 2U, 3U, 8U, 1000U}) {
        const Walked together = walkWhole(tree.path(), {.jobs = jobs});
        EXPECT_EQ(together.paths, alone.paths) << jobs;
        EXPECT_EQ(together.errors, alone.errors) << jobs;
    }
}

TEST(DirectoryWalk, endsWithItsThreadsWhenACallbackThrows) {
    const TemporaryTree tree;
    for (int i = 0; i < 200; ++i) tree.addFile(std::to_string(i) + "/a/x");
    std::size_t count = 0;
    const auto throwAtTheTenth = [&count](std::string_view) {
        if (++count == 10) throw std::runtime_error("enough");
    };
    EXPECT_THROW(walkDirectory(tree.path(), {.jobs = 4}, throwAtTheTenth,
                               [](std::string_view, std::string_view) { FAIL(); }),
                 std::runtime_error);
    EXPECT_EQ(count, 10U);
}

TEST(DirectoryWalk, leavesOutHiddenNamesBelowTheRoot) {
    const TemporaryTree tree;
    for (const char* name : {".root/.x", ".root/.a/y", ".root/b/z", ".root/b/.z", ".root/..."})
        tree.addFile(name);
    const std::string root = tree.pathOf(".root");
    EXPECT_THAT(walkWhole(root, {.skipHidden = true}).paths, ElementsAre(root + "/b/z"));
    EXPECT_EQ(walkWhole(root).paths.size(), 5U);
}

TEST(DirectoryWalk, followsLinksToDirectoriesInTheOrderOfTheirNames) {
    const TemporaryTree tree;
    for (const char* name : {"root/a/x", "root/c/x", "other/y"}) tree.addFile(name);
    tree.addSymbolicLink("root/b", "../other");
    tree.addSymbolicLink("root/file", "a/x");
    tree.addSymbolicLink("root/nowhere", "none");
    const Walked walked = walkWhole(tree.pathOf("root"), {.follow = true, .jobs = 2});
    EXPECT_THAT(below(tree, walked),
                ElementsAre("root/file", "root/nowhere", "root/a/x", "root/b/y", "root/c/x"));
    EXPECT_THAT(walked.errors, IsEmpty());
}

TEST(DirectoryWalk, reportsALoopOfLinksAndGoesOn) {
    const TemporaryTree tree;
    for (const char* name : {"a/root/x", "a/root/z/x"}) tree.addFile(name);
    tree.addSymbolicLink("a/root/self", ".");
    tree.addSymbolicLink("a/root/up", "..");
    const std::string root = tree.pathOf("a/root");
    const Walked walked = walkWhole(root, {.follow = true});
    EXPECT_THAT(below(tree, walked), ElementsAre("a/root/x", "a/root/z/x"));
    EXPECT_THAT(walked.errors,
                ElementsAre(root + "/self: is " + root + ", in which it is: a loop",
                            root + "/up/root: is " + root + ", in which it is: a loop"));
}

TEST(DirectoryWalk, reportsALinkThatLeadsBackBelowTheRoot) {
    const TemporaryTree tree;
    tree.addFile("a/b/x");
    tree.addSymbolicLink("a/b/up", "..");
    const std::string a = tree.pathOf("a");
    const Walked walked = walkWhole(tree.path(), {.follow = true});
    EXPECT_THAT(below(tree, walked), ElementsAre("a/b/x"));
    EXPECT_THAT(walked.errors, ElementsAre(a + "/b/up: is " + a + ", in which it is: a loop"));
}

TEST(DirectoryWalk, givesWhatTwoLinksLeadToTwice) {
    const TemporaryTree tree;
    tree.addFile("data/x");
    tree.addSymbolicLink("one", "data");
    tree.addSymbolicLink("two", "data");
    const Walked walked = walkWhole(tree.path(), {.follow = true});
    EXPECT_THAT(below(tree, walked), ElementsAre("data/x", "one/x", "two/x"));
    EXPECT_THAT(walked.errors, IsEmpty());
}

TEST(DirectoryWalk, staysOnTheFileSystemOfTheRoot) {
    struct stat treeStatus {};
    struct stat otherStatus {};
    const TemporaryTree tree;
    ASSERT_EQ(::stat(tree.path().c_str(), &treeStatus), 0);
    if (::stat("/proc/self/fd", &otherStatus) != 0 || otherStatus.st_dev == treeStatus.st_dev)
        GTEST_SKIP() << "there is no second file system here";
    tree.addFile("a/x");
    tree.addSymbolicLink("other", "/proc/self/fd");
    const WalkOptions options{.follow = true, .oneFileSystem = true};
    const Walked walked = walkWhole(tree.path(), options);
    EXPECT_THAT(below(tree, walked), ElementsAre("a/x"));
    EXPECT_THAT(walked.errors, IsEmpty());
    EXPECT_GT(walkWhole(tree.path(), {.follow = true}).paths.size(), 1U);
}

TEST(DirectoryWalk, reportsDirectoriesThatVanishDuringTheWalkAndGoesOn) {
    const TemporaryTree tree;
    tree.addDeepLevels(200, "below", "beside");
    tree.addFile("later/x");
    std::vector<std::string> paths;
    std::size_t errorCount = 0;
    walkDirectory(
        tree.path(), {},
        [&](std::string_view path) {
            // At the lowest file the way back up is taken away, from the second level down.
            if (paths.empty())
                std::filesystem::rename(tree.pathOf("below/below"), tree.pathOf("below/moved"));
            paths.emplace_back(path);
        },
        [&](std::string_view, std::string_view reason) {
            EXPECT_EQ(reason, "No such file or directory");
            ++errorCount;
        });
    EXPECT_GT(errorCount, 0U);
    EXPECT_EQ(paths.size() + errorCount, 202U);
    EXPECT_EQ(paths.back(), tree.pathOf("later/x"));
}

}  // namespace
}  // namespace zqpaths
