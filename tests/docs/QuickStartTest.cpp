// The quick start of README.md compiles as it stands there and prints what the page says.

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/docs/Page.hpp"

namespace {

/// What a program prints, and how it ends.
struct Outcome {
    std::string output;
    int status;
};

Outcome run(const char* program) {
    // NOLINTNEXTLINE(cert-env33-c): the command is the path of a program that this build made.
    std::FILE* const pipe = popen(program, "r");
    if (pipe == nullptr) throw std::runtime_error("the program cannot be started");
    std::string output;
    for (int character = std::fgetc(pipe); character != EOF; character = std::fgetc(pipe))
        output.push_back(static_cast<char>(character));
    return {output, pclose(pipe)};
}

TEST(QuickStart, printsWhatThePageSays) {
    const docs::Page page("README.md");
    const Outcome quickStart = run(ZQ_QUICK_START);
    EXPECT_EQ(quickStart.status, 0);
    EXPECT_EQ(quickStart.output, page.blocksIn("text").at("quick-start-output"));
}

}  // namespace
