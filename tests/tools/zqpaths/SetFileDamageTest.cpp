// What becomes of set files whose bytes are not those that were saved.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <string>

#include "tests/support/ProgramRun.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/tools/zqpaths/SavedFields.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/SetFile.hpp"

namespace zqpaths {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::HasSubstr;

constexpr std::uint64_t kMebibyte = 1U << 20;

class ADamagedSetFile : public ::testing::Test {
protected:
    void save(std::size_t byteCount) {
        fields_ = makeFields(byteCount);
        SetFile::save(file_, kSomeClass, fields_, SetFile::Existing::kReplace);
    }

    void spoil(const std::string& statements) const {
        const auto run = test_support::runProgram({"sqlite3", file_, statements});
        ASSERT_EQ(run.exitStatus, 0) << run.errors;
    }

    std::string fileBytes() const {
        std::ifstream in(file_, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    void overwrite(std::size_t offset, char byte) const {
        std::fstream out(file_, std::ios::binary | std::ios::in | std::ios::out);
        out.seekp(static_cast<std::streamoff>(offset));
        out.put(byte);
        ASSERT_TRUE(out.flush());
    }

    /// A file is refused or told to be damaged, or else holds what was saved: not every byte of a
    /// database says something.
    void expectNothingElseThanWhatWasSaved() const {
        try {
            const bool isWhole = SetFile::check(file_).empty();
            std::optional<SetFile::Content> content;
            try {
                content = SetFile::load(file_);
            } catch (const Failure& failure) {
                EXPECT_EQ(failure.status(), ExitStatus::kDamaged) << failure.what();
                EXPECT_FALSE(isWhole) << failure.what();
            }
            if (!content) return;
            EXPECT_EQ(content->className, kSomeClass);
            expectEqualFields(content->fields.get(), fields_.get());
        } catch (const Failure&) {
            return;  // not taken for a set
        }
    }

    test_support::TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
    korvex::Array fields_;
};

TEST_F(ADamagedSetFile, isToldWithFieldAndOffsetOfEachPart) {
    save(3 * kMebibyte + 5);
    spoil(
        "UPDATE parts SET data = zeroblob(1048576) WHERE field = 2 AND number = 1;"
        "UPDATE parts SET data = zeroblob(2097152) WHERE field = 2 AND number = 2;"
        "DELETE FROM parts WHERE field = 3");
    const auto damages = SetFile::check(file_);
    EXPECT_THAT(
        damages,
        ElementsAre(
            AllOf(Field(&SetFile::Damage::field, "Bytes"),
                  Field(&SetFile::Damage::offset, kMebibyte),
                  Field(&SetFile::Damage::reason, "the checksum differs")),
            AllOf(Field(&SetFile::Damage::field, "Bytes"),
                  Field(&SetFile::Damage::offset, 2 * kMebibyte),
                  Field(&SetFile::Damage::reason, "the part has 2097152 bytes instead of 1048576")),
            AllOf(Field(&SetFile::Damage::field, "Numbers"), Field(&SetFile::Damage::offset, 0),
                  Field(&SetFile::Damage::reason, "the part is missing"))));
    EXPECT_EQ(SetFile::describe(damages[0]), "field Bytes, byte 1048576: the checksum differs");
    try {
        SetFile::load(file_);
        ADD_FAILURE() << "it is loaded";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::kDamaged);
        EXPECT_EQ(failure.what(), file_ + ": field Bytes, byte 1048576: the checksum differs");
    }
}

class ASetFileWithSpoiltDescription : public ADamagedSetFile,
                                      public ::testing::WithParamInterface<const char*> {};

TEST_P(ASetFileWithSpoiltDescription, isDamaged) {
    save(100);
    spoil(GetParam());
    const auto damages = SetFile::check(file_);
    ASSERT_EQ(damages.size(), 1U);
    EXPECT_EQ(damages[0].field, "");
    try {
        SetFile::load(file_);
        ADD_FAILURE() << "it is loaded";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::kDamaged);
        EXPECT_EQ(failure.what(), file_ + ": " + damages[0].reason);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Everywhere, ASetFileWithSpoiltDescription,
    ::testing::Values("UPDATE objects SET class = 'some.Cl4ss'", "DELETE FROM objects",
                      "INSERT INTO objects SELECT 2, class, checksum FROM objects",
                      "DELETE FROM fields WHERE field = 3",
                      "UPDATE fields SET name = 'Text2' WHERE field = 1",
                      "UPDATE fields SET class = 'uint9' WHERE field = 2",
                      "UPDATE fields SET row_count = 99 WHERE field = 2",
                      "UPDATE fields SET row_count = 1 << 60 WHERE field = 2",
                      "UPDATE fields SET row_count = -1 WHERE field = 2",
                      "UPDATE fields SET column_count = 2 WHERE field = 2", "DROP TABLE parts",
                      "DROP TABLE fields", "ALTER TABLE objects RENAME COLUMN class TO kind"));

TEST_F(ADamagedSetFile, neverGivesAnotherContentWithABitChanged) {
    save(3'000);
    const std::string original = fileBytes();
    std::mt19937 random(1);
    for (std::size_t offset = 0; offset < original.size(); ++offset) {
        // All bytes that are not zero, and some of the empty space.
        if (original[offset] == '\0' && random() % 500 != 0) continue;
        SCOPED_TRACE(offset);
        overwrite(offset, static_cast<char>(original[offset] ^ (1 << random() % 8)));
        expectNothingElseThanWhatWasSaved();
        overwrite(offset, original[offset]);
        if (HasFailure()) return;
    }
    EXPECT_EQ(fileBytes(), original);
}

TEST_F(ADamagedSetFile, isNeverWholeWhenItIsCutShort) {
    save(200'000);
    const std::string original = fileBytes();
    std::mt19937 random(2);
    for (std::size_t size = original.size() - 1; size > 0;
         size -= std::min(size, random() % 4'096 + 1)) {
        SCOPED_TRACE(size);
        std::filesystem::resize_file(file_, size);
        try {
            EXPECT_FALSE(SetFile::check(file_).empty());
        } catch (const Failure& failure) {
            EXPECT_LT(size, 65'536U) << failure.what();  // the first page tells that it is a set
        }
    }
}

TEST_F(ADamagedSetFile, isDamagedWhereSqliteSaysSo) {
    save(10);
    overwrite(17, '\x7F');  // the page size, which then is no power of two
    const auto damages = SetFile::check(file_);
    ASSERT_EQ(damages.size(), 1U);
    EXPECT_THAT(damages[0].reason, HasSubstr("not a database"));
}

}  // namespace
}  // namespace zqpaths
