#pragma once
// Hashes of names and sums of images, both by XXH3. The seed of a process is drawn at random, so
// that nobody can choose names that collide in it.
//
// Threads: free functions; the seed is drawn once.

#include <cstddef>
#include <cstdint>

namespace compressedpaths {

/// The seed of this process.
std::uint64_t processSeed() noexcept;

std::uint64_t hashOf(const void* bytes, std::size_t size, std::uint64_t seed) noexcept;

/// A hash of two numbers, for tables that are seeded.
inline std::uint64_t hashOf(std::uint32_t first, std::uint32_t second,
                            std::uint64_t seed) noexcept {
    std::uint64_t hash =
        (std::uint64_t{first} << 32 | second) ^ seed;  // the finaliser of MurmurHash3
    hash = (hash ^ hash >> 33) * 0xFF51AFD7ED558CCD;
    hash = (hash ^ hash >> 33) * 0xC4CEB9FE1A85EC53;
    return hash ^ hash >> 33;
}

}  // namespace compressedpaths
