#pragma once
// What a target needs to change its inputs itself, so that they keep their form:
//
//     extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
//                                                    std::size_t maxSize, unsigned seed) {
//         Random random(seed);
//         mutateInPlace({data, size}, random);
//         putSumsRight(...);
//         return size;
//     }
//
// Threads: free functions without state; a random belongs to one thread.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <span>

/// Of the fuzzing engine: changes some bytes as it sees fit, and returns how many there are then.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace fuzzing {

using Random = std::minstd_rand;

/// A number below `limit`, which is above 0.
inline std::size_t below(std::size_t limit, Random& random) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

/// Values at which counts and offsets turn from right to wrong.
inline std::uint64_t tellingValue(Random& random) {
    const std::uint64_t value = std::uint64_t{1} << below(64, random);
    const std::array<std::uint64_t, 6> near{0,         value - 1,         value,
                                            value + 1, ~std::uint64_t{0}, below(300, random)};
    return near[below(near.size(), random)];
}

/// Puts a telling value, or one near that which stands there, in the place of an integer of 1, 2, 4
/// or 8 bytes, or has the engine change a few bytes. How many there are stays.
inline void mutateInPlace(std::span<std::uint8_t> bytes, Random& random) {
    if (bytes.empty()) return;
    const std::size_t width = std::min(std::size_t{1} << below(4, random), bytes.size());
    const std::size_t at = below(bytes.size() / width, random) * width;
    if (below(3, random) == 0) {
        const std::size_t count = std::min<std::size_t>(bytes.size() - at, 32);
        LLVMFuzzerMutate(bytes.data() + at, count, count);
        return;
    }
    std::uint64_t value = 0;
    std::memcpy(&value, bytes.data() + at, width);
    value = below(2, random) == 0 ? tellingValue(random) : value + below(9, random) - 4;
    std::memcpy(bytes.data() + at, &value, width);
}

}  // namespace fuzzing
