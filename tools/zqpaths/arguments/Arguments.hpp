#pragma once
// Arguments are what the shell hands over: a verb with its options.

#include <functional>

#include "tools/zqpaths/ExitStatus.hpp"
#include "tools/zqpaths/arguments/Verb.hpp"

namespace zqpaths::program {

/// The work that the arguments ask for; help and version are such work. Throws Failure kFailed,
/// with the usage of the verb, if they are wrong.
std::function<ExitStatus()> parseArguments(const ProgramTable& table, int argumentCount,
                                           const char* const* arguments);

}  // namespace zqpaths::program
