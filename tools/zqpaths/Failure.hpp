#pragma once
// Failure ends the program with a message for people, which says what is wrong and where:
//
//     throw Failure(ExitStatus::kFailed, "list.txt: line 7 is empty");

#include <stdexcept>
#include <string>

#include "tools/zqpaths/ExitStatus.hpp"

namespace zqpaths {

class Failure : public std::runtime_error {
public:
    Failure(ExitStatus status, const std::string& message)
        : std::runtime_error(message), status_(status) {}

    ExitStatus status() const noexcept { return status_; }

private:
    ExitStatus status_;
};

}  // namespace zqpaths
