#pragma once
// The paths with any numbers, in any order:
//
//     visitByNumber(*opened, numbers, visit);
//
// What is far apart in the numbers is far apart in memory, so that most of the time would go by
// waiting for it. The numbers are cut into pieces; in each they are looked up in ascending order,
// where neighbours have much in common, and several threads do pieces if there are many.
//
// Threads: a free function without state; it starts threads and joins them.

#include <cstdint>
#include <span>

#include "zqpaths/PathVisitor.hpp"
#include "zqpaths/set/OpenedSet.hpp"

namespace zqpaths {

/// Calls `visit` for the paths with these numbers, which there are, in the order given, until it
/// says to stop. Throws Error kDamaged. O(log numbers + log entries + bytes) each.
void visitByNumber(const OpenedSet& set, std::span<const std::uint64_t> numbers, PathVisitor visit);

}  // namespace zqpaths
