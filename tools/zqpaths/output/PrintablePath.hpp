#pragma once
// A path as a person can read it, in a message or on a terminal. There is one rule:
//
//     control characters of ASCII, and bytes that are not UTF-8    \x0A  \xFF
//     other characters that a terminal would not show              \u202E  \U000E0041
//     a backslash                                                  doubled
//
// So no name moves the cursor, hides a part of itself or passes for another, and bash takes what is
// printed between $' and ' for the name, quotes aside. On a terminal whose locale is not UTF-8 all
// bytes from 0x80 on are written out.
//
// Threads: free functions without state.

#include <string>
#include <string_view>

#include "tools/zqpaths/output/Terminal.hpp"

namespace zqpaths::program {

/// Appends a text by the rule. Throws only std::bad_alloc; part may have been appended then.
/// O(bytes).
void appendPrintable(std::string_view text, Charset charset, std::string& out);

/// A path for a message, with the middle left out if it is long.
std::string printablePath(std::string_view path);

/// The same with nothing left out, for a text that says more than a path.
std::string printableText(std::string_view text);

}  // namespace zqpaths::program
