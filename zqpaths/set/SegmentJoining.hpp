#pragma once
// Which segments at the end of a set are to be made one, so that a set that grew in 10,000 steps
// has few of them and no path was written again more than a few times.
//
// A segment is small as long as another of its size has room in it. When more than kMostSmall small
// ones have gathered at the end, those of about the same size are joined, the largest last: from
// the first one on that is no larger than all after it together. Paths added one at a time, numbers
// of paths:
//
//     1 1 1 1 1 1 1 1 1        nine: the first is no larger than the eight after it
//     9 1 1 1 1 1 1 1 1        9 > 8, but the second, 1 <= 7
//     9 8 1 1 1 1 1 1 1        9 <= 15: all of them
//     24 1 1 1 1 1 1 1 1       24 > 8, and so on:  24 8  ->  24 8 7  ->  24 21  ->  52
//
// What is joined is at least twice as large as the first of them, so that a path is written again
// about as often as the size of its segment doubles: in a set that grows by single paths, eight
// times on average until it has 10,000 of them.
//
// Threads: a free function without state.

#include <cstddef>
#include <cstdint>
#include <span>

namespace zqpaths {

inline constexpr std::size_t kMostSmall = 8;

struct SegmentSize {
    std::uint64_t pathCount;
    std::uint64_t textSize;
};

bool isSmall(const SegmentSize& segment) noexcept;

/// The first of the segments that are to be joined with all after it, or how many there are if none
/// is. O(segments).
std::size_t firstToJoin(std::span<const SegmentSize> segments) noexcept;

}  // namespace zqpaths
