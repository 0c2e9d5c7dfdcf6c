// Runs the examples of programs on the library, in C++ and in C, as a person does. They do the
// same.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/support/ProgramRun.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace {

using test_support::ProgramRun;
using test_support::runProgram;
using test_support::TemporaryTree;
using testing::HasSubstr;

/// The parameter is the program.
class LibrarySession : public testing::TestWithParam<std::string> {};

TEST_P(LibrarySession, printsTheLastPathAndThoseThatHoldAText) {
    const TemporaryTree tree;
    const ProgramRun run = runProgram({GetParam(), tree.pathOf("s.zqp"), "/lib", "/usr/bin/x",
                                       "/usr/lib/libz.so", "caf\xC3\xA9\xFF"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, "3 paths, the last one is caf\xC3\xA9\xFF\n2\t/usr/lib/libz.so\n");
    EXPECT_EQ(run.errors, "");
}

TEST_P(LibrarySession, saysThatTheSetIsThereAlready) {
    const TemporaryTree tree;
    const std::string file = tree.addFile("s.zqp", "text");
    const ProgramRun run = runProgram({GetParam(), file, "a", "a"});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(run.errors, HasSubstr(file + ": is there already"));
}

TEST_P(LibrarySession, saysHowItIsUsed) {
    const ProgramRun run = runProgram({GetParam(), "s.zqp"});
    EXPECT_EQ(run.exitStatus, 2);
    const std::string name = GetParam().substr(GetParam().rfind('/') + 1);
    EXPECT_EQ(run.errors, "usage: " + name + " SET TEXT PATH...\n");
}

INSTANTIATE_TEST_SUITE_P(InCpp, LibrarySession, testing::Values(ZQ_LIBRARY_SESSION));
INSTANTIATE_TEST_SUITE_P(InC, LibrarySession, testing::Values(ZQ_C_SESSION));

}  // namespace
