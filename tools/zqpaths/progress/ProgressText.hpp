#pragma once
// How far a work has come, as a line for people and as an object for programs.
//
// Threads: free functions without state.

#include <cstdint>
#include <optional>
#include <string>

#include "tools/zqpaths/progress/WorkPhases.hpp"

namespace zqpaths::program {

/// What is known at a moment.
struct ProgressState {
    std::string work;   // "indexing"
    std::string phase;  // "reading"; empty where there is one phase alone
    WorkUnit unit = WorkUnit::kPaths;
    std::uint64_t done = 0;                // of the phase
    std::optional<std::uint64_t> total{};  // of the phase
    std::optional<double> part{};          // of the whole work, from 0 to 1
    double seconds = 0;                    // since the work began
    double phaseSeconds = 0;               // since the phase began

    /// As long as it will take if it goes on like this; nothing if that cannot be known.
    std::optional<double> secondsLeft() const;
};

/// "indexing: coding, 1,234 of 5,678 paths, 600/s, 40%, 7 s left"; what is not known is left out.
std::string progressLine(const ProgressState& state);

/// One JSON object, as docs/schemas/progress.json describes it, without a newline.
std::string progressJson(const ProgressState& state);

}  // namespace zqpaths::program
