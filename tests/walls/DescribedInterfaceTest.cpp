// The C interface is the one whose description is kept, and scripts/abi finds where it is not.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ProgramRun.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace {

using test_support::ProgramRun;
using test_support::runProgram;
using testing::HasSubstr;

ProgramRun runAbi(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), ZQ_SOURCE_DIR "/scripts/abi");
    return runProgram(std::move(arguments));
}

TEST(DescribedInterface, isTheOneThatIsKept) {
    const ProgramRun run = runAbi({ZQ_DESCRIBED_INTERFACE});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output + run.errors, "");
}

/// What stands in a description from `begin` to `end`, both included.
std::string partOf(const std::string& content, const std::string& begin, const std::string& end) {
    const std::size_t first = content.find(begin);
    if (first == std::string::npos) throw std::runtime_error("there is no " + begin);
    return content.substr(first, content.find(end, first) + end.size() - first);
}

class ChangedInterface : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(runAbi({"--write", ZQ_DESCRIBED_INTERFACE, description_}).exitStatus, 0);
        content_ = zqpaths::contentOf(description_);
    }

    /// Changes the first place of a text in the description, and expects that the script says what
    /// makes the library another.
    void expectFound(const std::string& text, const std::string& replacement,
                     const std::string& difference) {
        const std::size_t place = content_.find(text);
        ASSERT_NE(place, std::string::npos) << content_;
        zqpaths::writeContent(description_, content_.replace(place, text.size(), replacement));
        const ProgramRun run = runAbi({ZQ_DESCRIBED_INTERFACE, description_});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.errors, HasSubstr(difference));
        EXPECT_THAT(run.errors, HasSubstr("is not the one that is kept in " + description_));
    }

    test_support::TemporaryTree tree_;
    std::string description_ = tree_.pathOf("kept.abi");
    std::string content_;
};

TEST_F(ChangedInterface, isFoundByTheValueOfAStatus) {
    expectFound("<enumerator name='ZQP_HELD' value='5'/>",
                "<enumerator name='ZQP_HELD' value='4'/>",
                "'zqp_status::ZQP_HELD' from value '4' to '5'");
}

TEST_F(ChangedInterface, isFoundByTheSizeOfAType) {
    expectFound("name='unsigned long int' size-in-bits='64'",
                "name='unsigned long int' size-in-bits='32'", "zqp_size");
}

TEST_F(ChangedInterface, isFoundByAFunctionLess) {
    const std::string symbol = partOf(content_, "<elf-symbol name='zqp_size'", "/>");
    std::string gone = symbol;
    gone.replace(gone.find("zqp_size"), 8, "zqp_gone");
    expectFound(symbol, symbol + gone, "zqp_gone");
}

TEST_F(ChangedInterface, isFoundByAFunctionMore) {
    const std::string function =
        partOf(content_, "<function-decl name='zqp_size'", "</function-decl>");
    content_.erase(content_.find(function), function.size());
    expectFound(partOf(content_, "<elf-symbol name='zqp_size'", "/>"), "", "zqp_size");
}

TEST_F(ChangedInterface, isFoundByTheVersionOfAFunction) {
    const std::string symbol = partOf(content_, "<elf-symbol name='zqp_size'", "/>");
    std::string older = symbol;
    older.replace(older.find("ZQPATHS_0.1"), 11, "ZQPATHS_0.0");
    expectFound(symbol, older, "zqp_size");
}

TEST(DescribedInterface, isNotReadFromALibraryWithoutDebugInformation) {
    const test_support::TemporaryTree tree;
    const std::string stripped = tree.pathOf("libzqpaths.so");
    ASSERT_EQ(
        runProgram({"strip", "--strip-debug", "-o", stripped, ZQ_DESCRIBED_INTERFACE}).exitStatus,
        0);
    const ProgramRun run = runAbi({stripped});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.errors, HasSubstr(stripped + " has no functions for C or was not built"));
    EXPECT_EQ(runAbi({tree.pathOf("none.so")}).exitStatus, 2);
}

}  // namespace
