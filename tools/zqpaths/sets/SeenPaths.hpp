#pragma once
// SeenPaths tells whether a path has been met before:
//
//     SeenPaths seen;
//     if (seen.insert(path)) ...  // the first time
//
// It holds a hash of 16 bytes for a path, in a table with room for at most 2.7 times as many,
// not the path: two paths of one hash would pass for one. Among a billion paths the chance
// that any two share one is below 1 in 10^20. The seed is a new one each time, so that nobody can
// make names that meet.

#include <xxhash.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zqpaths::program {

/// A seed for hashes of paths, drawn at random.
std::uint64_t newHashSeed();

class SeenPaths {
public:
    SeenPaths();

    /// Whether the path is met for the first time. Amortised O(bytes).
    bool insert(std::string_view path);

private:
    /// Where the hash is, or is to be; the table is never full.
    std::size_t findSlot(const XXH128_hash_t& hash) const;
    void grow();

    std::uint64_t seed_;
    std::vector<XXH128_hash_t> slots_;  // a power of two; a hash of zero is an empty slot
    std::size_t count_ = 0;             // at most three quarters of the slots
};

}  // namespace zqpaths::program
