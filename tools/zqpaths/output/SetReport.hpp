#pragma once
// SetReport is what is to be told about a saved set, as text for people and as JSON for programs.
//
// Threads: free functions without state.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Terminal.hpp"
#include "tools/zqpaths/output/TextDrawing.hpp"
#include "zqpaths/set/SetStatistics.hpp"

namespace zqpaths::program {

struct SetReport {
    using Microseconds = std::chrono::duration<double, std::micro>;

    /// The set files of a set of sets.
    struct Files {
        std::uint64_t count = 1;
        std::uint64_t missingCount = 0;
        std::uint64_t missingPathCount = 0;
    };

    std::string file;
    bool isSetOfSets = false;
    Files files;
    std::uint64_t fileSize = 0;   // of all files, in bytes, as the file system tells
    std::uint64_t goneCount = 0;  // of the paths, which keep their numbers
    Microseconds opening{};
    std::optional<Microseconds> firstPath;  // after that; none if there are no paths
    // In memory after the first path: of the file, if the system tells, and besides.
    std::optional<std::uint64_t> residentSize;
    std::uint64_t allocatedSize = 0;
    SetStatistics statistics;
};

/// Several lines, each with its end.
std::string reportText(const SetReport& report, const DrawingStyle& style, SizeUnits units);

/// One object on one line, without its end. What is not known is null.
std::string reportJson(const SetReport& report, Charset charset = Charset::kUtf8);

}  // namespace zqpaths::program
