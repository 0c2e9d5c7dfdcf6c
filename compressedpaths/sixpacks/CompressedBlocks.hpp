#pragma once
// One zlib stream a block, without a header of our own: whoever stores a block keeps its length and
// the length of what is in it.
//
//     std::vector<std::uint8_t> block = compressUint8(bytes);
//     auto same = decompressUint8(block.begin(), block.size(), bytes.size());
//
// Threads: free functions without state.

#include <cstdint>
#include <vector>

namespace compressedpaths::sixpacks {

/// The most bytes that one byte of a deflate stream can stand for: two bits copy 258 bytes.
inline constexpr std::uint64_t kMaxExpansion = 1032;

/// The zlib stream of all of `bytes`, at the best compression level. The bytes of the stream depend
/// on the zlib build; what they inflate to does not. Throws only std::bad_alloc. O(bytes).
std::vector<std::uint8_t> compressUint8(std::vector<std::uint8_t>& bytes);

/// Inflates the `compressedLength` bytes from `begin` into at most `uncompressedLength` bytes. A
/// damaged or short stream is not reported: the result then holds what zlib delivered.
/// Throws only std::bad_alloc. O(uncompressedLength).
std::vector<std::uint8_t> decompressUint8(std::vector<std::uint8_t>::iterator begin,
                                          std::uint64_t compressedLength,
                                          std::uint64_t uncompressedLength);

/// What a block inflates to, and zlib's word on it.
struct InflatedBlock {
    std::vector<std::uint8_t> bytes;
    bool isWhole;  // the stream has its end, its checksum holds, and `bytes` is all of it
};

/// The same for a caller who wants to know of damage.
InflatedBlock inflateBlock(std::vector<std::uint8_t>::iterator begin,
                           std::uint64_t compressedLength, std::uint64_t uncompressedLength);

}  // namespace compressedpaths::sixpacks
