#pragma once
// Each rank's share of a shuffled set, in a file of its own.

#include <cstdint>
#include <string>

#include "tools/zqpaths-mpi/communication/Team.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"

namespace zqpaths::program::mpi {

/// The name of a rank's file: "epoch.txt" is "epoch-07.txt" for rank 7 of 64. The extension is what
/// --fields calls so.
std::string nameOfShare(const std::string& name, int rank, int rankCount);

struct ShareFiles {
    std::string name;
    bool mayReplace = false;
};

/// Writes ShuffledShare(wanted.size(), rank, ranks, seed), in the form of the options. All ranks
/// call it. The files get their names when all are whole; a rank that fails or is ended by a signal
/// before that leaves none. Throws Failure, Error and Stopped.
void writeShares(Team& team, const WantedPaths& wanted, std::uint64_t seed, const ShareFiles& files,
                 const OutputOptions& outputOptions, const MessageOptions& messages);

}  // namespace zqpaths::program::mpi
