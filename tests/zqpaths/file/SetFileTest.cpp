#include "zqpaths/file/SetFile.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace zqpaths {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Mode = SetFileWriter::Mode;

class ASetFile : public ::testing::Test {
protected:
    void expectRefusal(ErrorKind kind, const std::string& reason) const {
        const Refusal refusal = refusalOf([&] { SetFile::open(path_); });
        EXPECT_EQ(refusal.kind, kind);
        EXPECT_EQ(refusal.text, path_ + ": " + reason);
    }

    /// One bit of a byte turned.
    void damage(std::size_t offset) const {
        std::string content = contentOf(path_);
        content.at(offset) = static_cast<char>(content[offset] ^ 1);
        writeContent(path_, content);
    }

    test_support::TemporaryTree tree_;
    std::string path_ = tree_.pathOf("s.zqp");
};

TEST_F(ASetFile, tellsWhatWasWritten) {
    {
        SetFileWriter writer(path_, Mode::kCreate);
        writer.append({SegmentForm::kImage, 3, 40, 0, bytesOf("image")});
        writer.append({SegmentForm::kPacked, 2, 10, 4, bytesOf({"a\0b\0packed", 10})});
        writer.commit();
    }
    const auto file = SetFile::open(path_);
    EXPECT_EQ(file->path(), path_);
    EXPECT_EQ(file->size(), std::filesystem::file_size(path_));
    EXPECT_EQ(file->pathCount(), 5U);
    ASSERT_EQ(file->segments().size(), 2U);
    const SegmentEntry& packed = file->segments()[1];
    EXPECT_EQ(packed.form, SegmentForm::kPacked);
    EXPECT_EQ(packed.offset, 2 * kPageSize);
    EXPECT_EQ(packed.pathCount, 2U);
    EXPECT_EQ(packed.textSize, 10U);
    EXPECT_EQ(packed.treeStringSize, 4U);
    EXPECT_THAT(file->verifySums(), IsEmpty());
}

TEST_F(ASetFile, givesBytesOnPagesOfTheirOwn) {
    writeSet(path_, Mode::kCreate, {std::string(5000, 'a'), "b"});
    const auto file = SetFile::open(path_);
    for (const SegmentEntry& entry : file->segments())
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(file->bytesOf(entry).data()) % kPageSize, 0U);
    EXPECT_THAT(segmentsOf(*file), ElementsAre(std::string(5000, 'a'), "b"));
}

TEST_F(ASetFile, canBeEmpty) {
    writeSet(path_, Mode::kCreate, {});
    EXPECT_THAT(segmentsOf(path_), IsEmpty());
    EXPECT_EQ(SetFile::open(path_)->pathCount(), 0U);
}

TEST_F(ASetFile, isMissedByItsName) {
    expectRefusal(ErrorKind::kNotFound, "No such file or directory");
}

TEST_F(ASetFile, isNoDirectoryAndNoPipe) {
    std::filesystem::create_directory(path_);
    expectRefusal(ErrorKind::kNotASet, "Is a directory");
    std::filesystem::remove(path_);
    ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
    expectRefusal(ErrorKind::kNotASet, "is no regular file");
}

TEST_F(ASetFile, isNoOtherFile) {
    for (const std::string& content :
         {std::string(), std::string("text"), std::string("\x89zqp"), std::string(9999, '\0')}) {
        writeContent(path_, content);
        expectRefusal(ErrorKind::kNotASet, "is no saved set");
    }
}

TEST_F(ASetFile, isOfAFormThatIsKnown) {
    writeContent(path_, std::string("SQLite format 3\0", 16) + std::string(500, 'x'));
    expectRefusal(ErrorKind::kNotASet, "is a set of an older form; index it anew");
}

TEST_F(ASetFile, isRefusedIfItIsCutShort) {
    writeSet(path_, Mode::kCreate, {"one", std::string(5000, '2')});
    const std::string whole = contentOf(path_);
    for (const std::size_t size :
         {whole.size() - 1, whole.size() - 100, std::size_t{8192}, std::size_t{4096},
          std::size_t{4095}, std::size_t{1072}, std::size_t{600}}) {
        writeContent(path_, whole.substr(0, size));
        expectRefusal(ErrorKind::kDamaged, "has " + std::to_string(size) + " bytes instead of " +
                                               std::to_string(whole.size()));
    }
    writeContent(path_, whole.substr(0, 100));
    expectRefusal(ErrorKind::kDamaged, "has 100 bytes instead of 4096");
    writeContent(path_, whole.substr(0, 20));
    expectRefusal(ErrorKind::kDamaged, "the header is damaged");
}

TEST_F(ASetFile, thatGrewIsRefusedIfItIsCutShort) {
    writeSet(path_, Mode::kCreate, {"one"});
    const std::uint64_t before = std::filesystem::file_size(path_);
    writeSet(path_, Mode::kAppend, {"two"});
    const std::uint64_t size = std::filesystem::file_size(path_);
    std::filesystem::resize_file(path_, before);
    expectRefusal(ErrorKind::kDamaged,
                  "has " + std::to_string(before) + " bytes instead of " + std::to_string(size));
}

