#pragma once
// PathParts cuts data sets into parts, as for training and for tests. Which part a path is in
// depends on the path, the fractions and the seed alone: it stays there when the set grows, is
// sorted or loses other paths, and a path that is there twice is in one part.
//
//     const std::array fractions{0.9, 0.1};
//     const PathParts parts(fractions, seed);
//     set.forEach([&](std::uint64_t number, std::string_view path) {
//         if (parts.partOf(path) == 1) ...  // nine tenths of the paths, as chance has it
//     });
//
// A path's place is XXH3, of 64 bits, of its bytes with the seed, divided by 2^64: a number from 0
// to below 1. The parts stand side by side on that line, each as long as its fraction:
//
//     0                                            0.9      1
//     |------------------- part 1 -------------------|- 2 --|
//
// So parts are the same on every machine and in every release, and a part that alone is cut in two
// leaves the others as they are. They are for choosing data, not for secrets.
//
// Threads: parts never change, so that any number of threads may read them.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "zqpaths/Export.hpp"

namespace zqpaths {

class ZQPATHS_EXPORT PathParts {
public:
    /// By how much the fractions together may miss 1, for those that were rounded, as 0.3333 is.
    /// The last part ends at 1 whatever they add up to.
    static constexpr double kTolerance = 0.0005;

    /// One part a fraction. Throws Error kWrongUse if there is none, if one is not above 0 or if
    /// together they are not 1.
    PathParts(std::span<const double> fractions, std::uint64_t seed);

    std::size_t count() const noexcept { return ends_.size() + 1; }

    /// From 1 to count(). O(bytes + parts), without allocating.
    std::size_t partOf(std::string_view path) const noexcept;

private:
    std::vector<std::uint64_t> ends_;  // where all parts but the last end, in units of 2^-64
    std::uint64_t seed_;
};

}  // namespace zqpaths
