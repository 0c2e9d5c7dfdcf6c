// docs/zqp.md tells what set files hold.

#define XXH_INLINE_ALL
#include <gtest/gtest.h>
#include <xxhash.h>

#include <cstdint>
#include <string>

#include "tests/docs/Page.hpp"
#include "tests/support/ProgramRun.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/tools/zqpaths/SavedFields.hpp"
#include "tools/zqpaths/SetFile.hpp"

namespace zqpaths {
namespace {

class TheSetFilePage : public ::testing::Test {
protected:
    TheSetFilePage() {
        SetFile::save(file_, kSomeClass, makeFields(100), SetFile::Existing::kRefuse);
    }

    std::string answerOf(const std::string& statements) const {
        const auto run = test_support::runProgram({"sqlite3", file_, statements});
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        return run.output;
    }

    static std::int64_t checksumOf(const std::string& bytes) {
        return static_cast<std::int64_t>(XXH3_64bits(bytes.data(), bytes.size()));
    }

    test_support::TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
    docs::Page page_{"docs/zqp.md"};
};

TEST_F(TheSetFilePage, showsTheSchema) {
    EXPECT_EQ(answerOf(".schema"), page_.blocksIn("sql").at("zqp-schema"));
}

TEST_F(TheSetFilePage, tellsWhatTheChecksumOfTheObjectIsOf) {
    const std::string description = answerOf(page_.blocksIn("sql").at("zqp-description"));
    EXPECT_EQ(description, "some.Class\nText|char|1|5\nBytes|uint8|100|1\nNumbers|double|3|1\n");
    EXPECT_EQ(answerOf("SELECT checksum FROM objects"),
              std::to_string(checksumOf(description)) + "\n");
}

TEST_F(TheSetFilePage, tellsHowElementsAreStored) {
    EXPECT_EQ(answerOf("SELECT hex(data) FROM parts WHERE field IN (1, 3)"),
              "6100E90000D800007A00\n"
              "000000000000E03F00000000000008C09C7500883CE4377E\n");
    const auto bytes = makeBytes(100);
    EXPECT_EQ(answerOf("SELECT checksum FROM parts WHERE field = 2"),
              std::to_string(checksumOf({bytes.begin(), bytes.end()})) + "\n");
}

TEST_F(TheSetFilePage, tellsWhatIsAroundTheTables) {
    EXPECT_EQ(answerOf("PRAGMA application_id; PRAGMA user_version; PRAGMA page_size;"
                       "PRAGMA auto_vacuum; PRAGMA journal_mode"),
              "2054254707\n1\n65536\n1\ndelete\n");
}

}  // namespace
}  // namespace zqpaths
