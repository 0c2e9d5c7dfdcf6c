#pragma once
// Columns and bars of text, in the cells of a terminal:
//
//     leftAligned("paths", 8) + rightAligned("12", 4) + "  " + bar(0.5, 10, style);
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zqpaths::program {

/// How text is drawn.
struct DrawingStyle {
    bool hasBlocks = false;  // blocks and lines in UTF-8, else of ASCII
    bool hasColours = false;
};

/// Filled up to `width` cells with spaces; as it is if it is wider. The text is ASCII.
std::string leftAligned(std::string text, std::size_t width);
std::string rightAligned(const std::string& text, std::size_t width);

/// What part is of the whole, "12.5 %", and as a number; 0 of nothing.
std::string percent(std::uint64_t part, std::uint64_t whole);
double ratio(double part, double whole);
double ratio(std::uint64_t part, std::uint64_t whole);

/// A bar as long as `share`, from 0 to 1, of `width` cells, which it fills up with spaces.
std::string bar(double share, std::size_t width, const DrawingStyle& style);

/// Text in a colour as terminals know them by numbers, "01;34"; as it is without colours, or if
/// there is nothing to be coloured.
std::string coloured(std::string_view text, std::string_view colour, const DrawingStyle& style);

/// The cells that UTF-8 without control characters takes on a terminal.
std::size_t cellsOf(std::string_view text);

/// As much of the front of a text as `width` cells hold, with a mark at the end of what is cut off.
std::string cutToCells(std::string_view text, std::size_t width, const DrawingStyle& style);

}  // namespace zqpaths::program
