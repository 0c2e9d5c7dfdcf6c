#pragma once
// Takes the arguments of a verb apart by its options, as people know it: options anywhere, "-ic" is
// "-i -c", a value follows its option, after "=" or in one piece with a short name, and "--" ends
// the options. "-5" is an argument unless an option has that name, for it counts from an end.
//
//     if (!takeOptions(table, verb, {"-ic", "usr.zqp", "--glob=*.c"})) showHelp();
//
// Threads: a free function without state.

#include <string>
#include <vector>

#include "tools/zqpaths/arguments/Verb.hpp"

namespace zqpaths::program {

/// Gives each option of `verb`, a row of `table`, what is for it, in the order of the arguments;
/// false, and nothing is taken, if the help is asked for instead. Throws Failure kFailed, which
/// tells what is wrong by name: an option that there is not, one without its value, what is
/// missing, too much or does not go together, a value that the option cannot have.
bool takeOptions(const ProgramTable& table, const Verb& verb,
                 const std::vector<std::string>& arguments);

}  // namespace zqpaths::program
