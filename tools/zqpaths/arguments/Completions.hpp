#pragma once
// What shells read to complete the program's verbs and options; files they know themselves.

#include <string>

#include "tools/zqpaths/arguments/Verb.hpp"

namespace zqpaths::program {

std::string bashCompletion(const ProgramTable& table);
std::string zshCompletion(const ProgramTable& table);
std::string fishCompletion(const ProgramTable& table);

}  // namespace zqpaths::program
