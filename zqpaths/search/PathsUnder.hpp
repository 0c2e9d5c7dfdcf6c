#pragma once
// The paths in a folder and below it, found by the folders of a set, not by its paths:
//
//     visitPathsUnder(opened, "/usr/lib", [](std::uint64_t number, std::string_view path) { ... });
//
// What belongs to a folder is what PathScope says. A path with more separators in a row than others
// has components of its own, so that one folder of the system can be several of a set:
//
//     /usr/lib/x      "/", "usr", "lib"   | "x"
//     /usr//lib/y     "/", "usr/", "lib"  | "y"
//
// At each level all folders are taken whose name is the one that is looked for and separators.
//
// Threads: a free function without state; it starts threads and joins them.

#include <string_view>

#include "zqpaths/PathVisitor.hpp"
#include "zqpaths/set/OpenedSet.hpp"

namespace zqpaths {

/// Calls `visit` for the paths under a folder that is not empty, in the order of their numbers.
/// Throws Error kDamaged. O(paths under it + folders on the way and what they hold).
void visitPathsUnder(const OpenedSet& set, std::string_view folder, PathVisitor visit);

}  // namespace zqpaths
