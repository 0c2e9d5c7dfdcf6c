#pragma once
// Makes the sums of a damaged set file right again, which chance would hardly do, so that what
// reads it has to look at the values:
//
//     bytes[512] ^= std::byte{1};  // the sequence of a superblock
//     putSumsRight(bytes);
//
// Threads: a free function without state.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "zqpaths/file/SetFileLayout.hpp"

namespace zqpaths {

/// Of the header, the superblocks, the one at the end and the directories that they name.
inline void putSumsRight(std::span<std::byte> file) {
    const auto integerAt = [&](std::size_t offset) {
        std::uint64_t value = 0;
        std::memcpy(&value, file.data() + offset, sizeof value);
        return value;
    };
    const auto put = [&](std::size_t offset, std::uint64_t value) {
        std::memcpy(file.data() + offset, &value, sizeof value);
    };
    const auto putSumOf = [&](std::size_t offset, std::size_t size) {
        put(offset + size - 8, sumOf(file.subspan(offset, size - 8)));
    };
    const auto putSuperblock = [&](std::size_t offset) {
        const std::uint64_t directory = integerAt(offset + 8);
        const std::uint64_t size = integerAt(offset + 16);
        if (directory <= file.size() && size <= file.size() - directory)
            put(offset + 24, sumOf(file.subspan(directory, size)));
        putSumOf(offset, kSuperblockSize);
    };
    if (file.size() < kPageSize) return;
    putSumOf(0, kHeaderSize);
    if (file.size() >= kPageSize + kSuperblockSize) putSuperblock(file.size() - kSuperblockSize);
    for (const std::size_t offset : kSuperblockOffsets) putSuperblock(offset);
}

}  // namespace zqpaths
