#include "compressedpaths/sixpacks/PackedIntegers.hpp"

#include <array>

namespace compressedpaths::sixpacks {
namespace {

using ByteIterator = std::vector<std::uint8_t>::iterator;

void appendInteger(std::uint64_t value, unsigned byteCount, std::vector<std::uint8_t>& out) {
    std::array<std::uint8_t, 8> bytes;
    out.insert(out.end(), bytes.data(), writeInteger(value, byteCount, bytes.data()));
}

/// Reads as `read` does from a reader that trusts the bytes at `in`, and moves `in` along, also
/// when `read` throws half-way.
template <class Read>
void readTrusting(ByteIterator& in, Read read) {
    const std::uint8_t* const begin = std::to_address(in);
    ByteReader reader = ByteReader::trusting(begin);
    struct Advance {
        ByteIterator& in;
        const std::uint8_t* begin;
        const ByteReader& reader;
        ~Advance() { in += reader.position() - begin; }
    } const advance{in, begin, reader};
    read(reader);
}

}  // namespace

template <class T>
void PackerUnpackerBase<T>::packValues(const std::vector<T>& values,
                                       std::vector<std::uint8_t>& out) {
    for (const T value : values) packValue(value, out);
}

template <class T>
void PackerUnpackerBase<T>::unpackValues(std::vector<T>& out, ByteIterator& in, const T& count) {
    for (T left = count; left > 0; --left) {
        T value = 0;
        unpackValue(value, in);
        out.push_back(value);
    }
}

template <class U, class T>
void PackerUnpackerUint<U, T>::packValue(T value, std::vector<std::uint8_t>& out) {
    appendInteger(value, sizeof(U), out);
}

template <class U, class T>
void PackerUnpackerUint<U, T>::unpackValue(T& value, ByteIterator& in) {
    readTrusting(in, [&](ByteReader& reader) { value = reader.readInteger(sizeof(U)); });
}

template <class U, class T>
std::unique_ptr<PackerUnpackerBase<T>> makePackerUnpacker() {
    return std::make_unique<PackerUnpackerUint<U, T>>();
}

template class PackerUnpackerBase<unsigned long>;
template class PackerUnpackerBase<unsigned long long>;
template class PackerUnpackerUint<std::uint8_t, unsigned long>;
template class PackerUnpackerUint<std::uint16_t, unsigned long>;
template class PackerUnpackerUint<std::uint32_t, unsigned long>;
template class PackerUnpackerUint<std::uint64_t, unsigned long>;
template class PackerUnpackerUint<std::uint8_t, unsigned long long>;
template class PackerUnpackerUint<std::uint16_t, unsigned long long>;
template class PackerUnpackerUint<std::uint32_t, unsigned long long>;
template class PackerUnpackerUint<std::uint64_t, unsigned long long>;
template std::unique_ptr<PackerUnpackerBase<unsigned long>>
makePackerUnpacker<std::uint8_t, unsigned long>();
template std::unique_ptr<PackerUnpackerBase<unsigned long>>
makePackerUnpacker<std::uint16_t, unsigned long>();
template std::unique_ptr<PackerUnpackerBase<unsigned long>>
makePackerUnpacker<std::uint32_t, unsigned long>();
template std::unique_ptr<PackerUnpackerBase<unsigned long>>
makePackerUnpacker<std::uint64_t, unsigned long>();
template std::unique_ptr<PackerUnpackerBase<unsigned long long>>
makePackerUnpacker<std::uint8_t, unsigned long long>();
template std::unique_ptr<PackerUnpackerBase<unsigned long long>>
makePackerUnpacker<std::uint16_t, unsigned long long>();
template std::unique_ptr<PackerUnpackerBase<unsigned long long>>
makePackerUnpacker<std::uint32_t, unsigned long long>();
template std::unique_ptr<PackerUnpackerBase<unsigned long long>>
makePackerUnpacker<std::uint64_t, unsigned long long>();

std::uint8_t* writeInteger(std::uint64_t value, unsigned byteCount, std::uint8_t* out) noexcept {
    for (; byteCount > 0; --byteCount, value >>= 8) *out++ = static_cast<std::uint8_t>(value);
    return out;
}

unsigned byteSizeOf(PackedSizeT width) {
    if (width > PackedSizeT::Uint64) throw InvalidUintConversionException();
    return 1U << static_cast<unsigned>(width);
}

std::unique_ptr<PackerUnpackerBase<std::size_t>> makePackerOfWidth(PackedSizeT width) {
    using Factory = std::unique_ptr<PackerUnpackerBase<std::size_t>> (*)();
    constexpr std::array<Factory, 4> kFactories{makePackerUnpacker<std::uint8_t, std::size_t>,
                                                makePackerUnpacker<std::uint16_t, std::size_t>,
                                                makePackerUnpacker<std::uint32_t, std::size_t>,
                                                makePackerUnpacker<std::uint64_t, std::size_t>};
    if (width > PackedSizeT::Uint64) throw InvalidUintConversionException();
    return kFactories[static_cast<std::size_t>(width)]();
}

PackedSizeT widthOf(std::size_t value) noexcept {
    if (value <= 0xFF) return PackedSizeT::Uint8;
    if (value <= 0xFFFF) return PackedSizeT::Uint16;
    if (value <= 0xFFFFFFFF) return PackedSizeT::Uint32;
    return PackedSizeT::Uint64;
}

PackedSizeT packPackedSizeT(std::size_t value, std::vector<std::uint8_t>& out) {
    const PackedSizeT width = widthOf(value);
    out.push_back(static_cast<std::uint8_t>(width));
    return width;
}

void packSizeTVector(const std::vector<std::size_t>& values, std::vector<std::uint8_t>& out,
                     PackedSizeT elementWidth, PackedSizeT countWidth) {
    makePackerOfWidth(countWidth)->packValue(values.size(), out);
    makePackerOfWidth(elementWidth)->packValues(values, out);
}

void unpackSizeTVector(std::vector<std::size_t>& values, ByteReader& in, PackedSizeT elementWidth,
                       PackedSizeT countWidth) {
    const std::uint64_t count = in.readInteger(byteSizeOf(countWidth));
    const unsigned elementByteSize = byteSizeOf(elementWidth);
    in.requireElements(count, elementByteSize);
    values.reserve(values.size() + count);
    for (std::uint64_t left = count; left > 0; --left)
        values.push_back(in.readInteger(elementByteSize));
}

void unpackSizeTVector(std::vector<std::size_t>& values, ByteIterator& in, PackedSizeT elementWidth,
                       PackedSizeT countWidth) {
    readTrusting(in, [&](ByteReader& reader) {
        unpackSizeTVector(values, reader, elementWidth, countWidth);
    });
}

void packVector(std::vector<std::uint8_t>& bytes, std::vector<std::uint8_t>& out,
                PackedSizeT countWidth) {
    makePackerOfWidth(countWidth)->packValue(bytes.size(), out);
    out.insert(out.end(), bytes.begin(), bytes.end());
}

void unpackVector(std::vector<std::uint8_t>& bytes, ByteReader& in, PackedSizeT countWidth) {
    const auto packed = in.readBytes(in.readInteger(byteSizeOf(countWidth)));
    bytes.insert(bytes.end(), packed.begin(), packed.end());
}

void unpackVector(std::vector<std::uint8_t>& bytes, ByteIterator& in, PackedSizeT countWidth) {
    readTrusting(in, [&](ByteReader& reader) { unpackVector(bytes, reader, countWidth); });
}

}  // namespace compressedpaths::sixpacks
