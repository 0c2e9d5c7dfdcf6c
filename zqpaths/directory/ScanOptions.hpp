#pragma once
// How a walk was told to read, as a set remembers it, and back:
//
//     const ScanOptions options = scanOptionsOf({.follow = true});  // "follow" and "hidden"
//     textOf(options);                                              // "--follow --hidden"
//     walkOptionsOf(options, 0);
//
// Threads: free functions without state.

#include <string>

#include "zqpaths/Export.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"
#include "zqpaths/directory/ScanRecord.hpp"

namespace zqpaths {

/// What decides about which paths a walk gives; not how many threads read. Equal walks give equal
/// options.
ZQPATHS_EXPORT ScanOptions scanOptionsOf(const WalkOptions& options);

/// Throws Error kNotASet, without a place, for a key that only a later version knows.
ZQPATHS_EXPORT WalkOptions walkOptionsOf(const ScanOptions& options, unsigned jobs);

/// As the program takes them, "no options" if there are none.
ZQPATHS_EXPORT std::string textOf(const ScanOptions& options);

}  // namespace zqpaths
