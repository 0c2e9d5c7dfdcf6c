#include "zqpaths/file/SetFileBytes.hpp"

#include <algorithm>

#include "compressedpaths/store/Hashing.hpp"
#include "zqpaths/Error.hpp"

namespace zqpaths {

std::uint64_t sumOf(std::span<const std::byte> bytes) noexcept {
    return compressedpaths::hashOf(bytes.data(), bytes.size(), 0);
}

void requireSize(std::uint64_t size, std::uint64_t wanted) {
    if (size < wanted)
        refuseDamage("has " + std::to_string(size) + " bytes instead of " + std::to_string(wanted));
}

void refuseDamage(const std::string& reason) {
    throw Error(ErrorKind::kDamaged, {}, reason);
}

void refuseNewer() {
    throw Error(ErrorKind::kNotASet, {}, "is a set that needs a newer version of this program");
}

compressedpaths::sixpacks::ByteReader readerOf(std::span<const std::byte> bytes) noexcept {
    return compressedpaths::sixpacks::ByteReader(
        {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

void ByteWriter::integer(std::uint64_t value, unsigned byteCount) noexcept {
    for (unsigned i = 0; i < byteCount; ++i, value >>= 8)
        left_[i] = static_cast<std::byte>(value & 0xFF);
    left_ = left_.subspan(byteCount);
}

void ByteWriter::bytes(std::span<const std::byte> bytes) noexcept {
    std::copy(bytes.begin(), bytes.end(), left_.begin());
    left_ = left_.subspan(bytes.size());
}

}  // namespace zqpaths
