#pragma once
// NumberPieces cuts the numbers from 1 on, or places from 0 on, into pieces of one size:
//
//     const NumberPieces pieces(set.size(), searchedAtOnce(set.size(), team.size()));
//     team.run({.work = [&](Member& member) {
//                   forEachPiece(member, [&](const Piece& piece) {
//                       const PathNumbers numbers = pieces.numbers(piece.number);
//                       ...
//                   });
//               },
//               .nextPiece = numberedPieces(pieces.count())});
//
// Threads: it never changes.

#include <algorithm>
#include <cstdint>

#include "zqpaths/PathSet.hpp"

namespace zqpaths::program::mpi {

/// A size of pieces of so many numbers that are searched: small enough that ranks which are slower
/// get fewer, and large enough that dealing them costs nothing beside searching them.
constexpr std::uint64_t searchedAtOnce(std::uint64_t total, int rankCount) noexcept {
    constexpr std::uint64_t kPiecesARank = 16;
    constexpr std::uint64_t kSmallest = std::uint64_t{1} << 14;
    constexpr std::uint64_t kLargest = std::uint64_t{1} << 20;
    return std::clamp(total / (kPiecesARank * static_cast<unsigned>(rankCount)), kSmallest,
                      kLargest);
}

class NumberPieces {
public:
    /// `size`, that of all pieces but the last, is above 0.
    NumberPieces(std::uint64_t total, std::uint64_t size) noexcept : total_(total), size_(size) {}

    std::uint64_t count() const noexcept { return total_ / size_ + (total_ % size_ > 0 ? 1 : 0); }

    /// The places of a piece, from `begin` on and below `end`.
    std::uint64_t begin(std::uint64_t piece) const noexcept { return piece * size_; }
    std::uint64_t end(std::uint64_t piece) const noexcept {
        return begin(piece) + std::min(size_, total_ - begin(piece));
    }
    std::uint64_t size(std::uint64_t piece) const noexcept { return end(piece) - begin(piece); }

    /// The same as numbers of paths.
    PathNumbers numbers(std::uint64_t piece) const noexcept {
        return {begin(piece) + 1, end(piece)};
    }

private:
    std::uint64_t total_;
    std::uint64_t size_;
};

}  // namespace zqpaths::program::mpi
