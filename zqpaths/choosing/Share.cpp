#include "zqpaths/choosing/Share.hpp"

#include <string>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

std::uint64_t existingRank(std::uint64_t rank, std::uint64_t readerCount) {
    if (readerCount == 0) throw Error(ErrorKind::kWrongUse, "", "there is no reader");
    if (rank >= readerCount)
        throw Error(ErrorKind::kWrongUse, "rank " + std::to_string(rank),
                    "of " + std::to_string(readerCount) + " readers the last has rank " +
                        std::to_string(readerCount - 1));
    return rank;
}

}  // namespace

Share::Share(std::uint64_t pathCount, std::uint64_t rank, std::uint64_t readerCount)
    : rank_(existingRank(rank, readerCount)),
      readerCount_(readerCount),
      size_(pathCount / readerCount + (rank < pathCount % readerCount ? 1 : 0)) {}

}  // namespace zqpaths
