#include "compressedpaths/sixpacks/CompressedBlocks.hpp"

#include <zlib.h>

#include <memory>

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
    std::vector<std::uint8_t> bytes(uncompressedLength);
    uLongf length = bytes.size();
    static_cast<void>(uncompress(bytes.data(), &length, std::to_address(begin), compressedLength));
    bytes.resize(length);
    return bytes;
}

}  // namespace compressedpaths::sixpacks
