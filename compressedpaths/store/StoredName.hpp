#pragma once
// A coded name as the arena keeps it: its length in bits, then its bits in whole bytes. The code
// bytes of a component (sixpacks/BitVectors.hpp) say the same in up to two bytes more:
//
//     code bytes   4D 02 02        ten bits: eight, two more, and how many the two are
//     stored       0A 4D 02        the length, the bits
//
// A length below 248 takes one byte. 248 is followed by the length as a varint. 249 is followed by
// a length in bytes as a varint and then by any key as it stands: tries take keys that are no code
// bytes. A key has one stored form only, so that keys are equal when their stored forms are.
//
// A varint has seven bits a byte, lowest first; the top bit says that more follow.
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "compressedpaths/store/FlatArray.hpp"

namespace compressedpaths {

inline constexpr std::uint8_t kLongName = 248;  // these two live in images
inline constexpr std::uint8_t kAnyKey = 249;
inline constexpr std::size_t kMaxVarintSize = 10;

/// Writes a varint and returns where it ends; there is room for kMaxVarintSize bytes.
inline std::uint8_t* writeVarint(std::uint64_t value, std::uint8_t* out) noexcept {
    for (; value >= 0x80; value >>= 7) *out++ = static_cast<std::uint8_t>(value | 0x80);
    *out++ = static_cast<std::uint8_t>(value);
    return out;
}

inline std::size_t varintSize(std::uint64_t value) noexcept {
    std::size_t size = 1;
    for (; value >= 0x80; value >>= 7) ++size;
    return size;
}

/// Reads a varint before `end` and returns where it ends, or null if it does not.
inline const std::uint8_t* readVarint(const std::uint8_t* in, const std::uint8_t* end,
                                      std::uint64_t& value) noexcept {
    value = 0;
    for (unsigned shift = 0; in < end && shift < 64; shift += 7) {
        const std::uint64_t byte = *in++;
        value |= (byte & 0x7F) << shift;
        if (byte < 0x80) return in;
    }
    return nullptr;
}

/// A stored name that has been found whole.
struct NameView {
    const std::uint8_t* data = nullptr;  // its bits, the first one lowest; or its bytes
    std::size_t length = 0;              // in bits; in bytes of any key
    bool isAnyKey = false;

    std::size_t dataSize() const noexcept { return isAnyKey ? length : (length + 7) / 8; }
    const std::uint8_t* end() const noexcept { return data + dataSize(); }
    /// Bytes of the key.
    std::size_t keySize() const noexcept { return isAnyKey ? length : length / 8 + 2; }
};

/// The name that is stored at `in`, all of it before `end`; `data` is null if there is none.
inline NameView viewName(const std::uint8_t* in, const std::uint8_t* end) noexcept {
    if (in >= end) return {};
    NameView name{in + 1, *in, false};
    if (*in >= kLongName) {
        if (*in > kAnyKey) return {};
        name.isAnyKey = *in == kAnyKey;
        std::uint64_t length = 0;
        name.data = readVarint(in + 1, end, length);
        if (name.data == nullptr || length > 8 * static_cast<std::uint64_t>(end - in)) return {};
        name.length = static_cast<std::size_t>(length);
    }
    if (name.dataSize() > static_cast<std::size_t>(end - name.data)) return {};
    return name;
}

inline bool isSameName(const NameView& a, const NameView& b) noexcept {
    return a.length == b.length && a.isAnyKey == b.isAnyKey &&
           std::memcmp(a.data, b.data, a.dataSize()) == 0;
}

/// Bytes of the stored form of a key. O(1).
std::size_t storedSize(std::span<const std::uint8_t> key) noexcept;

/// Writes the stored form of a key, storedSize(key) bytes, and returns where it ends. O(key).
std::uint8_t* writeStoredName(std::span<const std::uint8_t> key, std::uint8_t* out) noexcept;

/// Appends the stored form of a key. Throws only std::bad_alloc; nothing has changed then. O(key).
void appendStoredName(std::span<const std::uint8_t> key, FlatArray<std::uint8_t>& out);

/// Writes the key of a stored name, name.keySize() bytes, and returns where it ends. O(key).
std::uint8_t* writeKey(const NameView& name, std::uint8_t* out) noexcept;

/// The key of a stored name. O(key).
std::vector<std::uint8_t> keyOf(const NameView& name);

}  // namespace compressedpaths
