#include "zqpaths/choosing/Permutation.hpp"

#include <algorithm>
#include <bit>
#include <cassert>
#include <utility>

namespace zqpaths {
namespace {

// SplitMix64: Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014.
constexpr std::uint64_t kGamma = 0x9E3779B97F4A7C15;

std::uint64_t mix(std::uint64_t value) noexcept {
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
    return value ^ (value >> 31);
}

/// Half of the fewest bits, an even number, that count to `size`.
unsigned halfBitsFor(std::uint64_t size) noexcept {
    const auto bits = static_cast<unsigned>(std::bit_width(size == 0 ? 0 : size - 1));
    return std::max((bits + 1) / 2, 1U);
}

}  // namespace

Permutation::Permutation(std::uint64_t size, std::uint64_t seed)
    : size_(size), halfBits_(halfBitsFor(size)) {
    // The generator's own sequence. Where the size enters, sets that differ by a path have orders
    // that have nothing to do with each other.
    std::uint64_t state = mix(seed + kGamma) ^ size;
    for (std::uint64_t& key : keys_) key = mix(state += kGamma);
}

std::uint64_t Permutation::operator[](std::uint64_t place) const noexcept {
    assert(place < size_);
    // Cycle walking (Black and Rogaway, "Ciphers with arbitrary finite domains", 2002): numbers
    // beyond the size are passed over. The cycle comes back to `place`, so it ends.
    std::uint64_t number = encrypt(place);
    while (number >= size_) number = encrypt(number);
    return number;
}

/// A balanced Feistel network: whatever its round function is, it has an inverse.
std::uint64_t Permutation::encrypt(std::uint64_t value) const noexcept {
    const std::uint64_t mask = (std::uint64_t{1} << halfBits_) - 1;
    std::uint64_t left = value >> halfBits_;
    std::uint64_t right = value & mask;
    for (const std::uint64_t key : keys_) {
        const std::uint64_t mixed = mix(right ^ key) & mask;
        left = std::exchange(right, left ^ mixed);
    }
    return left << halfBits_ | right;
}

std::uint64_t seedOfEpoch(std::uint64_t seed, std::uint64_t epoch) noexcept {
    // mix(0) is 0 and every step of it can be undone. Epochs are small numbers that follow each
    // other, as seeds are: mixed, epoch 1 of one seed is not epoch 0 of the next.
    return seed + mix(epoch);
}

}  // namespace zqpaths
