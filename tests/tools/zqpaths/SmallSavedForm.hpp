#pragma once
// The saved form of a small set, byte by byte, for tests that change some of them.

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zqpaths {

using Bytes = std::vector<std::uint8_t>;

// The whole set of docs/format.md: the folder a with the files b, c and ca, then a/b on its own.
inline const Bytes kBody = {
    0x02, 0,    0,    0, 0,    0,    0,    0, 0x1C, 0x05,              // shape
    0x04, 0,    0,    0, 0,    0,    0,    0, 0x01, 0x02, 0x02, 0x00,  // structure
    0x04, 0,    0,    0, 0,    0,    0,    0, 0x00,                    // keys
    0x02, 0x01, 0x01,                                                  // a
    0x02, 0x02, 0x02,                                                  // b
    0x02, 0x00, 0x02,                                                  // c
    0x02, 0x04, 0x03,                                                  // ca
    0x01, 0x00, 0x00, 2, 2,    3,                                      // totals
    0x02, 0,    0,    0, 0,    0,    0,    0, 0x00, 0x00,              // entries
    0x01, 0x00, 0x02, 0, 0x02,                                         // their tracks
    0x00, 0x00, 0x00, 0, 0x04, 0x02, 0x00, 0                           // track section
};
inline constexpr std::size_t kStructureAt = 18;  // in the body: the first structure byte
inline constexpr std::size_t kIndexAt = 43;
inline constexpr std::size_t kSecondTotalAt = 48;

/// A saved form with this body, which states `byteSize`.
inline Bytes savedWith(const Bytes& body, std::uint64_t byteSize) {
    Bytes saved;
    for (unsigned i = 0; i < 8; ++i)
        saved.push_back(static_cast<std::uint8_t>(byteSize >> (8 * i)));
    Bytes stream(compressBound(body.size()));
    uLongf length = stream.size();
    EXPECT_EQ(compress2(stream.data(), &length, body.data(), body.size(), Z_BEST_COMPRESSION),
              Z_OK);
    saved.insert(saved.end(), stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(length));
    return saved;
}

inline Bytes saved(const Bytes& body) {
    return savedWith(body, body.size());
}

}  // namespace zqpaths
