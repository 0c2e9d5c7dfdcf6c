#pragma once
// Messages for people, on standard error:
//
//     tell("s.zqp holds 2 paths");  // "zqpaths: s.zqp holds 2 paths"
//
// Threads: the thread that shows progress tells.

#include <string_view>

namespace zqpaths::program {

/// Writes a line; a progress that is shown makes room for it.
void tell(std::string_view message) noexcept;

}  // namespace zqpaths::program