TEST_F(ASetFile, seesThatItIsCutShortWhileItIsOpen) {
    writeSet(path_, Mode::kCreate, {"one"});
    const auto file = SetFile::open(path_);
    EXPECT_NO_THROW(file->requireWhole());
    std::filesystem::resize_file(path_, 5000);
    std::filesystem::resize_file(path_, file->size() - 1);
    const Refusal refusal = refusalOf([&] { file->requireWhole(); });
    EXPECT_EQ(refusal.kind, ErrorKind::kDamaged);
    EXPECT_EQ(refusal.text, path_ + ": has " + std::to_string(file->size() - 1) +
                                " bytes instead of " + std::to_string(file->size()));
    EXPECT_EQ(refusalOf([&] { file->verifySums(); }).kind, ErrorKind::kDamaged);
}

TEST_F(ASetFile, keepsWhatItHasOpenedWhileTheFileChanges) {
    writeSet(path_, Mode::kCreate, {"one"});
    const auto file = SetFile::open(path_);
    writeSet(path_, Mode::kAppend, {"two"});
    EXPECT_THAT(segmentsOf(*file), ElementsAre("one"));
    const auto grown = SetFile::open(path_);
    writeSet(path_, Mode::kReplace, {"three"});
    EXPECT_THAT(segmentsOf(*file), ElementsAre("one"));
    EXPECT_THAT(segmentsOf(*grown), ElementsAre("one", "two"));
    EXPECT_NO_THROW(grown->requireWhole());
    EXPECT_THAT(segmentsOf(path_), ElementsAre("three"));
}

TEST_F(ASetFile, tellsWhichSegmentIsDamaged) {
    writeSet(path_, Mode::kCreate, {"one", "two"});
    damage(2 * kPageSize + 1);
    const auto damages = SetFile::open(path_)->verifySums();
    ASSERT_EQ(damages.size(), 1U);
    EXPECT_EQ(damages[0].kind(), ErrorKind::kDamaged);
    EXPECT_EQ(damages[0].what(), path_ + ": segment 2 at byte 8192: the sum differs");
}

TEST_F(ASetFile, tellsWhichSuperblockIsDamagedAndReadsTheOther) {
    for (const std::size_t offset : kSuperblockOffsets) {
        writeSet(path_, Mode::kReplace, {"one"});
        damage(offset + 3);
        const auto file = SetFile::open(path_);
        EXPECT_THAT(segmentsOf(*file), ElementsAre("one"));
        const auto damages = file->verifySums();
        ASSERT_EQ(damages.size(), 1U);
        EXPECT_EQ(damages[0].what(),
                  path_ + ": the superblock at byte " + std::to_string(offset) + " is damaged");
    }
}

TEST_F(ASetFile, losesNothingWithTheSuperblockThatWasWrittenLast) {
    writeSet(path_, Mode::kCreate, {"one"});
    writeSet(path_, Mode::kAppend, {"two"});
    for (const std::size_t offset : kSuperblockOffsets) damage(offset);
    const auto file = SetFile::open(path_);
    EXPECT_THAT(segmentsOf(*file), ElementsAre("one", "two"));
    EXPECT_EQ(file->verifySums().size(), 2U);
}

TEST_F(ASetFile, isRefusedIfNoSuperblockIsWhole) {
    writeSet(path_, Mode::kCreate, {"one"});
    for (const std::size_t offset : kSuperblockOffsets) damage(offset);
    damage(std::filesystem::file_size(path_) - 1);
    expectRefusal(ErrorKind::kDamaged, "both superblocks are damaged");
}

TEST_F(ASetFile, showsWhatWasThereBeforeIfTheLastDirectoryIsDamaged) {
    writeSet(path_, Mode::kCreate, {"one"});
    writeSet(path_, Mode::kAppend, {"two"});
    damage(SetFile::open(path_)->state().superblock.directoryOffset);
    const auto file = SetFile::open(path_);
    EXPECT_THAT(segmentsOf(*file), ElementsAre("one"));
    const auto damages = file->verifySums();
    ASSERT_EQ(damages.size(), 1U);
    EXPECT_THAT(damages[0].what(), HasSubstr("the directory that was written last is damaged"));
}

TEST_F(ASetFile, isRefusedIfItsOneDirectoryIsDamaged) {
    writeSet(path_, Mode::kCreate, {"one"});
    const std::uint64_t offset = SetFile::open(path_)->state().superblock.directoryOffset;
    const auto file = SetFile::open(path_);
    std::string content = contentOf(path_);
    damage(offset);
    expectRefusal(ErrorKind::kDamaged,
                  "the directory at byte " + std::to_string(offset) + " is damaged");
}

TEST_F(ASetFile, tellsWhatIsDamagedAfterItWasOpened) {
    writeSet(path_, Mode::kCreate, {"one"});
    const auto file = SetFile::open(path_);
    for (const std::size_t offset : {std::size_t{20}, std::size_t{kPageSize}, file->size() - 60}) {
        std::fstream(path_, std::ios::in | std::ios::out | std::ios::binary)
            .seekp(static_cast<std::streamoff>(offset))
            .put('\x77');
    }
    const auto damages = file->verifySums();
    ASSERT_EQ(damages.size(), 3U);
    EXPECT_EQ(damages[0].what(), path_ + ": the header is damaged");
    EXPECT_THAT(damages[1].what(), HasSubstr("the directory at byte"));
    EXPECT_THAT(damages[2].what(), HasSubstr("segment 1 at byte 4096"));
}

TEST_F(ASetFile, hasADamageInItsFirstBytes) {
    writeSet(path_, Mode::kCreate, {"one"});
    damage(0);
    expectRefusal(ErrorKind::kNotASet, "is no saved set");
    damage(0);
    damage(8);
    expectRefusal(ErrorKind::kDamaged, "the header is damaged");
}

}  // namespace
}  // namespace zqpaths
