#pragma once
// What the parts of a set file are written and read with: integers with the lowest byte first,
// sums, and the texts of what is refused.
//
//     ByteWriter writer(bytes);
//     writer.integer(sumOf(segment), 8);
//
// Threads: free functions without state; a writer belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "compressedpaths/sixpacks/ByteReader.hpp"

namespace zqpaths {

inline constexpr std::uint64_t kPageSize = 4096;     // of the header; segments begin at multiples
inline constexpr std::uint64_t kBlockAlignment = 8;  // of all else, so that integers can be read

constexpr std::uint64_t alignedUp(std::uint64_t offset, std::uint64_t alignment) noexcept {
    return (offset + alignment - 1) / alignment * alignment;
}

/// The sum that stands for these bytes wherever the form has one. O(bytes).
std::uint64_t sumOf(std::span<const std::byte> bytes) noexcept;

/// Throws Error kDamaged, with both sizes, if a file has fewer bytes than it should.
void requireSize(std::uint64_t size, std::uint64_t wanted);

[[noreturn]] void refuseDamage(const std::string& reason);  // Error kDamaged
[[noreturn]] void refuseNewer();                            // Error kNotASet

compressedpaths::sixpacks::ByteReader readerOf(std::span<const std::byte> bytes) noexcept;

/// Writes integers one after the other, lowest byte first, and bytes.
class ByteWriter {
public:
    explicit ByteWriter(std::span<std::byte> bytes) noexcept : left_(bytes) {}

    void integer(std::uint64_t value, unsigned byteCount) noexcept;
    void bytes(std::span<const std::byte> bytes) noexcept;

private:
    std::span<std::byte> left_;
};

}  // namespace zqpaths
