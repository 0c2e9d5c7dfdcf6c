#pragma once
// Prints paths of a set that are chosen by number, in the order of choice and without holding all
// the numbers.

#include <cstdint>
#include <functional>
#include <string>

#include "tools/zqpaths/Options.hpp"
#include "tools/zqpaths/PathSet.hpp"

namespace zqpaths {

/// The number of the path at a place, from 0 on.
using Choice = std::function<std::uint64_t(std::uint64_t place)>;

/// Prints the paths at the places 0 to `count` - 1; `work` names it for the progress. Throws as
/// PathSet::get and Output do. Memory for some ten thousand paths.
void printChosen(PathSet& set, std::uint64_t count, const Choice& numberAt, const std::string& work,
                 const OutputOptions& outputOptions, const MessageOptions& messages);

/// Prints `count` paths, or all if there are fewer, in the random order of a seed.
void printInRandomOrder(PathSet& set, std::uint64_t count, std::uint64_t seed,
                        const std::string& work, const OutputOptions& outputOptions,
                        const MessageOptions& messages);

}  // namespace zqpaths
