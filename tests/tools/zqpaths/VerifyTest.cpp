// Sets whose checksums are right and whose contents are not what the class saves.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "tests/tools/zqpaths/SavedFields.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathSetClass.hpp"
#include "tools/zqpaths/SetFile.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

using Fields = std::vector<std::pair<std::string, korvex::Array>>;

class Verify : public ::testing::Test {
protected:
    void expectRefusal(const std::string& className, Fields fields, ExitStatus status) {
        SetFile::save(file_, className, makeStructure(std::move(fields)),
                      SetFile::Existing::kReplace);
        try {
            runVerify({.set = file_, .disk = false}, {.quiet = true, .noProgress = true});
            ADD_FAILURE() << "it is taken for whole";
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.status(), status) << failure.what();
            EXPECT_THAT(failure.what(), ::testing::StartsWith(file_ + ": "));
        }
    }

    static Fields makeSetFields(std::u16string_view characters, korvex::Array pathTree) {
        Fields fields;
        fields.emplace_back("StringTree", korvex::text(characters));
        fields.emplace_back("PathTree", std::move(pathTree));
        return fields;
    }

    test_support::TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
};

TEST_F(Verify, refusesASavedFormThatIsNone) {
    expectRefusal(kPathSetClass, makeSetFields(u"abc", korvex::bytes(makeBytes(1'000))),
                  ExitStatus::kDamaged);
    expectRefusal(kPathSetClass, makeSetFields(u"abc", korvex::bytes({})), ExitStatus::kDamaged);
}

TEST_F(Verify, refusesFieldsThatAreNotThere) {
    expectRefusal(kPathSetClass, {}, ExitStatus::kDamaged);
}

TEST_F(Verify, refusesFieldsOfOtherClasses) {
    Fields fields;
    fields.emplace_back("StringTree", korvex::bytes(makeBytes(10)));
    fields.emplace_back("PathTree", korvex::text(u"abc"));
    expectRefusal(kPathSetClass, std::move(fields), ExitStatus::kDamaged);
}

TEST_F(Verify, refusesObjectsOfOtherClasses) {
    expectRefusal(kSomeClass, makeSetFields(u"abc", korvex::bytes({})), ExitStatus::kFailed);
}

}  // namespace
}  // namespace zqpaths
