// The quick start of README.md and the program in C after it compile as they stand there and print
// what the page says.

#include <gtest/gtest.h>

#include <string>

#include "tests/docs/Page.hpp"
#include "tests/support/ProgramRun.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace {

/// Expects that a program prints, where it is run in `directory`, what the page says under `name`.
void expectOutput(const char* program, const std::string& directory, const std::string& name) {
    const auto run = test_support::runProgram({"env", "--chdir=" + directory, program});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output, docs::Page("README.md").blocksIn("text").at(name));
}

TEST(QuickStart, printsWhatThePageSays) {
    const test_support::TemporaryTree tree;  // the program makes a file where it is run
    expectOutput(ZQ_QUICK_START, tree.path(), "quick-start-output");
}

TEST(QuickStart, makesWhatTheProgramInCReads) {
    const test_support::TemporaryTree tree;
    expectOutput(ZQ_QUICK_START, tree.path(), "quick-start-output");
    expectOutput(ZQ_FROM_C, tree.path(), "from-c-output");
}

}  // namespace
