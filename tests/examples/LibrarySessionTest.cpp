// Runs the example of a program on the library as a person does.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/ProgramRun.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace {

using test_support::ProgramRun;
using test_support::runProgram;
using test_support::TemporaryTree;
using testing::HasSubstr;

TEST(LibrarySession, printsTheLastPathAndThoseThatHoldAText) {
    const TemporaryTree tree;
    const ProgramRun run = runProgram({ZQ_LIBRARY_SESSION, tree.pathOf("s.zqp"), "/lib",
                                       "/usr/bin/x", "/usr/lib/libz.so", "caf\xC3\xA9\xFF"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, "3 paths, the last one is caf\xC3\xA9\xFF\n2\t/usr/lib/libz.so\n");
    EXPECT_EQ(run.errors, "");
}

TEST(LibrarySession, saysThatTheSetIsThereAlready) {
    const TemporaryTree tree;
    const std::string file = tree.addFile("s.zqp", "text");
    const ProgramRun run = runProgram({ZQ_LIBRARY_SESSION, file, "a", "a"});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(run.errors, HasSubstr(file + ": is there already"));
}

TEST(LibrarySession, saysHowItIsUsed) {
    const ProgramRun run = runProgram({ZQ_LIBRARY_SESSION, "s.zqp"});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.errors, "usage: library_session SET TEXT PATH...\n");
}

}  // namespace
