#pragma once
// Failure ends the program with a message for people, which says what is wrong and where:
//
//     throw Failure(ExitStatus::kFailed, "no paths in these sets");
//     throw failureAt("list.txt", "line 7 is empty");  // "list.txt: line 7 is empty"
//     throw systemFailureAt("list.txt", ENOENT);       // "list.txt: No such file or directory"
//     throw wrongUse("DIR or --list is required");
//
// What goes wrong with a set comes as Error from the library. failureOf makes one of everything
// that can be thrown, which is what people are told and what the shell is given.

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tools/zqpaths/ExitStatus.hpp"

namespace zqpaths::program {

class Failure : public std::runtime_error {
public:
    Failure(ExitStatus status, const std::string& message)
        : std::runtime_error(message), status_(status) {}

    ExitStatus status() const noexcept { return status_; }

private:
    ExitStatus status_;
};

/// A failure at a place, which is a path as a rule and is shown as printablePath does.
Failure failureAt(std::string_view place, const std::string& reason,
                  ExitStatus status = ExitStatus::kFailed);

/// The same with the system's words for a value of errno.
Failure systemFailureAt(std::string_view place, int error);

/// Arguments that do not go together, and where to read which do.
Failure wrongUse(const std::string& reason);

/// What the program says of anything that was thrown, and how it ends. ClosedPipe is none of it,
/// and what is no std::exception is thrown again.
Failure failureOf(const std::exception_ptr& error);

}  // namespace zqpaths::program
