#pragma once
// Unsigned integers in the smallest of four fixed widths, lowest byte first. A writer chooses one
// width for a run of integers from their maximum and writes it once, as a tag, ahead of them:
//
//     std::vector<std::uint8_t> bytes;
//     const PackedSizeT width = packPackedSizeT(300, bytes);                 // 01
//     packSizeTVector({1, 300}, bytes, width, PackedSizeT::Uint8);           // 02 01 00 2C 01
//
//     auto in = bytes.begin() + 1;
//     std::vector<std::size_t> values;
//     unpackSizeTVector(values, in, width, PackedSizeT::Uint8);              // values == {1, 300}
//
// The iterator forms trust their bytes; the ByteReader forms read the same and know the end.
//
// Threads: free functions and packers without state.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <vector>

#include "compressedpaths/sixpacks/ByteReader.hpp"

namespace compressedpaths::sixpacks {

/// The width of packed integers; its value is the tag in saved bytes.
enum class PackedSizeT : std::uint8_t { Uint8, Uint16, Uint32, Uint64 };

/// A width tag that is none of the four.
class InvalidUintConversionException : public std::exception {
public:
    const char* what() const noexcept override { return "Invalid uint type conversion."; }
};

/// Packs and unpacks integers of one width; T is the type they have in memory. A value wider than
/// the width loses its upper bytes. Reading trusts the bytes and moves `in` past what was read.
template <class T>
class PackerUnpackerBase {
public:
    PackerUnpackerBase() = default;
    PackerUnpackerBase(const PackerUnpackerBase&) = delete;
    PackerUnpackerBase& operator=(const PackerUnpackerBase&) = delete;
    virtual ~PackerUnpackerBase() = default;

    virtual void packValues(const std::vector<T>& values, std::vector<std::uint8_t>& out);
    virtual void packValue(T value, std::vector<std::uint8_t>& out) = 0;
    /// Appends `count` values to `out`.
    virtual void unpackValues(std::vector<T>& out, std::vector<std::uint8_t>::iterator& in,
                              const T& count);
    virtual void unpackValue(T& value, std::vector<std::uint8_t>::iterator& in) = 0;
};

/// The packer of the width of U.
template <class U, class T>
class PackerUnpackerUint : public PackerUnpackerBase<T> {
public:
    void packValue(T value, std::vector<std::uint8_t>& out) override;
    void unpackValue(T& value, std::vector<std::uint8_t>::iterator& in) override;
};

/// Instantiated for U of 8, 16, 32 and 64 bits and T unsigned long and unsigned long long.
template <class U, class T>
std::unique_ptr<PackerUnpackerBase<T>> makePackerUnpacker();

/// The packer of a width. Throws InvalidUintConversionException if `width` is none of the four.
std::unique_ptr<PackerUnpackerBase<std::size_t>> makePackerOfWidth(PackedSizeT width);

/// The smallest width that holds `value`.
PackedSizeT widthOf(std::size_t value) noexcept;

/// Bytes of one integer. Throws InvalidUintConversionException if `width` is none of the four.
unsigned byteSizeOf(PackedSizeT width);

/// Writes the low `byteCount` (1 to 8) bytes of a value, lowest first, and returns where they end.
std::uint8_t* writeInteger(std::uint64_t value, unsigned byteCount, std::uint8_t* out) noexcept;

/// Appends the tag of the smallest width that holds `value`, not the value, and returns the width.
PackedSizeT packPackedSizeT(std::size_t value, std::vector<std::uint8_t>& out);

/// Appends the number of `values` in `countWidth`, then the values in `elementWidth`. Throws
/// InvalidUintConversionException on a bad width; on a bad `elementWidth` the count is there
/// already.
void packSizeTVector(const std::vector<std::size_t>& values, std::vector<std::uint8_t>& out,
                     PackedSizeT elementWidth, PackedSizeT countWidth);

/// Appends to `values` what packSizeTVector wrote and moves `in` past it.
/// Throws InvalidUintConversionException on a bad width; on a bad `elementWidth` the count is
/// passed.
void unpackSizeTVector(std::vector<std::size_t>& values, std::vector<std::uint8_t>::iterator& in,
                       PackedSizeT elementWidth, PackedSizeT countWidth);

/// The same; throws also PrematureEndException, before anything is allocated, if the bytes end.
void unpackSizeTVector(std::vector<std::size_t>& values, ByteReader& in, PackedSizeT elementWidth,
                       PackedSizeT countWidth);

/// Appends the number of `bytes` in `countWidth`, then the bytes.
/// Throws InvalidUintConversionException on a bad width.
void packVector(std::vector<std::uint8_t>& bytes, std::vector<std::uint8_t>& out,
                PackedSizeT countWidth);

/// Appends to `bytes` what packVector wrote and moves `in` past it.
/// Throws InvalidUintConversionException on a bad width.
void unpackVector(std::vector<std::uint8_t>& bytes, std::vector<std::uint8_t>::iterator& in,
                  PackedSizeT countWidth);

/// The same; throws also PrematureEndException, before anything is allocated, if the bytes end.
void unpackVector(std::vector<std::uint8_t>& bytes, ByteReader& in, PackedSizeT countWidth);

}  // namespace compressedpaths::sixpacks
