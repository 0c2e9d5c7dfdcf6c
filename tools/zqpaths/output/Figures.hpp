#pragma once
// Figures as people read them: 1,234,567 and 1 min 5 s.
//
// Threads: free functions without state.

#include <cstdint>
#include <string>

namespace zqpaths::program {

/// The digits in groups of three.
std::string groupDigits(std::uint64_t number);

/// With `digits` places after the point; the digits before it in groups of three.
std::string fixedPoint(double number, int digits);

/// A time in its two largest units, rounded to the smaller one: "42 s", "1 min 5 s", "2 h 3 min".
std::string durationText(double seconds);

}  // namespace zqpaths::program
