// README.md shows the example of a host program as it is, and what it prints.

#include <gtest/gtest.h>

#include <string>

#include "tests/docs/Page.hpp"
#include "tests/support/ProgramRun.hpp"

namespace {

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    return text;
}

TEST(HostProgram, isTheExample) {
    EXPECT_EQ(docs::Page("README.md").blocksIn("cpp").at("host-session"),
              joined(docs::Page("examples/host_session.cpp").lines()));
}

TEST(HostProgram, printsWhatThePageSays) {
    const auto run = test_support::runProgram({ZQ_HOST_SESSION, ZQ_LIBRARY});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, docs::Page("README.md").blocksIn("text").at("host-session-output"));
}

}  // namespace
