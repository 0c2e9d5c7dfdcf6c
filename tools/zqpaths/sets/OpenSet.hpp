#pragma once
// Sets that are opened to be read.

#include <cstdint>
#include <string>
#include <vector>

#include "zqpaths/PathSet.hpp"

namespace zqpaths::program {

/// Throws Error as PathSet::open does. What is there of a set of sets is enough if `isPartial`:
/// each file that is missing is told, with the numbers of its paths.
PathSet openSet(const std::string& file, bool isPartial = false);

/// What cannot be read of a set of sets because one of its files is missing.
struct MissingFile {
    const Error* reason;  // of the set, which outlives it
    PathNumbers numbers;  // all that are missing are among these
    std::uint64_t count = 0;
};

/// In the order of their first numbers. O(ranges that are missing).
std::vector<MissingFile> missingFilesOf(const PathSet& set);

/// How many paths cannot be read.
std::uint64_t missingPathCountOf(const PathSet& set);

/// Throws Failure, which says that a set of sets cannot have this done to it, and the reason, or
/// what to do instead.
void requireSetFile(const PathSet& set, const std::string& refusal);

}  // namespace zqpaths::program
