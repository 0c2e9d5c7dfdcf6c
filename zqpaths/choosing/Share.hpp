#pragma once
// A share is what one of several readers of a set reads. Shares differ by one path at most, and
// each path is in one of them.
//
// Share deals the paths like cards, in their order: number k goes to the reader of rank (k - 1) mod
// N, so that each share is spread over the whole set:
//
//     const Share share(set.size(), 1, 8);  // the second of eight readers
//     for (std::uint64_t place = 0; place < share.size(); ++place)
//         use(set.path(share[place]));      // 2, 10, 18 ...
//
// ShuffledShare deals them after a shuffle, which is another one in every epoch:
//
//     const ShuffledShare share(set.size(), 1, 8, seed, epoch);
//
// Threads: a share never changes, so that any number of threads may read it.

#include <cstdint>

#include "zqpaths/Export.hpp"
#include "zqpaths/choosing/Permutation.hpp"

namespace zqpaths {

class ZQPATHS_EXPORT Share {
public:
    /// Of `pathCount` paths for `readerCount` readers, who have the ranks from 0 on. Throws Error
    /// kWrongUse if there are none, or none of this rank.
    Share(std::uint64_t pathCount, std::uint64_t rank, std::uint64_t readerCount);

    std::uint64_t size() const noexcept { return size_; }

    /// The number of the path at a place, which is below size(). O(1).
    std::uint64_t operator[](std::uint64_t place) const noexcept {
        return rank_ + 1 + place * readerCount_;
    }

private:
    std::uint64_t rank_;
    std::uint64_t readerCount_;
    std::uint64_t size_;
};

class ZQPATHS_EXPORT ShuffledShare {
public:
    /// A share of the paths in the order of Permutation(pathCount, seedOfEpoch(seed, epoch)), which
    /// all readers know without asking each other; in epoch 0 this is the shuffle by `seed` itself.
    /// So it is the same on every machine and in every release. Throws as Share.
    ShuffledShare(std::uint64_t pathCount, std::uint64_t rank, std::uint64_t readerCount,
                  std::uint64_t seed, std::uint64_t epoch = 0)
        : dealt_(pathCount, rank, readerCount), order_(pathCount, seedOfEpoch(seed, epoch)) {}

    std::uint64_t size() const noexcept { return dealt_.size(); }

    /// The number of the path at a place, which is below size(). O(1) on average, without memory.
    std::uint64_t operator[](std::uint64_t place) const noexcept {
        return order_[dealt_[place] - 1] + 1;
    }

private:
    Share dealt_;        // numbers of places in the shuffle, from 1 on
    Permutation order_;  // of the paths, from 0 on
};

}  // namespace zqpaths
