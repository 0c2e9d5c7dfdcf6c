#include "tools/zqpaths/SetFile.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>
#include <string>

#include "tests/support/ProgramRun.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/tools/zqpaths/SavedFields.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

using test_support::runProgram;
using test_support::TemporaryTree;
using ::testing::HasSubstr;

using Existing = SetFile::Existing;

/// What a call of SetFile is refused with; a call that is not refused fails the test.
template <class Call>
Failure failureOf(const Call& call) {
    try {
        call();
    } catch (const Failure& failure) {
        return failure;
    }
    ADD_FAILURE() << "nothing is refused";
    return {ExitStatus::kDone, ""};
}

template <class Call>
void expectRefusal(const Call& call, ExitStatus status, const std::string& text) {
    const Failure failure = failureOf(call);
    EXPECT_EQ(failure.status(), status);
    EXPECT_THAT(failure.what(), HasSubstr(text));
}

void runSql(const std::string& file, const std::string& statements) {
    const auto run = runProgram({"sqlite3", file, statements});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
}

class ASetFile : public ::testing::Test {
protected:
    std::set<std::string> namesInFolder() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(tree_.path()))
            names.insert(entry.path().filename());
        return names;
    }

    void save(const korvex::Array& fields, Existing existing = Existing::kRefuse) const {
        SetFile::save(file_, kSomeClass, fields, existing);
    }

    void expectContent(const korvex::Array& fields) const {
        const SetFile::Content content = SetFile::load(file_);
        EXPECT_EQ(content.className, kSomeClass);
        expectEqualFields(content.fields.get(), fields.get());
        EXPECT_THAT(SetFile::check(file_), ::testing::IsEmpty());
    }

    TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
};

