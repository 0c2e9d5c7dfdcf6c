#pragma once
// Whether all paths of a set can be had.

#include <string>

#include "tools/zqpaths/Options.hpp"
#include "tools/zqpaths/PathSet.hpp"

namespace zqpaths {

/// Fetches every path by number, cuts and joins it, and compares those that have numbers with those
/// that a walk meets; paths that became folders are none of a walk's. Throws Failure kDamaged,
/// beginning with `file`, with the number of the first path that cannot be had, or how many a walk
/// misses. Takes up to 24 bytes a path.
void requireWholePaths(PathSet& set, const std::string& file, const MessageOptions& messages);

}  // namespace zqpaths
