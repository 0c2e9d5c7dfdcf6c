#pragma once
// Figures as people read them: 1,234,567 and 1.2 MiB and 1 min 5 s.
//
// Threads: free functions without state.

#include <cstdint>
#include <string>

namespace zqpaths::program {

/// The digits in groups of three.
std::string groupDigits(std::uint64_t number);

/// With `digits` places after the point; the digits before it in groups of three.
std::string fixedPoint(double number, int digits);

/// In which units sizes are told.
enum class SizeUnits {
    kBinary,   // KiB, MiB, ...: by 1,024
    kDecimal,  // kB, MB, ...: by 1,000
    kBytes,    // bytes alone, exactly
};

/// A number of bytes with its unit, to a tenth: "512 B", "1.2 MiB"; in bytes "1,234,567 bytes".
std::string sizeText(std::uint64_t bytes, SizeUnits units);

/// A time in its two largest units, rounded to the smaller one: "42 s", "1 min 5 s", "2 h 3 min".
std::string durationText(double seconds);

}  // namespace zqpaths::program
