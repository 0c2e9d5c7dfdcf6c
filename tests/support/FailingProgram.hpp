#pragma once
// Runs a program whose n-th system call fails, or ends it, by FailingSystemCalls.cpp in a library
// that the system loads before all others:
//
//     const FailingProgram failing(library, "/tmp/call");
//     const FailedRun run = failing.run({"/bin/prog", "x"}, {5, Effect::kFailsOnce, EIO});
//     run.call;  // "fdatasync"; empty if it never made a fifth
//
// Threads: an object runs one program at a time.

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/FailingSystemCalls.hpp"
#include "tests/support/ProgramRun.hpp"

namespace test_support {

/// What happens, and to which call.
struct CallFailure {
    std::size_t number;
    FailingSystemCalls::Effect effect;
    int error;
};

struct FailedRun {
    ProgramRun program;
    std::string call;  // to which it happened
};

// How the library is told, which FailingProgram.cpp reads: the three numbers of a CallFailure, and
// the file to be made, with the name of the call in it, when it happens.
inline constexpr const char* kFailureVariable = "ZQ_CALL_FAILURE";
inline constexpr const char* kFailedCallVariable = "ZQ_FAILED_CALL";

class FailingProgram {
public:
    /// `told` is a file that comes and goes.
    FailingProgram(std::string library, std::string told)
        : library_(std::move(library)), told_(std::move(told)) {}

    FailedRun run(const std::vector<std::string>& arguments, const CallFailure& failure) const {
        std::filesystem::remove(told_);
        std::vector<std::string> all{"env", "LD_PRELOAD=" + library_,
                                     std::string(kFailureVariable) + "=" +
                                         std::to_string(failure.number) + " " +
                                         std::to_string(static_cast<int>(failure.effect)) + " " +
                                         std::to_string(failure.error),
                                     std::string(kFailedCallVariable) + "=" + told_};
        all.insert(all.end(), arguments.begin(), arguments.end());
        FailedRun run{runProgram(std::move(all)), {}};
        std::getline(std::ifstream(told_), run.call);
        return run;
    }

private:
    std::string library_;
    std::string told_;
};

}  // namespace test_support
