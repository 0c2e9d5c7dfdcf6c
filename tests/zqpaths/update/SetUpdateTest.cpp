#include "zqpaths/update/SetUpdate.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/OrdinaryUser.hpp"
#include "tests/zqpaths/update/UpdatedSet.hpp"

namespace zqpaths {
namespace {

using test_support::OrdinaryUser;
using test_support::TemporaryTree;
using testing::ElementsAre;
using testing::IsEmpty;

class ASetUpdate : public testing::Test {
protected:
    void remove(std::string_view name) const { std::filesystem::remove_all(tree_.pathOf(name)); }
    void rename(std::string_view from, std::string_view to) const {
        std::filesystem::rename(tree_.pathOf(from), tree_.pathOf(to));
    }

    TemporaryTree tree_;
};

TEST_F(ASetUpdate, tellsNothingAndReadsNothingWhereNothingChanged) {
    for (const char* const name : {"a/b/x", "a/y", "c/z"}) tree_.addFile(name);
    UpdatedSet set(tree_.path());
    const std::uint64_t sum = set.open().fingerprint();
    EXPECT_THAT(set.update(), IsEmpty());
    EXPECT_EQ(set.lookedAt, 1U);  // all are kept as a whole: what is left is a step of the look
    EXPECT_EQ(set.open().fingerprint(), sum);
}

TEST_F(ASetUpdate, tellsWhatIsNewAndWhatIsGoneInTheOrderOfTheWalk) {
    for (const char* const name : {"a/b/x", "a/b/y", "a/z", "kept/1", "kept/deep/2"})
        tree_.addFile(name);
    UpdatedSet set(tree_.path());
    remove("a/b/x");
    tree_.addFile("a/b/w");
    tree_.addFile("new/1");
    tree_.addFile("new/2/3");
    EXPECT_THAT(set.update(), ElementsAre("+ a/b/w", "- a/b/x", "+ new/1", "+ new/2/3"));
    EXPECT_THAT(set.update(), IsEmpty());
}

TEST_F(ASetUpdate, givesAPathThatComesBackItsOldNumber) {
    for (const char* const name : {"a/x", "b/y", "z"}) tree_.addFile(name);
    UpdatedSet set(tree_.path());
    const auto before = set.present();
    remove("a");
    remove("z");
    EXPECT_THAT(set.update(), ElementsAre("- z", "- a/x"));
    EXPECT_EQ(set.present().size(), 1U);
    tree_.addFile("a/x");
    tree_.addFile("z");
    EXPECT_THAT(set.update(), ElementsAre("* z", "* a/x"));
    EXPECT_EQ(set.present(), before);
    EXPECT_EQ(set.open().goneCount(), 0U);
}

TEST_F(ASetUpdate, losesAllThatWasInADirectoryThatIsGone) {
    for (const char* const name : {"a/b/c/x", "a/b/y", "a/z"}) tree_.addFile(name);
    UpdatedSet set(tree_.path());
    remove("a/b");
    EXPECT_THAT(set.update(), testing::UnorderedElementsAre("- a/b/c/x", "- a/b/y"));
}

TEST_F(ASetUpdate, takesAFileThatBecameADirectoryAndTheOtherWayRound) {
    for (const char* const name : {"file", "directory/x", "directory/sub/y"}) tree_.addFile(name);
    UpdatedSet set(tree_.path());
    remove("file");
    remove("directory");
    tree_.addFile("file/inside");
    tree_.addFile("directory");
    EXPECT_THAT(set.update(),
                testing::UnorderedElementsAre("- file", "+ file/inside", "- directory/x",
                                              "- directory/sub/y", "+ directory"));
    EXPECT_THAT(set.update(), IsEmpty());
}

TEST_F(ASetUpdate, seesADirectoryThatTookThePlaceOfAnother) {
    for (const char* const name : {"a/x", "a/sub/y", "b/x", "b/sub/z"}) tree_.addFile(name);
    UpdatedSet set(tree_.path());
    rename("a", "c");
    rename("b", "a");
    rename("c", "b");
    EXPECT_THAT(set.update(), ElementsAre("- a/sub/y", "+ a/sub/z", "+ b/sub/y", "- b/sub/z"));
}

TEST_F(ASetUpdate, takesNamesOfAnyBytes) {
    for (const char* const name : {"\xFF/\x01", "new\nline/x", "-rf/ "}) tree_.addFile(name);
    UpdatedSet set(tree_.path());
    remove("\xFF/\x01");
    tree_.addFile("\xFF/\xC3(");
    tree_.addFile("new\nline/\\");
    EXPECT_THAT(set.update(), ElementsAre("+ new\nline/\\", "- \xFF/\x01", "+ \xFF/\xC3("));
}

TEST_F(ASetUpdate, goesThreeThousandLevelsDown) {
    tree_.addDeepLevels(3000, "below", "beside");
    UpdatedSet set(tree_.path());
    EXPECT_THAT(set.update(), IsEmpty());
    remove("below/below/beside/f");
    EXPECT_THAT(set.update(), ElementsAre("- below/below/beside/f"));
    EXPECT_EQ(set.present().size(), 3000U);
}

TEST_F(ASetUpdate, leavesWhatCannotBeReadAsItWas) {
    for (const char* const name : {"open/x", "closed/y", "closed/sub/z"}) tree_.addFile(name);
    UpdatedSet set(tree_.path());
    remove("closed/y");
    remove("open/x");
    tree_.allow("closed", 0);
    {
        const OrdinaryUser user;
        if (::geteuid() == 0) GTEST_SKIP() << "root reads every directory";
        tree_.pathOf("");
    }
    UpdatedSet* const updated = &set;
    const auto updateAsUser = [&] {
        // The set is root's, so that the walk alone is somebody else's.
        const PathSet opened = updated->open();
        const std::vector<Scan> scans = scansOf(opened);
        const std::vector<std::string> roots{tree_.path()};
        std::vector<std::string> told;
        SetUpdate update(opened, roots,
                         {.onChange = [&](PathChange, std::uint64_t,
                                          std::string_view path) { told.emplace_back(path); },
                          .onError =
                              [&](std::string_view path, std::string_view reason) {
                                  told.push_back(std::string(path).append(": ").append(reason));
                              },
                          .onStep = [] {}});
        const OrdinaryUser user;
        update.run(tree_.path(), {.jobs = 1}, &scans.front());
        return told;
    };
    EXPECT_THAT(updateAsUser(), ElementsAre(tree_.pathOf("closed") + ": Permission denied",
                                            tree_.pathOf("open/x")));
    tree_.allow("closed", 0755);
    EXPECT_THAT(set.update(), ElementsAre("- closed/y", "- open/x"));
}

TEST_F(ASetUpdate, findsOutWhatHappenedInADirectoryThatCouldNotBeRead) {
    for (const char* const name : {"closed/y", "closed/sub/z", "closed/sub/a"}) tree_.addFile(name);
    tree_.addDirectory("away");
    UpdatedSet set(tree_.path());
    rename("closed", "away/closed");
    tree_.addSymbolicLink("closed", "away/closed");
    remove("away/closed/sub/z");
    EXPECT_THAT(set.update(), testing::UnorderedElementsAre(
                                  "+ closed", "- closed/y", "- closed/sub/z", "- closed/sub/a",
                                  "+ away/closed/y", "+ away/closed/sub/a"));
}

TEST_F(ASetUpdate, keepsAllIfARootIsNotThere) {
    tree_.addFile("root/x");
    UpdatedSet set(tree_.pathOf("root"));
    rename("root", "other");
    EXPECT_THAT(set.update(), IsEmpty());
    EXPECT_THAT(set.errors, ElementsAre(tree_.pathOf("root") + ": No such file or directory"));
    rename("other", "root");
    EXPECT_THAT(set.update(), IsEmpty());
    tree_.addFile("root/y");
    EXPECT_THAT(set.update(), ElementsAre("+ y"));
}

TEST_F(ASetUpdate, comparesAllWhereNothingIsRemembered) {
    for (const char* const name : {"a/b/x", "a/y", "z"}) tree_.addFile(name);
    UpdatedSet set(tree_.path());
    remove("a/b");
    tree_.addFile("c/d");
    set.isForgetful = true;
    EXPECT_THAT(set.update(), testing::UnorderedElementsAre("- a/b/x", "+ c/d"));
}

TEST_F(ASetUpdate, leavesToARootWhatIsBelowIt) {
    for (const char* const name : {"x", ".git/inside/y", "a/.z"}) tree_.addFile(name);
    UpdatedSet set({tree_.path(), tree_.pathOf(".git"), tree_.pathOf("a")},
                   {.skipHidden = true, .jobs = 1});
    EXPECT_EQ(set.present().size(), 2U);
    set.isForgetful = true;
    EXPECT_THAT(set.update(), IsEmpty());
    set.isForgetful = false;
    tree_.addFile(".git/w");
    tree_.addFile("a/new");
    EXPECT_THAT(set.update(), ElementsAre("+ a/new", "+ .git/w"));
    EXPECT_THAT(set.update(), IsEmpty());
    EXPECT_EQ(set.open().size(), 4U);
}

TEST_F(ASetUpdate, looksAtLinksThatItFollowsWhereverTheyLead) {
    for (const char* const name : {"root/a/x", "one/1", "two"}) tree_.addFile(name);
    tree_.addSymbolicLink("root/link", "../target");
    tree_.addSymbolicLink("target", "two");
    UpdatedSet set(tree_.pathOf("root"), {.follow = true, .jobs = 1});
    EXPECT_THAT(set.update(), IsEmpty());
    remove("target");
    tree_.addSymbolicLink("target", "one");
    EXPECT_THAT(set.update(), testing::UnorderedElementsAre("- link", "+ link/1"));
    EXPECT_THAT(set.update(), IsEmpty());
}

TEST_F(ASetUpdate, losesWhatALoopWouldLeadTo) {
    tree_.addFile("a/b/x");
    tree_.addFile("a/c/y");
    UpdatedSet set(tree_.path(), {.follow = true, .jobs = 1});
    remove("a/c");
    tree_.addSymbolicLink("a/c", "..");
    EXPECT_THAT(set.update(), ElementsAre("- a/c/y"));
    EXPECT_EQ(set.errors.size(), 1U);
}

TEST_F(ASetUpdate, doesNotTakeTheFileThatIsLeftOut) {
    const std::string left = tree_.addFile("left");
    struct stat status {};
    ASSERT_EQ(::stat(left.c_str(), &status), 0);
    UpdatedSet set(tree_.path(), {.jobs = 1, .notTaken = {{status.st_dev, status.st_ino, "left"}}});
    tree_.addFile("taken");
    EXPECT_THAT(set.update(), ElementsAre("+ taken"));
}

}  // namespace
}  // namespace zqpaths
