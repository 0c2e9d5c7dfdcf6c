#include "compressedpaths/sixpacks/ByteReader.hpp"

#include <cassert>

namespace compressedpaths::sixpacks {

std::span<const std::uint8_t> ByteReader::readBytes(std::uint64_t byteCount) {
    if (byteCount > left_) throw PrematureEndException();
    const std::span bytes(position_, static_cast<std::size_t>(byteCount));
    position_ += byteCount;
    if (left_ != kNoEnd) left_ -= static_cast<std::size_t>(byteCount);
    return bytes;
}

std::uint64_t ByteReader::readInteger(unsigned byteCount) {
    assert(byteCount >= 1 && byteCount <= 8);
    std::uint64_t value = 0;
    unsigned shift = 0;
    for (const std::uint64_t byte : readBytes(byteCount)) {
        value |= byte << shift;
        shift += 8;
    }
    return value;
}

void ByteReader::requireElements(std::uint64_t count, unsigned elementByteSize) const {
    if (count > left_ / elementByteSize) throw PrematureEndException();
}

}  // namespace compressedpaths::sixpacks
