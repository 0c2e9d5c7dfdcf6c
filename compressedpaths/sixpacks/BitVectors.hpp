#pragma once
// Bit vectors as bytes, bit 0 first in the lowest bit of byte 0:
//
//     std::vector<std::uint8_t> bytes;
//     boolVecToBytes(bytes, {true, false, true});  // bytes == {0b101, 3}
//     std::vector<bool> bits;
//     bytesToBoolVec(bytes, bits);                 // bits == {true, false, true}
//
// n bits (n >= 1) take n / 8 + 2 bytes: the whole bytes, the partial byte, which is there even when
// no bit is left for it, and the number of bits in the partial byte (0 to 7). No bits take no byte.
// The same form is the code of a path component and the shape of a saved coding tree.
//
// loadBits and storeBits move 64 bits of such bytes at once.
//
// Threads: free functions without state.

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace compressedpaths::sixpacks {

/// Appends the packed form of `bits` to `out`. Throws only std::bad_alloc. O(bits).
void boolVecToBytes(std::vector<std::uint8_t>& out, const std::vector<bool>& bits);

/// Appends the bits packed in `in` to `bits`; nothing for fewer than two bytes. A count byte above
/// 7, which no packer writes, gives that many bits, those beyond the eighth being zero.
/// Throws only std::bad_alloc. O(bits).
void bytesToBoolVec(const std::vector<std::uint8_t>& in, std::vector<bool>& bits);

/// The 64 bits of eight bytes, the first one lowest. O(1).
inline std::uint64_t loadBits(const std::uint8_t* in) noexcept {
    std::uint64_t bits = 0;
    std::memcpy(&bits, in, sizeof bits);
    if constexpr (std::endian::native == std::endian::big) bits = __builtin_bswap64(bits);
    return bits;
}

/// Writes 64 bits as eight bytes, the lowest one first. O(1).
inline void storeBits(std::uint64_t bits, std::uint8_t* out) noexcept {
    if constexpr (std::endian::native == std::endian::big) bits = __builtin_bswap64(bits);
    std::memcpy(out, &bits, sizeof bits);
}

}  // namespace compressedpaths::sixpacks
