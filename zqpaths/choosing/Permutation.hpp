#pragma once
// Permutation is a pseudo-random order of the numbers 0 to n - 1 that takes no memory: any place of
// it is computed on its own.
//
//     const Permutation order(set.size(), seed);
//     for (std::uint64_t place = 0; place < order.size(); ++place)
//         use(order[place]);  // each number below the size once
//
// The order depends on size and seed alone and is the same on every machine and in every release:
// readers of one data set rely on it. It is for sampling, not for secrets.
//
// Threads: a permutation never changes, so that any number of threads may read it.

#include <array>
#include <cstdint>

#include "zqpaths/Export.hpp"

namespace zqpaths {

class ZQPATHS_EXPORT Permutation {
public:
    Permutation(std::uint64_t size, std::uint64_t seed);

    std::uint64_t size() const noexcept { return size_; }

    /// The number at a place, which is below size(). O(1) on average, whatever the size is: fewer
    /// than four passes of the network.
    std::uint64_t operator[](std::uint64_t place) const noexcept;

private:
    // Luby and Rackoff, "How to construct pseudorandom permutations from pseudorandom functions",
    // 1988: four rounds are the fewest that cannot be told from chance. Eight are cheap, and make
    // up for halves of a few bits only, where four leave a pattern.
    static constexpr unsigned kRounds = 8;

    std::uint64_t encrypt(std::uint64_t value) const noexcept;

    std::uint64_t size_;
    unsigned halfBits_;  // of the network, which permutes all numbers of twice as many bits
    std::array<std::uint64_t, kRounds> keys_{};
};

/// The seed of the order that an epoch has, when readers go through a set again and again and each
/// time in another order: seed + mix(epoch), modulo 2^64, where mix is the finalizer of SplitMix64.
/// Epoch 0 has the seed itself, no two epochs have the same. As fixed as the orders themselves.
ZQPATHS_EXPORT std::uint64_t seedOfEpoch(std::uint64_t seed, std::uint64_t epoch) noexcept;

}  // namespace zqpaths
