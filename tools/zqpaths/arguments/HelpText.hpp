#pragma once
// What --help prints: of the program its verbs, of a verb its options. Lines fit a terminal of 80
// columns.
//
// Threads: free functions without state.

#include <string>

#include "tools/zqpaths/arguments/Verb.hpp"

namespace zqpaths::program {

/// The options that every verb has, and that the program has without a verb; they take nothing.
Option helpOption();
Option versionOption();

std::string helpText(const ProgramTable& table);
std::string helpText(const ProgramTable& table, const Verb& verb);

/// One line: "Usage: zqpaths find [OPTIONS] SET PATTERN".
std::string usage(const ProgramTable& table, const Verb& verb);

}  // namespace zqpaths::program