TEST_F(ASetFile, givesBackWhatWasSaved) {
    save(makeFields(1'000));
    expectContent(makeFields(1'000));
    EXPECT_EQ(namesInFolder(), std::set<std::string>{"s.zqp"});
}

class ASetFileOfBytes : public ASetFile, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(ASetFileOfBytes, givesBackAsManyAsWereSaved) {
    save(makeFields(GetParam()));
    expectContent(makeFields(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(AroundParts, ASetFileOfBytes,
                         ::testing::Values(0, 1, (1U << 20) - 1, 1U << 20, (1U << 20) + 1,
                                           3U << 20));

TEST_F(ASetFile, keepsArraysWithoutElements) {
    std::vector<std::pair<std::string, korvex::Array>> fields;
    fields.emplace_back("row", korvex::text(u""));
    fields.emplace_back("column", korvex::numbers({}));
    fields.emplace_back("nothing", korvex::Array(kxCreateNumeric(kxClass::kDouble, {0, 0})));
    const korvex::Array structure = makeStructure(std::move(fields));
    save(structure);
    expectContent(structure);
}

TEST_F(ASetFile, keepsAStructureWithoutFields) {
    save(makeStructure({}));
    expectContent(makeStructure({}));
}

TEST_F(ASetFile, refusesArraysThatAreNoRowsOrColumns) {
    const kxArrayPtr arrays[] = {kxArrayPtr(kxCreateNumeric(kxClass::kDouble, {2, 2})),
                                 kxArrayPtr(kxCreateNumeric(kxClass::kDouble, {1, 2})),
                                 kxArrayPtr(kxCreateNumeric(kxClass::kCharacter, {2, 1})),
                                 kxArrayPtr(kxCreateNumeric(kxClass::kUint8, {2, 1, 1})),
                                 kxArrayPtr(kxCreateNumeric(kxClass::kInt32, {2, 1})),
                                 kxArrayPtr(kxCreateCell({1, 1}))};
    for (const kxArrayPtr& array : arrays) {
        std::vector<std::pair<std::string, korvex::Array>> fields;
        fields.emplace_back("odd", korvex::Array(kxDuplicateArray(array.get())));
        const korvex::Array structure = makeStructure(std::move(fields));
        expectRefusal([&] { save(structure); }, ExitStatus::kFailed, "field odd");
    }
    EXPECT_THAT(namesInFolder(), ::testing::IsEmpty());
}

TEST_F(ASetFile, isReplacedOnlyIfThatIsWanted) {
    save(makeFields(10));
    expectRefusal([&] { save(makeFields(20)); }, ExitStatus::kFailed, "is there already");
    expectContent(makeFields(10));
    save(makeFields(20), Existing::kReplace);
    expectContent(makeFields(20));
}

TEST_F(ASetFile, isMadeAlsoWhereOneMayBeReplaced) {
    save(makeFields(10), Existing::kReplace);
    expectContent(makeFields(10));
}

TEST_F(ASetFile, isNoLargerThanANewOneWhenItIsReplacedByALessOne) {
    save(makeFields(10));
    const auto size = std::filesystem::file_size(file_);
    save(makeFields(5U << 20), Existing::kReplace);
    EXPECT_GT(std::filesystem::file_size(file_), size + (4U << 20));
    save(makeFields(10), Existing::kReplace);
    EXPECT_EQ(std::filesystem::file_size(file_), size);
}

TEST_F(ASetFile, isTheSameToTheByteWhenItIsMadeAgain) {
    save(makeFields(100'000));
    SetFile::save(tree_.pathOf("again"), kSomeClass, makeFields(100'000), Existing::kRefuse);
    EXPECT_EQ(runProgram({"cmp", file_, tree_.pathOf("again")}).exitStatus, 0);
}

TEST_F(ASetFile, canBeReadByWhomTheUsersMaskAllows) {
    const mode_t mask = umask(027);
    save(makeFields(10));
    umask(mask);
    struct stat found {};
    ASSERT_EQ(stat(file_.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777U, 0640U);
}

TEST_F(ASetFile, mayHaveAnyName) {
    const auto former = std::filesystem::current_path();
    std::filesystem::current_path(tree_.path());
    for (const std::string& name : {std::string(":memory:"), std::string("file:x?mode=memory"),
                                    std::string(255, 'n'), std::string("new\nline \xFF")}) {
        SetFile::save(name, kSomeClass, makeFields(10), Existing::kRefuse);
        expectEqualFields(SetFile::load(name).fields.get(), makeFields(10).get());
        EXPECT_TRUE(std::filesystem::exists(tree_.pathOf(name)));
    }
    EXPECT_EQ(namesInFolder().size(), 4U);
    std::filesystem::current_path(former);
}

TEST_F(ASetFile, isHeldByAnUpdateFromReadingToSaving) {
    save(makeFields(10));
    SetFile::Update update(file_);
    expectEqualFields(update.load().fields.get(), makeFields(10).get());
    const auto other = runProgram({"sqlite3", file_, "BEGIN IMMEDIATE"});
    EXPECT_THAT(other.errors, HasSubstr("locked"));
    update.save(kSomeClass, makeFields(20));
    expectContent(makeFields(20));
}

TEST_F(ASetFile, staysAsItIsWhenAnUpdateIsNotSaved) {
    save(makeFields(10));
    { SetFile::Update update(file_); }
    expectContent(makeFields(10));
    EXPECT_EQ(namesInFolder(), std::set<std::string>{"s.zqp"});
}

TEST_F(ASetFile, isRefusedWhereItsPathIsTooLongForSqlite) {
    const std::string name(200, 'n');
    std::string path = tree_.addDirectory(name + "/" + name + "/" + name) + "/s.zqp";
    expectRefusal([&] { SetFile::save(path, kSomeClass, makeFields(1), Existing::kRefuse); },
                  ExitStatus::kFailed, "SQLite takes no full path of more than 504 bytes");
    EXPECT_THAT(runProgram({"find", tree_.path(), "-type", "f"}).output, ::testing::IsEmpty());
}

TEST_F(ASetFile, isMissedByItsName) {
    for (const auto& call : {std::function<void()>([&] { SetFile::load(file_); }),
                             std::function<void()>([&] { SetFile::check(file_); }),
                             std::function<void()>([&] { SetFile::Update update(file_); })})
        expectRefusal(call, ExitStatus::kFailed, file_ + ": No such file or directory");
}

TEST_F(ASetFile, isNoDirectoryAndNoDevice) {
    expectRefusal([&] { SetFile::load(tree_.path()); }, ExitStatus::kFailed, "Is a directory");
    expectRefusal([] { SetFile::load("/dev/null"); }, ExitStatus::kFailed, "is no regular file");
    expectRefusal([] { SetFile::save("/dev/null", kSomeClass, makeFields(1), Existing::kReplace); },
                  ExitStatus::kFailed, "is no regular file");
}

TEST_F(ASetFile, isNeverMadeOfAnotherFile) {
    for (const std::string& content :
         {std::string(), std::string("text"), std::string(9'999, 'x')}) {
        tree_.addFile("s.zqp", content);
        expectRefusal([&] { SetFile::load(file_); }, ExitStatus::kFailed, "is no saved set");
        expectRefusal([&] { SetFile::check(file_); }, ExitStatus::kFailed, "is no saved set");
        expectRefusal([&] { save(makeFields(1), Existing::kReplace); }, ExitStatus::kFailed,
                      "is no saved set");
        EXPECT_EQ(std::filesystem::file_size(file_), content.size());
    }
}

TEST_F(ASetFile, isNoDatabaseOfAnotherProgram) {
    runSql(file_, "CREATE TABLE parts (data)");
    expectRefusal([&] { SetFile::load(file_); }, ExitStatus::kFailed,
                  "is a database of another program");
    expectRefusal([&] { save(makeFields(1), Existing::kReplace); }, ExitStatus::kFailed,
                  "is a database of another program");
}

TEST_F(ASetFile, isOfAVersionThatIsKnown) {
    save(makeFields(1));
    runSql(file_, "PRAGMA user_version = 2");
    expectRefusal([&] { SetFile::load(file_); }, ExitStatus::kFailed, "is a set of version 2");
    expectRefusal([&] { save(makeFields(1), Existing::kReplace); }, ExitStatus::kFailed,
                  "is a set of version 2");
}

TEST_F(ASetFile, runsNoTriggersOfItsOwn) {
    save(makeFields(1));
    runSql(file_, "CREATE TRIGGER spoil AFTER INSERT ON parts BEGIN DELETE FROM objects; END");
    save(makeFields(2), Existing::kReplace);
    expectContent(makeFields(2));
}

}  // namespace
}  // namespace zqpaths
