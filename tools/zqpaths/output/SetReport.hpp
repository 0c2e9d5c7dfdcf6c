#pragma once
// SetReport is what is to be told about a saved set, as text for people and as JSON for programs.
//
// Threads: free functions without state.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "zqpaths/set/SetStatistics.hpp"

namespace zqpaths::program {

struct SetReport {
    using Microseconds = std::chrono::duration<double, std::micro>;

    std::string file;
    std::uint64_t fileSize = 0;   // in bytes, as the file system tells
    std::uint64_t goneCount = 0;  // of the paths, which keep their numbers
    Microseconds opening{};
    std::optional<Microseconds> firstPath;  // after that; none if there are no paths
    SetStatistics statistics;
};

/// How the text is drawn.
struct ReportStyle {
    bool hasBlocks = false;  // bars of block characters in UTF-8, else of '#'
    bool hasColours = false;
};

/// Several lines, each with its end.
std::string reportText(const SetReport& report, const ReportStyle& style);

/// One object on one line, without its end. What is not known is null.
std::string reportJson(const SetReport& report);

}  // namespace zqpaths::program
