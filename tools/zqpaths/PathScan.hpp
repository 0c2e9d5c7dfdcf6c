#pragma once
// A look at the paths of a set, in the order of their numbers, that may end early.

#include <functional>

#include "tools/zqpaths/PathSet.hpp"

namespace zqpaths {

/// Calls `visit` for the paths from the first on, until `isDone` says so, which is asked once in
/// some thousand paths. Throws what the callbacks throw.
void scanPaths(PathSet& set, const NumberedPathVisitor& visit, const std::function<bool()>& isDone);

}  // namespace zqpaths
