#pragma once
// What all ranks print of a set in a random order, each of them some of the places.

#include <cstdint>
#include <optional>
#include <string>

#include "tools/zqpaths-mpi/communication/Team.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"

namespace zqpaths::program::mpi {

/// The seed that is given, else one that rank 0 draws and tells, the same on all ranks. All call
/// it.
std::uint64_t commonSeed(Team& team, const std::optional<std::uint64_t>& given,
                         const MessageOptions& messages);

/// Prints the first `count` wanted paths of the order that `seed` gives, all of them if there are
/// fewer, as printInRandomOrder of one process does. Memory for a few pieces.
void printInRandomOrder(Team& team, const WantedPaths& wanted, std::uint64_t count,
                        std::uint64_t seed, const std::string& work,
                        const OutputOptions& outputOptions, const MessageOptions& messages);

}  // namespace zqpaths::program::mpi
