#pragma once
// Prints paths of a set that are chosen by number, in the order of choice and without holding all
// the numbers.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "zqpaths/PathSet.hpp"

namespace zqpaths::program {

/// How many paths are asked of a set at once by those who ask in slices.
inline constexpr std::size_t kPathsPerCall = 10'000;

/// The number of the path at a place, from 0 on.
using Choice = std::function<std::uint64_t(std::uint64_t place)>;

/// Prints the paths at the places 0 to `count` - 1; `work` names it for the progress. Throws as
/// PathSet::paths and Output do. Memory for the numbers of one slice.
void printChosen(const PathSet& set, std::uint64_t count, const Choice& numberAt,
                 const std::string& work, const OutputOptions& outputOptions,
                 const MessageOptions& messages);

/// The seed that is given, else one that is drawn at random and told unless the person wants to be
/// told errors only.
std::uint64_t seedFor(const std::optional<std::uint64_t>& given, const MessageOptions& messages);

/// The first `count` wanted paths of the order that `seed` gives, all of them if there are fewer.
void printInRandomOrder(const WantedPaths& wanted, std::uint64_t count, std::uint64_t seed,
                        const std::string& work, const OutputOptions& outputOptions,
                        const MessageOptions& messages);

}  // namespace zqpaths::program
