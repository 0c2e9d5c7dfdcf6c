#pragma once
// ByteReader is a cursor over bytes that came from outside. It knows where they end and refuses
// every read beyond that, before anything is allocated for it:
//
//     ByteReader reader(bytes);
//     const std::uint64_t count = reader.readInteger(8);
//     reader.requireElements(count, 2);  // of two bytes or more each
//     things.reserve(count);
//
// Threads: a reader belongs to one thread at a time; the bytes must outlive it.

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <span>

namespace compressedpaths::sixpacks {

/// The bytes end before what they announce.
class PrematureEndException : public std::exception {
public:
    const char* what() const noexcept override { return "The serialized bytes end too early."; }
};

class ByteReader {
public:
    explicit ByteReader(std::span<const std::uint8_t> bytes) noexcept
        : position_(bytes.data()), left_(bytes.size()) {}

    /// A reader for callers that vouch for the bytes: it sees no end and refuses nothing.
    static ByteReader trusting(const std::uint8_t* begin) noexcept { return ByteReader(begin); }

    bool isAtEnd() const noexcept { return left_ == 0; }
    const std::uint8_t* position() const noexcept { return position_; }
    /// Bytes that can still be read; without end for a trusting reader.
    std::size_t left() const noexcept { return left_; }

    /// The next `byteCount` (1 to 8) bytes as an integer, lowest byte first.
    /// Throws PrematureEndException if fewer are left; the reader then stays where it is. O(1).
    std::uint64_t readInteger(unsigned byteCount);

    /// Throws PrematureEndException if the bytes left cannot hold `count` elements of
    /// `elementByteSize` bytes or more each; call it before allocating for them. O(1).
    void requireElements(std::uint64_t count, unsigned elementByteSize) const;

    /// A view of the next `byteCount` bytes, which are passed.
    /// Throws PrematureEndException if fewer are left; the reader then stays where it is. O(1).
    std::span<const std::uint8_t> readBytes(std::uint64_t byteCount);

private:
    explicit ByteReader(const std::uint8_t* begin) noexcept : position_(begin), left_(kNoEnd) {}

    static constexpr std::size_t kNoEnd = std::numeric_limits<std::size_t>::max();

    const std::uint8_t* position_;
    std::size_t left_;  // bytes from position_ on; kNoEnd, and never less, for a trusting reader
};

inline std::span<const std::uint8_t> ByteReader::readBytes(std::uint64_t byteCount) {
    if (byteCount > left_) throw PrematureEndException();
    const std::span bytes(position_, static_cast<std::size_t>(byteCount));
    position_ += byteCount;
    if (left_ != kNoEnd) left_ -= static_cast<std::size_t>(byteCount);
    return bytes;
}

inline std::uint64_t ByteReader::readInteger(unsigned byteCount) {
    assert(byteCount >= 1 && byteCount <= 8);
    const std::uint8_t* const bytes = readBytes(byteCount).data();
    std::uint64_t value = 0;
    for (unsigned i = byteCount; i > 0; --i) value = value << 8 | bytes[i - 1];
    return value;
}

inline void ByteReader::requireElements(std::uint64_t count, unsigned elementByteSize) const {
    if (count > left_ / elementByteSize) throw PrematureEndException();
}

}  // namespace compressedpaths::sixpacks
