#pragma once
// SetReport is what is to be told about a saved set, as text for people and as JSON for programs.
//
// Threads: free functions without state.

#include <cstdint>
#include <optional>
#include <string>

#include "tools/zqpaths/SavedForm.hpp"

namespace zqpaths {

struct SetReport {
    std::string file;
    std::uint64_t fileSize = 0;  // in bytes, as the file system tells
    std::uint64_t pathCount = 0;
    std::uint64_t textSize = 0;               // of all paths, a byte behind each included
    std::uint64_t characterCount = 0;         // different ones
    std::optional<std::uint64_t> codedCount;  // characters of all names that are coded, if known
    std::optional<double> bitsACharacter;
    std::uint64_t characterBytes = 0;  // of the characters as they are saved
    SavedForm form;
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

}  // namespace zqpaths
