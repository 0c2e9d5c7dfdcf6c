#pragma once
// Paths and numbers as a person can read them on a terminal.
//
// Threads: free functions without state.

#include <cstddef>
#include <string>
#include <string_view>

namespace examples {

/// A path with control characters and bytes that are not UTF-8 written as \xNN and a backslash
/// doubled, so that no name moves the cursor or passes for another; the middle of a long one is
/// left out.
std::string printable(std::string_view path);

/// A number with its thousands apart: "1,234,567".
std::string grouped(std::size_t number);

/// A number with as many decimals as asked for.
std::string withDecimals(double number, int decimals);

}  // namespace examples
