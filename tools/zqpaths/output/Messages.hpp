#pragma once
// Messages for people, on standard error:
//
//     tell("s.zqp holds 2 paths");  // "zqpaths: s.zqp holds 2 paths"
//
// Threads: the thread that shows progress tells. Who tells is said before there are others.

#include <string>
#include <string_view>

namespace zqpaths::program {

/// Who tells: the name of the program, "zqpaths" unless another is given.
const std::string& teller();
void nameTeller(std::string name);

/// Writes a line; a progress that is shown makes room for it.
void tell(std::string_view message) noexcept;

}  // namespace zqpaths::program
