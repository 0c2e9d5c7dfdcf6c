#pragma once
// What the process writes to its standard output during a call:
//
//     const std::string written = standardOutputOf([] { std::cout << "hello" << std::endl; });
//
// What is still in a buffer at the end of the call has not been written.
//
// Threads: one call at a time in a process.

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include "tests/support/ProgramRun.hpp"

namespace binding_tests {

/// Standard output goes elsewhere while it lives.
class StandardOutput {
public:
    StandardOutput() : kept_(::dup(STDOUT_FILENO)) {
        // What was written before does not belong to it.
        if (kept_ < 0 || std::fflush(stdout) != 0 || ::dup2(written_.number(), STDOUT_FILENO) < 0)
            throw std::system_error(errno, std::generic_category(), "standard output");
    }
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;
    ~StandardOutput() {
        ::dup2(kept_, STDOUT_FILENO);
        ::close(kept_);
    }

    std::string text() const { return written_.text(); }

private:
    test_support::CapturedStream written_{"standard output"};
    int kept_;
};

template <class Call>
std::string standardOutputOf(Call call) {
    const StandardOutput output;
    call();
    return output.text();
}

}  // namespace binding_tests
