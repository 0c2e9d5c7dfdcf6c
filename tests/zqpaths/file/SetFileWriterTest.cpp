#include "zqpaths/file/SetFileWriter.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <numeric>
#include <thread>

#include "tests/support/FileSizeLimit.hpp"
#include "tests/support/SetFileSums.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/file/PendingFile.hpp"

namespace zqpaths {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Mode = SetFileWriter::Mode;

class ASetFileWriter : public ::testing::Test {
protected:
    Texts names() const { return namesIn(tree_.path()); }
    void write(Mode mode, const Texts& segments) const { writeSet(path_, mode, segments); }
    Refusal refusalOfOpening(Mode mode) const {
        return refusalOf([&] { SetFileWriter(path_, mode); });
    }
    mode_t rights() const {
        struct stat status {};
        ::stat(path_.c_str(), &status);
        return status.st_mode & 07777;
    }

    test_support::TemporaryTree tree_;
    std::string path_ = tree_.pathOf("s.zqp");
};

TEST_F(ASetFileWriter, makesAFileThatIsThereWhenItIsWhole) {
    SetFileWriter writer(path_, Mode::kCreate);
    writer.append(segmentOf("one"));
    EXPECT_FALSE(std::filesystem::exists(path_));
    EXPECT_EQ(writer.committed(), nullptr);
    writer.commit();
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one"));
    EXPECT_THAT(names(), ElementsAre("s.zqp"));
    EXPECT_EQ(writer.segments().size(), 1U);
}

TEST_F(ASetFileWriter, makesASmallFileOfASmallSet) {
    write(Mode::kCreate, {std::string(3900, 'x')});
    EXPECT_LT(std::filesystem::file_size(path_), 8192U);
}

TEST_F(ASetFileWriter, listsNoSegmentThatCouldNotBeWritten) {
    SetFileWriter writer(path_, Mode::kCreate);
    writer.append(segmentOf("one"));
    {
        const test_support::FileSizeLimit limit(16384);
        EXPECT_EQ(refusalOf([&] { writer.append(segmentOf(std::string(100'000, 'x'))); }).kind,
                  ErrorKind::kSystem);
    }
    EXPECT_EQ(writer.segments().size(), 1U);
    writer.append(segmentOf("two"));
    writer.commit();
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one", "two"));
}

TEST_F(ASetFileWriter, discardsWhatIsNotCommitted) {
    { SetFileWriter(path_, Mode::kCreate).append(segmentOf("one")); }
    EXPECT_THAT(names(), IsEmpty());
    write(Mode::kCreate, {"old"});
    const std::string before = contentOf(path_);
    { SetFileWriter(path_, Mode::kReplace).append(segmentOf("one")); }
    { SetFileWriter(path_, Mode::kAppend).append(segmentOf(std::string(10'000, 'x'))); }
    EXPECT_EQ(contentOf(path_), before);
    EXPECT_THAT(names(), ElementsAre("s.zqp"));
}

TEST_F(ASetFileWriter, doesNotReplaceUnlessItIsTold) {
    write(Mode::kCreate, {"old"});
    const Refusal refusal = refusalOfOpening(Mode::kCreate);
    EXPECT_EQ(refusal.kind, ErrorKind::kExists);
    EXPECT_EQ(refusal.text, path_ + ": is there already");
    write(Mode::kReplace, {"new"});
    EXPECT_THAT(segmentsOf(path_), ElementsAre("new"));
}

TEST_F(ASetFileWriter, doesNotReplaceAFileThatCameMeanwhile) {
    SetFileWriter writer(path_, Mode::kCreate);
    writer.append(segmentOf("one"));
    tree_.addFile("s.zqp", "other");
    EXPECT_EQ(refusalOf([&] { writer.commit(); }).kind, ErrorKind::kExists);
    EXPECT_EQ(contentOf(path_), "other");
}

TEST_F(ASetFileWriter, replacesAFileThatIsNotThere) {
    write(Mode::kReplace, {"new"});
    EXPECT_THAT(segmentsOf(path_), ElementsAre("new"));
    EXPECT_THAT(names(), ElementsAre("s.zqp"));
}

TEST_F(ASetFileWriter, replacesADamagedSetAndOneOfTheOlderForm) {
    write(Mode::kCreate, {"old"});
    std::filesystem::resize_file(path_, 100);
    write(Mode::kReplace, {"new"});
    EXPECT_THAT(segmentsOf(path_), ElementsAre("new"));
    std::string older = std::string("SQLite format 3\0", 16) + std::string(500, 'x');
    older.replace(68, 4, "zqps");
    writeContent(path_, older);
    write(Mode::kReplace, {"newer"});
    EXPECT_THAT(segmentsOf(path_), ElementsAre("newer"));
}

TEST_F(ASetFileWriter, replacesASetHoweverItIsDamaged) {
    write(Mode::kCreate, {"old"});
    const std::string whole = contentOf(path_);
    std::vector<std::string> damaged;
    for (const std::size_t size : {0U, 1U, 7U, 8U, 600U, 4096U, 4100U})
        damaged.push_back(whole.substr(0, size));
    for (const std::size_t byte : {0U, 3U, 7U, 9U, 600U, 1100U, 4096U}) {
        damaged.push_back(whole);
        damaged.back().at(byte) ^= 1;
    }
    damaged.push_back(std::string(4096, 'x') + whole.substr(4096));
    for (const std::string& content : damaged) {
        writeContent(path_, content);
        write(Mode::kReplace, {"new"});
        EXPECT_THAT(segmentsOf(path_), ElementsAre("new"));
    }
}

TEST_F(ASetFileWriter, neverReplacesWhatIsNoSet) {
    const std::string database = std::string("SQLite format 3\0", 16) + std::string(500, 'x');
    for (const std::string& content :
         {std::string("text"), std::string(10'000, '\0'), std::string("\x89PNG\r\n"), database}) {
        writeContent(path_, content);
        const Refusal refusal = refusalOfOpening(Mode::kReplace);
        EXPECT_EQ(refusal.kind, ErrorKind::kNotASet);
        EXPECT_EQ(refusal.text, path_ + ": is no saved set");
        EXPECT_EQ(contentOf(path_), content);
    }
    EXPECT_EQ(refusalOf([] { SetFileWriter("/dev/null", Mode::kReplace); }).text,
              "/dev/null: is no regular file");
    EXPECT_EQ(refusalOf([&] { SetFileWriter(tree_.path(), Mode::kReplace); }).text,
              tree_.path() + ": Is a directory");
}

TEST_F(ASetFileWriter, addsToASetThatIsThere) {
    write(Mode::kCreate, {"one"});
    const std::string before = contentOf(path_);
    write(Mode::kAppend, {"two", "three"});
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one", "two", "three"));
    // Nothing that was committed is written again but one of the superblocks.
    EXPECT_EQ(contentOf(path_).substr(kPageSize, before.size() - kPageSize),
              before.substr(kPageSize));
    for (int step = 0; step < 5; ++step) write(Mode::kAppend, {"more"});
    EXPECT_EQ(segmentsOf(path_).size(), 8U);
}

TEST_F(ASetFileWriter, showsWhatItAddsTo) {
    write(Mode::kCreate, {"one", "two"});
    const SetFileWriter writer(path_, Mode::kAppend);
    ASSERT_NE(writer.committed(), nullptr);
    EXPECT_THAT(segmentsOf(*writer.committed()), ElementsAre("one", "two"));
    EXPECT_EQ(writer.segments(), writer.committed()->segments());
}

TEST_F(ASetFileWriter, addsToNothingButASet) {
    EXPECT_EQ(refusalOfOpening(Mode::kAppend).text, path_ + ": No such file or directory");
    writeContent(path_, "text");
    EXPECT_EQ(refusalOfOpening(Mode::kAppend).text, path_ + ": is no saved set");
    EXPECT_EQ(refusalOf([&] { SetFileWriter(tree_.path(), Mode::kAppend); }).kind,
              ErrorKind::kNotASet);
}

TEST_F(ASetFileWriter, dropsTheLastSegments) {
    write(Mode::kCreate, {"one", "two", "three"});
    SetFileWriter writer(path_, Mode::kAppend);
    writer.dropFrom(1);
    EXPECT_EQ(writer.segments().size(), 1U);
    writer.append(segmentOf("two and three"));
    writer.commit();
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one", "two and three"));
}

TEST_F(ASetFileWriter, keepsBlocksUntilOthersAreWritten) {
    write(Mode::kCreate, {"one"});
    {
        SetFileWriter writer(path_, Mode::kAppend);
        writer.putScans({2, bytesOf("scans")});
        writer.putGone({1, bytesOf("sixteen bytes...")});
        writer.commit();
    }
    const Texts blocks{"gone: 1 sixteen bytes...", "scans: 2 scans"};
    write(Mode::kAppend, {"two"});
    EXPECT_EQ(blocksOf(*openWhole(path_)), blocks);
    {
        SetFileWriter writer(path_, Mode::kAppend);
        writer.putGone({});
        writer.commit();
    }
    EXPECT_THAT(blocksOf(*openWhole(path_)), ElementsAre("scans: 2 scans"));
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one", "two"));
}

TEST_F(ASetFileWriter, staysInProportionWhenBlocksChange) {
    write(Mode::kCreate, {"one"});
    for (int step = 1; step <= 50; ++step) {
        SetFileWriter writer(path_, Mode::kAppend);
        writer.putScans({1, bytesOf(std::string(20'000, static_cast<char>(step)))});
        writer.commit();
        ASSERT_LE(std::filesystem::file_size(path_), 150'000U);
    }
    EXPECT_EQ(blocksOf(*openWhole(path_)).front().back(), 50);
}

TEST_F(ASetFileWriter, leavesTheFileAloneIfNothingChanges) {
    write(Mode::kCreate, {"one"});
    const std::string before = contentOf(path_);
    write(Mode::kAppend, {});
    EXPECT_EQ(contentOf(path_), before);
}

TEST_F(ASetFileWriter, hasLetGoOfTheFileOnceItHasCommitted) {
    write(Mode::kCreate, {"one"});
    SetFileWriter first(path_, Mode::kAppend);
    first.append(segmentOf("two"));
    first.commit();
    write(Mode::kAppend, {"three"});
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one", "two", "three"));
}

TEST_F(ASetFileWriter, waitsForAnotherAndAddsToWhatThatLeft) {
    write(Mode::kCreate, {"one"});
    SetFileWriter first(path_, Mode::kAppend);
    first.append(segmentOf("two"));
    std::thread second([&] { write(Mode::kAppend, {"three"}); });
    std::this_thread::sleep_for(50ms);
    first.commit();
    second.join();
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one", "two", "three"));
}

TEST_F(ASetFileWriter, addsToTheFileThatTookThePlaceOfTheOneItWaitedFor) {
    write(Mode::kCreate, {"old"});
    SetFileWriter first(path_, Mode::kReplace);
    first.append(segmentOf("new"));
    std::thread second([&] { write(Mode::kAppend, {"more"}); });
    std::this_thread::sleep_for(50ms);
    first.commit();
    second.join();
    EXPECT_THAT(segmentsOf(path_), ElementsAre("new", "more"));
}

TEST_F(ASetFileWriter, saysWhoHoldsTheFileForTooLong) {
    write(Mode::kCreate, {"one"});
    const SetFileWriter first(path_, Mode::kAppend);
    const auto begin = std::chrono::steady_clock::now();
    const Refusal refusal = refusalOfOpening(Mode::kAppend);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 5s);
    EXPECT_EQ(refusal.kind, ErrorKind::kHeld);
    EXPECT_THAT(refusal.text, StartsWith(path_ + ": is held by "));
    EXPECT_THAT(refusal.text, ::testing::EndsWith("(process " + std::to_string(::getpid()) + ")"));
}

TEST_F(ASetFileWriter, cutsWhatAKilledWriterDidNotCommit) {
    write(Mode::kCreate, {"one"});
    const std::string before = contentOf(path_);
    writeContent(path_, before + std::string(100'000, 'x'));
    writeContent(PendingFile::temporaryPathFor(path_), "left");
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one"));
    { const SetFileWriter writer(path_, Mode::kAppend); }
    EXPECT_EQ(contentOf(path_), before);
    EXPECT_THAT(names(), ElementsAre("s.zqp"));
}

TEST_F(ASetFileWriter, writesTheFileAnewWhenMoreIsDeadThanAlive) {
    write(Mode::kCreate, {std::string(200'000, 'a'), std::string(100'000, 'b')});
    tree_.allow("s.zqp", 0640);
    const auto reader = SetFile::open(path_);
    SetFileWriter writer(path_, Mode::kAppend);
    writer.dropFrom(0);
    writer.append(segmentOf("new"));
    writer.commit();
    EXPECT_LT(std::filesystem::file_size(path_), 3 * kPageSize);
    EXPECT_THAT(segmentsOf(path_), ElementsAre("new"));
    EXPECT_EQ(rights(), 0640U);
    EXPECT_THAT(names(), ElementsAre("s.zqp"));
    EXPECT_EQ(segmentsOf(*reader).size(), 2U);
    write(Mode::kAppend, {"more"});
    EXPECT_THAT(segmentsOf(path_), ElementsAre("new", "more"));
}

TEST_F(ASetFileWriter, keepsTheDeadThatAreFew) {
    write(Mode::kCreate, {std::string(200'000, 'a'), std::string(100'000, 'b')});
    const std::uint64_t before = std::filesystem::file_size(path_);
    SetFileWriter writer(path_, Mode::kAppend);
    writer.dropFrom(1);
    writer.append(segmentOf("new"));
    writer.commit();
    EXPECT_GT(std::filesystem::file_size(path_), before);
}

TEST_F(ASetFileWriter, staysInProportionInManySteps) {
    write(Mode::kCreate, {"0"});
    for (int step = 1; step <= 200; ++step) {
        SetFileWriter writer(path_, Mode::kAppend);
        writer.dropFrom(0);
        writer.append(segmentOf(std::to_string(step)));
        writer.commit();
        ASSERT_LE(std::filesystem::file_size(path_), 100'000U);
    }
    EXPECT_THAT(segmentsOf(path_), ElementsAre("200"));
}

TEST_F(ASetFileWriter, growsWhereTheDirectoryCannotBeWritten) {
    write(Mode::kCreate, {std::string(200'000, 'a')});
    const PendingFile other(withoutLinks(path_), "other", 0ms);  // so no other can be made
    SetFileWriter writer(path_, Mode::kAppend);
    writer.dropFrom(0);
    writer.append(segmentOf("new"));
    writer.commit();
    EXPECT_THAT(segmentsOf(path_), ElementsAre("new"));
    EXPECT_GT(std::filesystem::file_size(path_), 200'000U);
}

TEST_F(ASetFileWriter, keepsTheRightsOfAFileThatItReplaces) {
    write(Mode::kCreate, {"old"});
    tree_.allow("s.zqp", 0604);
    write(Mode::kReplace, {"new"});
    EXPECT_EQ(rights(), 0604U);
}

TEST_F(ASetFileWriter, writesToWhereASymbolicLinkLeads) {
    tree_.addDirectory("folder");
    tree_.addSymbolicLink("s.zqp", "folder/real.zqp");
    EXPECT_EQ(refusalOfOpening(Mode::kCreate).kind, ErrorKind::kExists);
    writeSet(tree_.pathOf("folder/real.zqp"), Mode::kCreate, {std::string(200'000, 'a')});
    write(Mode::kReplace, {std::string(200'000, 'b')});
    SetFileWriter writer(path_, Mode::kAppend);
    writer.dropFrom(0);
    writer.append(segmentOf("new"));
    writer.commit();
    EXPECT_TRUE(std::filesystem::is_symlink(path_));
    EXPECT_THAT(segmentsOf(tree_.pathOf("folder/real.zqp")), ElementsAre("new"));
    EXPECT_THAT(namesIn(tree_.pathOf("folder")), ElementsAre("real.zqp"));
}

TEST_F(ASetFileWriter, takesNamesAsLongAsNamesCanBe) {
    const std::string path = tree_.pathOf(std::string(255, 'n'));
    for (const Mode mode : {Mode::kCreate, Mode::kAppend, Mode::kReplace})
        writeSet(path, mode, {"one"});
    EXPECT_THAT(segmentsOf(path), ElementsAre("one"));
    EXPECT_EQ(names().size(), 1U);
    for (const Mode mode : {Mode::kCreate, Mode::kAppend, Mode::kReplace})
        EXPECT_EQ(refusalOf([&] { SetFileWriter(path + "n", mode); }).text,
                  path + "n: File name too long");
}

TEST_F(ASetFileWriter, wantsANameForTheFile) {
    for (const Mode mode : {Mode::kCreate, Mode::kReplace}) {
        EXPECT_EQ(refusalOf([&] { SetFileWriter("", mode); }).kind, ErrorKind::kNotFound);
        EXPECT_EQ(refusalOf([&] { SetFileWriter(path_ + "/", mode); }).text,
                  path_ + "/: Is a directory");
    }
}

TEST_F(ASetFileWriter, repairsAHeaderWithTheSuperblockAtTheEnd) {
    write(Mode::kCreate, {"one"});
    write(Mode::kAppend, {"two"});
    std::string content = contentOf(path_);
    for (const std::size_t offset : kSuperblockOffsets) content[offset] ^= 1;
    writeContent(path_, content);
    write(Mode::kAppend, {"three"});
    EXPECT_THAT(segmentsOf(SetFile::open(path_)->path()).size(), 3U);
}

TEST_F(ASetFileWriter, doesNotCutWhatMayHaveBeenCommitted) {
    write(Mode::kCreate, {"one"});
    write(Mode::kAppend, {"two"});
    std::string content = contentOf(path_);
    const auto latest = *SetFile::open(path_)->state().slot;
    content[kSuperblockOffsets[latest]] ^= 1;
    content.back() ^= 1;
    writeContent(path_, content);
    EXPECT_THAT(segmentsOf(*SetFile::open(path_)), ElementsAre("one"));
    EXPECT_EQ(refusalOfOpening(Mode::kAppend).kind, ErrorKind::kDamaged);
    EXPECT_EQ(contentOf(path_), content);
}

TEST_F(ASetFileWriter, doesNotAddToWhatIsOlderThanADamagedDirectory) {
    write(Mode::kCreate, {"one"});
    write(Mode::kAppend, {"two"});
    std::string content = contentOf(path_);
    content[SetFile::open(path_)->state().superblock.directoryOffset] ^= 1;
    writeContent(path_, content);
    EXPECT_EQ(refusalOfOpening(Mode::kAppend).kind, ErrorKind::kDamaged);
    EXPECT_EQ(contentOf(path_), content);
}

/// A file whose directory has a section that this version does not know.
void addSection(const std::string& path, const UnknownSection& section) {
    const auto file = SetFile::open(path);
    CommittedState state = file->state();
    state.directory.unknown.push_back(section);
    const std::vector<std::byte> directory = encodeDirectory(state.directory);
    Superblock& superblock = state.superblock;
    superblock.directorySize = directory.size();
    superblock.directorySum = sumOf(directory);
    superblock.end = superblock.directoryOffset + directory.size() + kSuperblockSize;
    const auto closing = encodeSuperblock(superblock);
    const auto page = encodeHeader({7, {superblock, superblock}});
    const auto text = [](std::span<const std::byte> bytes) {
        return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    };
    const std::string content = contentOf(path);
    writeContent(path, text(page) +
                           content.substr(kPageSize, superblock.directoryOffset - kPageSize) +
                           text(directory) + text(closing));
}

TEST_F(ASetFileWriter, keepsSectionsAndFlagsOfLaterVersions) {
    const UnknownSection times{0x454D4954, 2, {std::byte{1}, std::byte{2}, std::byte{3}}};
    write(Mode::kCreate, {std::string(200'000, 'a'), "b"});
    addSection(path_, times);
    write(Mode::kAppend, {"c"});
    EXPECT_THAT(SetFile::open(path_)->state().directory.unknown, ElementsAre(times));
    SetFileWriter writer(path_, Mode::kAppend);
    writer.dropFrom(0);
    writer.append(segmentOf("new"));
    writer.commit();
    EXPECT_LT(std::filesystem::file_size(path_), 100'000U);
    EXPECT_THAT(SetFile::open(path_)->state().directory.unknown, ElementsAre(times));
    EXPECT_EQ(SetFile::open(path_)->state().header.flags, 7U);
}

TEST_F(ASetFileWriter, doesNotDropSectionsThatItCannotKeep) {
    write(Mode::kCreate, {"one"});
    addSection(path_, {0x454D4954, 0, {}});
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one"));
    const Refusal refusal = refusalOfOpening(Mode::kAppend);
    EXPECT_EQ(refusal.kind, ErrorKind::kNotASet);
    EXPECT_EQ(refusal.text,
              path_ + ": is a set that needs a newer version of this program to be added to");
}

TEST_F(ASetFileWriter, hasNoStepAfterTheLast) {
    write(Mode::kCreate, {"one"});
    Superblock superblock = SetFile::open(path_)->state().superblock;
    superblock.sequence = kMaxSequence;
    const auto page = encodeHeader({0, {superblock, superblock}});
    std::string content = contentOf(path_);
    std::copy_n(reinterpret_cast<const char*>(page.data()), page.size(), content.begin());
    writeContent(path_, content);
    EXPECT_EQ(refusalOfOpening(Mode::kAppend).kind, ErrorKind::kDamaged);
}

TEST_F(ASetFileWriter, leavesItsWorkAloneInAChildOfTheProcess) {
    write(Mode::kCreate, {"one"});
    SetFileWriter writer(path_, Mode::kAppend);
    writer.append(segmentOf("two"));
    const pid_t child = ::fork();
    if (child == 0) {
        writer.~SetFileWriter();
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    writer.commit();
    EXPECT_THAT(segmentsOf(path_), ElementsAre("one", "two"));
}

TEST_F(ASetFileWriter, losesNothingThatSeveralProcessesAdd) {
    constexpr int kProcesses = 4;
    constexpr int kSteps = 25;
    write(Mode::kCreate, {"begin"});
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(::fork());
        if (children.back() != 0) continue;
        for (int step = 0; step < kSteps; ++step)
            write(Mode::kAppend, {std::to_string(process) + "/" + std::to_string(100 + step)});
        ::_exit(0);
    }
    std::size_t seen = 0;
    for (int look = 0; look < 200; ++look) {
        const Texts now = segmentsOf(path_);
        ASSERT_GE(now.size(), seen);
        seen = now.size();
    }
    for (const pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    const Texts all = segmentsOf(path_);
    EXPECT_EQ(all.size(), 1U + kProcesses * kSteps);
    for (int process = 0; process < kProcesses; ++process) {
        Texts own;
        for (const std::string& text : all)
            if (text.starts_with(std::to_string(process) + "/")) own.push_back(text);
        EXPECT_EQ(own.size(), static_cast<std::size_t>(kSteps));
        EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
    }
}

TEST_F(ASetFileWriter, isOneOfSeveralThatMakeTheSameFile) {
    constexpr int kProcesses = 4;
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(::fork());
        if (children.back() != 0) continue;
        try {
            write(Mode::kCreate, {std::to_string(process)});
        } catch (const Error& error) {
            ::_exit(error.kind() == ErrorKind::kExists ? 1 : 2);
        }
        ::_exit(0);
    }
    int refused = 0;
    for (const pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFEXITED(status));
        ASSERT_LE(WEXITSTATUS(status), 1);
        refused += WEXITSTATUS(status);
    }
    EXPECT_EQ(refused, kProcesses - 1);
    EXPECT_EQ(segmentsOf(path_).size(), 1U);
    EXPECT_THAT(names(), ElementsAre("s.zqp"));
}

}  // namespace
}  // namespace zqpaths
