#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"

#include <utility>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program::mpi {
namespace {

constexpr unsigned kBitsAByte = 7;
constexpr unsigned kMoreFollow = 0x80;

Failure notUnderstood() {
    return {ExitStatus::kFailed,
            "a message of another rank is not understood: do all ranks run the "
            "same release of the program?"};
}

}  // namespace

void MessageWriter::number(std::uint64_t number) {
    for (; number >= kMoreFollow; number >>= kBitsAByte)
        bytes_.push_back(static_cast<char>((number & (kMoreFollow - 1)) | kMoreFollow));
    bytes_.push_back(static_cast<char>(number));
}

void MessageWriter::text(std::string_view text) {
    number(text.size());
    bytes_ += text;
}

void MessageWriter::fixed(std::uint64_t number) {
    for (unsigned shift = 0; shift < 64; shift += 8)
        bytes_.push_back(static_cast<char>(number >> shift & 0xFF));
}

std::string MessageWriter::take() noexcept {
    return std::exchange(bytes_, {});
}

std::uint64_t MessageReader::number() {
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < 64; shift += kBitsAByte) {
        const auto byte = static_cast<unsigned char>(raw(1).front());
        number |= std::uint64_t{byte & (kMoreFollow - 1)} << shift;
        if (byte < kMoreFollow) return number;
    }
    throw notUnderstood();
}

std::string_view MessageReader::text() {
    return raw(number());
}

std::uint64_t MessageReader::fixed() {
    std::uint64_t number = 0;
    unsigned shift = 0;
    for (const char byte : raw(8)) {
        number |= std::uint64_t{static_cast<unsigned char>(byte)} << shift;
        shift += 8;
    }
    return number;
}

std::string_view MessageReader::raw(std::size_t size) {
    if (size > bytes_.size()) throw notUnderstood();
    const std::string_view part = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return part;
}

std::string_view MessageReader::rest() noexcept {
    return std::exchange(bytes_, {});
}

}  // namespace zqpaths::program::mpi
