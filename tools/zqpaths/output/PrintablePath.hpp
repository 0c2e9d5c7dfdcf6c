#pragma once
// A path as a person can read it in a message.

#include <string>
#include <string_view>

namespace zqpaths::program {

/// A path with control characters and bytes that are not UTF-8 written as \xNN and a backslash
/// doubled, so that no name moves the cursor or passes for another; the middle of a long one is
/// left out.
std::string printablePath(std::string_view path);

/// The same with nothing left out, for a text that says more than a path.
std::string printableText(std::string_view text);

}  // namespace zqpaths::program
