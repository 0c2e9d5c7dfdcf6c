// What a walk leaves out, and that it counts it.

#include "zqpaths/directory/EntryFilter.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths {
namespace {

using test_support::TemporaryTree;
using testing::ElementsAre;

class EntryFilterTest : public testing::Test {
protected:
    /// The names below the tree; what is left out is in `leftOut_`.
    std::vector<std::string> walk(const WalkOptions& options) {
        std::vector<std::string> names;
        leftOut_ = walkDirectory(
            tree_.path(), options,
            [&](std::string_view path) {
                names.emplace_back(path.substr(tree_.path().size() + 1));
            },
            [](std::string_view path, std::string_view reason) { FAIL() << path << reason; });
        return names;
    }

    TemporaryTree tree_;
    LeftOutNames leftOut_;
};

TEST_F(EntryFilterTest, countsHiddenNamesAndDoesNotLookIntoThem) {
    for (const char* name : {"a", ".b", ".c/x", ".c/y", "d/.e"}) tree_.addFile(name);
    EXPECT_THAT(walk({.skipHidden = true}), ElementsAre("a"));
    EXPECT_EQ(leftOut_, (LeftOutNames{.hidden = 3}));
    EXPECT_THAT(walk({}), ElementsAre(".b", "a", ".c/x", ".c/y", "d/.e"));
    EXPECT_EQ(leftOut_, LeftOutNames{});
}

TEST_F(EntryFilterTest, excludesByTheNamesFromTheRootOn) {
    for (const char* name : {"a.o", "b", "src/a.o", "src/b", "src/build/x", "build/keep"})
        tree_.addFile(name);
    for (const unsigned jobs : {1U, 4U}) {
        EXPECT_THAT(walk({.jobs = jobs, .exclude = {"*.o", "build/", "!/build/"}}),
                    ElementsAre("b", "build/keep", "src/b"));
        EXPECT_EQ(leftOut_, (LeftOutNames{.excluded = 3}));
    }
    EXPECT_THAT(walk({.exclude = {"/src/b", "/*.o"}}),
                ElementsAre("b", "build/keep", "src/a.o", "src/build/x"));
}

TEST_F(EntryFilterTest, doesNotEnterWhatIsExcluded) {
    tree_.addFile("closed/x");
    tree_.addFile("open/x");
    // The walk would tell of a loop.
    tree_.addSymbolicLink("open/loop", "..");
    EXPECT_THAT(walk({.follow = true, .exclude = {"closed", "loop/"}}), ElementsAre("open/x"));
    EXPECT_EQ(leftOut_, (LeftOutNames{.excluded = 2}));
}

TEST_F(EntryFilterTest, takesTheTypesThatAreAskedFor) {
    tree_.addFile("a/file");
    tree_.addSymbolicLink("a/link", "file");
    tree_.addSymbolicLink("a/to-a-directory", ".");
    tree_.addDirectory("a/empty");
    ASSERT_EQ(::mkfifo(tree_.pathOf("a/pipe").c_str(), 0600), 0);

    EXPECT_THAT(walk({}), ElementsAre("a/file", "a/link", "a/pipe", "a/to-a-directory"));
    EXPECT_EQ(leftOut_, LeftOutNames{});
    EXPECT_THAT(walk({.types = "f"}), ElementsAre("a/file"));
    EXPECT_EQ(leftOut_, (LeftOutNames{.ofOtherTypes = 3}));
    EXPECT_THAT(walk({.types = "l"}), ElementsAre("a/link", "a/to-a-directory"));
    EXPECT_THAT(walk({.types = "d"}), ElementsAre("a", "a/empty"));
    EXPECT_THAT(walk({.types = "dfl"}),
                ElementsAre("a", "a/empty", "a/file", "a/link", "a/to-a-directory"));
}

TEST_F(EntryFilterTest, goesNoDeeperThanTold) {
    for (const char* name : {"1", "a/2", "a/b/3", "a/b/c/4", "d/2"}) tree_.addFile(name);
    EXPECT_THAT(walk({.maxDepth = 1}), ElementsAre("1"));
    EXPECT_EQ(leftOut_, (LeftOutNames{.tooDeep = 2}));
    EXPECT_THAT(walk({.types = "df", .maxDepth = 2}),
                ElementsAre("1", "a", "d", "a/2", "a/b", "d/2"));
    EXPECT_EQ(leftOut_, (LeftOutNames{.tooDeep = 1}));
    EXPECT_THAT(walk({.maxDepth = 4}), ElementsAre("1", "a/2", "a/b/3", "a/b/c/4", "d/2"));
    EXPECT_EQ(leftOut_, LeftOutNames{});
}

TEST_F(EntryFilterTest, leavesOutASetThatIsBeingWritten) {
    tree_.addFile("a");
    const std::string set = tree_.pathOf("s.zqp");
    {
        PathSetWriter writer(set, PathSetWriter::Mode::kCreate);
        EXPECT_THAT(walk({}), testing::SizeIs(2));  // and the file that is to be the set
        EXPECT_THAT(walk({.notTaken = filesOfSet(set)}), ElementsAre("a"));
        EXPECT_EQ(leftOut_, LeftOutNames{});
        writer.add("a");
        writer.commit();
    }
    EXPECT_THAT(walk({.notTaken = filesOfSet(set)}), ElementsAre("a"));
    const PathSetWriter replacing(set, PathSetWriter::Mode::kReplace);
    EXPECT_THAT(walk({}), testing::SizeIs(3));
    EXPECT_THAT(walk({.notTaken = filesOfSet(set)}), ElementsAre("a"));
}

TEST_F(EntryFilterTest, leavesOutASetWhateverLeadsToIt) {
    tree_.addFile("a");
    tree_.addFile("b/s.zqp");  // of the same name, and another file
    tree_.addFile("s.zqp");
    std::filesystem::create_hard_link(tree_.pathOf("s.zqp"), tree_.pathOf("hard"));
    tree_.addSymbolicLink("link", "s.zqp");
    EXPECT_THAT(walk({.notTaken = filesOfSet(tree_.pathOf("./b/../link"))}),
                ElementsAre("a", "link", "b/s.zqp"));
}

TEST_F(EntryFilterTest, knowsNoFileOfASetThatIsNotThere) {
    EXPECT_THAT(filesOfSet(tree_.pathOf("none/s.zqp")), testing::IsEmpty());
}

TEST_F(EntryFilterTest, refusesPatternsBeyondAllBounds) {
    EXPECT_THROW(walk({.exclude = {std::string(100'000, '?')}}), Error);
}

}  // namespace
}  // namespace zqpaths
