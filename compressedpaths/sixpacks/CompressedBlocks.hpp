#pragma once
// One zlib stream a block, without a header of our own: whoever stores a block keeps its length and
// the length of what is in it.
//
//     std::vector<std::uint8_t> block = compressUint8(bytes);
//     auto same = decompressUint8(block.begin(), block.size(), bytes.size());
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <vector>

namespace compressedpaths::sixpacks {

/// The most bytes that one byte of a deflate stream can stand for: two bits copy 258 bytes.
inline constexpr std::uint64_t kMaxExpansion = 1032;

/// The zlib stream of all of `bytes`, at the best compression level. The bytes of the stream depend
/// on the zlib build; what they inflate to does not. Throws only std::bad_alloc, for zlib too.
/// O(bytes).
std::vector<std::uint8_t> compressUint8(std::vector<std::uint8_t>& bytes);

/// Inflates the `compressedLength` bytes from `begin` into at most `uncompressedLength` bytes. A
/// damaged or short stream is not reported: the result then holds what zlib delivered.
/// Throws only std::bad_alloc. O(uncompressedLength).
std::vector<std::uint8_t> decompressUint8(std::vector<std::uint8_t>::iterator begin,
                                          std::uint64_t compressedLength,
                                          std::uint64_t uncompressedLength);

/// Makes a block of bytes that are given piece by piece: the stream is that of compressUint8, but
/// neither they nor the stream ever stand in one piece.
///
///     BlockCompressor compressor;
///     compressor.append(piece);
///     compressor.appendBlockTo(out);
class BlockCompressor {
public:
    /// Throws only std::bad_alloc, as do the other two.
    BlockCompressor();
    BlockCompressor(const BlockCompressor&) = delete;
    BlockCompressor& operator=(const BlockCompressor&) = delete;
    ~BlockCompressor();

    /// O(piece).
    void append(std::span<const std::uint8_t> piece);

    /// Ends the block and appends it to `out`; nothing has changed there if it throws. Once.
    void appendBlockTo(std::vector<std::uint8_t>& out);

private:
    struct Stream;

    void deflatePiece(std::span<const std::uint8_t> piece, int flush);

    std::unique_ptr<Stream> stream_;
    std::deque<std::vector<std::uint8_t>> pieces_;  // of the block; all but the last are full
    std::size_t size_ = 0;                          // of the block
};

/// What a block inflates to, and zlib's word on it.
struct InflatedBlock {
    std::vector<std::uint8_t> bytes;
    bool isWhole;  // the stream has its end, its checksum holds, and `bytes` is all of it
};

/// Inflates `block` into at most `maxSize` bytes, for a caller who wants to know of damage. Takes
/// memory for what there is, not for what is allowed. Throws only std::bad_alloc. O(bytes).
InflatedBlock inflateBlock(std::span<const std::uint8_t> block, std::uint64_t maxSize);

}  // namespace compressedpaths::sixpacks
