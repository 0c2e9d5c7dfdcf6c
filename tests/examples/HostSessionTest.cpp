// Runs the example of a host program as a person does.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ProgramRun.hpp"

namespace {

using test_support::ProgramRun;
using test_support::runProgram;

TEST(HostSession, printsPathsByNumberAndFromALoadedSet) {
    const ProgramRun run = runProgram({ZQ_HOST_SESSION, ZQ_LIBRARY});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, "/data/b.txt /data/a.txt\n/ data a.txt\n/ data b.txt\n");
    EXPECT_EQ(run.errors, "");
}

TEST(HostSession, saysThatThereIsNoLibrary) {
    const ProgramRun run = runProgram({ZQ_HOST_SESSION, "/none/such.so"});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(run.errors, testing::HasSubstr("KORVEX:runtime:cannotLoadLibrary"));
    EXPECT_THAT(run.errors, testing::HasSubstr("/none/such.so"));
}

}  // namespace
