#include "compressedpaths/store/StoredName.hpp"

#include <limits>

namespace compressedpaths {
namespace {

constexpr std::size_t kNotCodeBytes = std::numeric_limits<std::size_t>::max();

/// The bits that a key stores if it is code bytes as a packer writes them.
std::size_t storedBitCount(std::span<const std::uint8_t> key) noexcept {
    if (key.size() < 2 || key.back() > 7) return kNotCodeBytes;
    const std::uint8_t partial = key[key.size() - 2];
    if (partial >> key.back() != 0) return kNotCodeBytes;
    return (key.size() - 2) * 8 + key.back();
}

}  // namespace

std::size_t storedSize(std::span<const std::uint8_t> key) noexcept {
    const std::size_t bitCount = storedBitCount(key);
    if (bitCount == kNotCodeBytes) return 1 + varintSize(key.size()) + key.size();
    return (bitCount < kLongName ? 1 : 1 + varintSize(bitCount)) + (bitCount + 7) / 8;
}

std::uint8_t* writeStoredName(std::span<const std::uint8_t> key, std::uint8_t* out) noexcept {
    const std::size_t bitCount = storedBitCount(key);
    std::size_t dataSize = (bitCount + 7) / 8;
    if (bitCount < kLongName) {
        *out++ = static_cast<std::uint8_t>(bitCount);
    } else if (bitCount != kNotCodeBytes) {
        *out++ = kLongName;
        out = writeVarint(bitCount, out);
    } else {
        dataSize = key.size();
        *out++ = kAnyKey;
        out = writeVarint(dataSize, out);
    }
    if (dataSize > 0) std::memcpy(out, key.data(), dataSize);
    return out + dataSize;
}

void appendStoredName(std::span<const std::uint8_t> key, FlatArray<std::uint8_t>& out) {
    const std::size_t size = storedSize(key);
    out.reserveFor(size);
    writeStoredName(key, out.extend(size));
}

std::uint8_t* writeKey(const NameView& name, std::uint8_t* out) noexcept {
    std::memcpy(out, name.data, name.dataSize());
    out += name.dataSize();
    if (name.isAnyKey) return out;
    if (name.length % 8 == 0) *out++ = 0;  // the partial byte is there even when it holds no bit
    *out++ = static_cast<std::uint8_t>(name.length % 8);
    return out;
}

std::vector<std::uint8_t> keyOf(const NameView& name) {
    std::vector<std::uint8_t> key(name.keySize());
    if (!key.empty()) writeKey(name, key.data());
    return key;
}

}  // namespace compressedpaths
