#pragma once
// Numbers as a person can read them on a terminal.
//
// Threads: free functions without state.

#include <cstddef>
#include <string>

namespace examples {

/// A number with its thousands apart: "1,234,567".
std::string grouped(std::size_t number);

/// A number with as many decimals as asked for.
std::string withDecimals(double number, int decimals);

}  // namespace examples
