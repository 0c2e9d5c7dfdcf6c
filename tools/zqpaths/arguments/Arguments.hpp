#pragma once
// Arguments are what the shell hands over: a verb with its options.

#include <functional>
#include <string>
#include <vector>

#include "tools/zqpaths/ExitStatus.hpp"
#include "tools/zqpaths/arguments/Verb.hpp"

namespace zqpaths::program {

/// The work that the arguments ask for; help and version are such work. Throws Failure kFailed,
/// with the usage of the verb, if they are wrong.
std::function<ExitStatus()> parseArguments(const ProgramTable& table, int argumentCount,
                                           const char* const* arguments);

/// The row of a verb. Throws Failure kFailed, which tells the nearest verb or all, if there is
/// none.
const Verb& requireVerb(const ProgramTable& table, const std::string& name);

std::vector<std::string> namesOfVerbs(const ProgramTable& table);

}  // namespace zqpaths::program
