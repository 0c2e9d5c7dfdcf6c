#pragma once
// Share is what one of several readers of a set reads. Paths are dealt like cards: number k goes to
// the reader of rank (k - 1) mod N, so that the shares differ by one path at most and each is
// spread over the whole set:
//
//     const Share share(set.size(), 1, 8);  // the second of eight readers
//     for (std::uint64_t place = 0; place < share.size(); ++place)
//         use(set.path(share[place]));      // 2, 10, 18 ...
//
// Threads: a share never changes, so that any number of threads may read it.

#include <cstdint>

#include "zqpaths/Export.hpp"

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

}  // namespace zqpaths
