#pragma once
// DealtHashes finds the paths that only one of two sets has, as far as their hashes are dealt to
// one rank:
//
//     DealtHashes hashes;
//     hashes.add(hash, Side::kFirst, 7);    // path 7 of the first set
//     hashes.add(hash, Side::kSecond, 3);   // the same path is path 3 of the second
//     hashes.add(other, Side::kFirst, 9);
//     hashes.add(other, Side::kFirst, 8);
//     hashes.numbersOnlyIn(Side::kFirst);  // {8}: the lowest number of the path
//
// As SeenPaths it holds a hash of 16 bytes for a path, and 8 bytes beside it, in a table with room
// for at most 2.7 times as many.
//
// Threads: an object belongs to one thread at a time.

#include <xxhash.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/zqpaths/output/Output.hpp"

namespace zqpaths::program::mpi {

class DealtHashes {
public:
    DealtHashes();

    /// Numbers of a side may come in any order; they are below 2^62. Amortised O(1).
    void add(const XXH128_hash_t& hash, Side side, std::uint64_t number);

    /// The lowest numbers of the paths that only this side has, in their order. O(slots).
    std::vector<std::uint64_t> numbersOnlyIn(Side side) const;

private:
    struct Slot {
        XXH128_hash_t hash{};
        std::uint64_t sides : 2 = 0;    // a bit for each that has the path; none in an empty slot
        std::uint64_t number : 62 = 0;  // the lowest, where one side alone has it
    };

    std::size_t findSlot(const XXH128_hash_t& hash) const;
    void grow();

    std::vector<Slot> slots_;  // a power of two
    std::size_t count_ = 0;    // at most three quarters of the slots
};

/// The rank that a hash is dealt to: by other bits than the table uses.
inline int rankOf(const XXH128_hash_t& hash, int rankCount) noexcept {
    return static_cast<int>(hash.high64 % static_cast<std::uint64_t>(rankCount));
}

}  // namespace zqpaths::program::mpi
