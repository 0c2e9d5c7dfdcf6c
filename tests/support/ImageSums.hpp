#pragma once
// Makes the sums of a damaged image right again, which chance would hardly do, so that what reads
// it has to look at the values.
//
// Threads: a free function without state.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "compressedpaths/Image.hpp"
#include "compressedpaths/store/Hashing.hpp"

namespace compressedpaths {

/// Where the header of the image says that they stand.
inline void putImageSumsRight(std::span<std::byte> bytes) {
    image::Header header;
    if (bytes.size() < sizeof header) return;
    std::memcpy(&header, bytes.data(), sizeof header);
    const image::Extent sums = header[image::Part::kSums];
    if (sums.offset > bytes.size() || sums.byteSize > bytes.size() - sums.offset) return;
    for (std::uint64_t i = 0; i < sums.byteSize / 8 && i * image::kSummedSize < sums.offset; ++i) {
        const std::uint64_t begin = i * image::kSummedSize;
        const std::uint64_t sum =
            hashOf(bytes.data() + begin,
                   std::min<std::size_t>(sums.offset - begin, image::kSummedSize), 0);
        std::memcpy(bytes.data() + sums.offset + i * 8, &sum, sizeof sum);
    }
}

}  // namespace compressedpaths
