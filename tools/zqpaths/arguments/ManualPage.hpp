#pragma once
// The manual page of the program, in the language of troff with the macros of man.

#include <string>

#include "tools/zqpaths/arguments/Verb.hpp"

namespace zqpaths::program {

std::string manualPage(const ProgramTable& table);

}  // namespace zqpaths::program
