// The quick start of README.md compiles as it stands there and prints what the page says.

#include <gtest/gtest.h>

#include "tests/docs/Page.hpp"
#include "tests/support/ProgramRun.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace {

TEST(QuickStart, printsWhatThePageSays) {
    const docs::Page page("README.md");
    const test_support::TemporaryTree tree;  // the program makes a file where it is run
    const auto run = test_support::runProgram({"env", "--chdir=" + tree.path(), ZQ_QUICK_START});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output, page.blocksIn("text").at("quick-start-output"));
}

}  // namespace
