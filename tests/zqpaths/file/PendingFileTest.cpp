#include "zqpaths/file/PendingFile.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <thread>

#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/file/FileLock.hpp"

namespace zqpaths {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class APendingFile : public ::testing::Test {
protected:
    Texts names() const { return namesIn(tree_.path()); }

    test_support::TemporaryTree tree_;
    std::string path_ = tree_.pathOf("new");
};

TEST_F(APendingFile, hasItsNameOnlyWhenItIsPublished) {
    PendingFile pending(path_, "new", 0ms);
    pending.file().writeAt(0, bytesOf("text"));
    EXPECT_FALSE(std::filesystem::exists(path_));
    EXPECT_FALSE(pending.isPublished());
    pending.publish();
    EXPECT_TRUE(pending.isPublished());
    EXPECT_THAT(names(), ElementsAre("new"));
    EXPECT_EQ(contentOf(path_), "text");
}

TEST_F(APendingFile, isGoneIfItIsNotPublished) {
    { const PendingFile pending(path_, "new", 0ms); }
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(APendingFile, givesWayToOneThatIsThere) {
    {
        PendingFile pending(path_, "new", 0ms);
        tree_.addFile("new", "other");
        const Refusal refusal = refusalOf([&] { pending.publish(); });
        EXPECT_EQ(refusal.kind, ErrorKind::kExists);
        EXPECT_EQ(refusal.text, "new: is there already");
    }
    EXPECT_THAT(names(), ElementsAre("new"));
    EXPECT_EQ(contentOf(path_), "other");
}

TEST_F(APendingFile, takesThePlaceOfAnother) {
    tree_.addFile("new", "old");
    PendingFile pending(path_, "new", 0ms);
    pending.file().writeAt(0, bytesOf("text"));
    pending.publishInPlace();
    EXPECT_THAT(names(), ElementsAre("new"));
    EXPECT_EQ(contentOf(path_), "text");
}

TEST_F(APendingFile, isMadeByOneAtATime) {
    std::optional<PendingFile> pending;
    pending.emplace(path_, "new", 0ms);
    EXPECT_EQ(refusalOf([&] { PendingFile(path_, "new", 0ms); }).kind, ErrorKind::kHeld);
    const PendingFile other(tree_.pathOf("another"), "another", 0ms);
    pending.reset();
    EXPECT_NO_THROW(PendingFile(path_, "new", 0ms));
}

TEST_F(APendingFile, isWaitedFor) {
    std::optional<PendingFile> pending;
    pending.emplace(path_, "new", 0ms);
    std::thread first([&] {
        std::this_thread::sleep_for(50ms);
        pending->publish();
        pending.reset();
    });
    EXPECT_NO_THROW(PendingFile(path_, "new", 10s));
    first.join();
    EXPECT_THAT(names(), ElementsAre("new"));
}

TEST_F(APendingFile, takesNothingFromOneThatAKilledProcessLeft) {
    const std::string left = PendingFile::temporaryPathFor(path_);
    writeContent(left, "left");
    std::filesystem::permissions(left, std::filesystem::perms::owner_read);
    PendingFile pending(path_, "new", 0ms);
    EXPECT_EQ(pending.file().size(), 0U);
    pending.publish();
    EXPECT_THAT(names(), ElementsAre("new"));
    EXPECT_EQ(contentOf(path_), "");
}

TEST_F(APendingFile, isRemovedIfItWasLeftAndNotIfItIsBeingWritten) {
    writeContent(PendingFile::temporaryPathFor(path_), "left");
    PendingFile::removeLeft(path_);
    EXPECT_THAT(names(), IsEmpty());
    PendingFile pending(path_, "new", 0ms);
    PendingFile::removeLeft(path_);
    EXPECT_THAT(names().size(), 1U);
    pending.publish();
    EXPECT_THAT(names(), ElementsAre("new"));
}

TEST_F(APendingFile, isLeftAloneByAChildOfItsProcess) {
    PendingFile pending(path_, "new", 0ms);
    const pid_t child = ::fork();
    if (child == 0) {
        pending.~PendingFile();
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(names().size(), 1U);
    pending.publish();
}

TEST_F(APendingFile, hasAShortNameOfItsOwn) {
    const std::string name(255, 'n');
    PendingFile pending(tree_.pathOf(name), name, 0ms);
    pending.publish();
    EXPECT_THAT(names(), ElementsAre(name));
    EXPECT_NE(PendingFile::temporaryPathFor("a/b"), PendingFile::temporaryPathFor("a/c"));
    EXPECT_EQ(directoryOf(PendingFile::temporaryPathFor("a/b")), "a/");
}

TEST_F(APendingFile, isMissedByTheDirectoryThatIsNotThere) {
    const std::string path = tree_.pathOf("none/new");
    const Refusal refusal = refusalOf([&] { PendingFile(path, path, 0ms); });
    EXPECT_EQ(refusal.kind, ErrorKind::kNotFound);
    EXPECT_EQ(refusal.text, tree_.pathOf("none") + ": No such file or directory");
}

}  // namespace
}  // namespace zqpaths
