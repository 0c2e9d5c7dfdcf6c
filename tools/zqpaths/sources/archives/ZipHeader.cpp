#include "tools/zqpaths/sources/archives/ZipHeader.hpp"

#include <cstddef>
#include <cstdint>

namespace zqpaths::program {
namespace {

constexpr std::string_view kHeader = "PK\3\4";
constexpr std::string_view kEnd = "PK\5\6";
constexpr std::size_t kEndLength = 22;
constexpr std::size_t kCommentLengthAt = 20;
constexpr std::size_t kNameLengthAt = 26;
constexpr std::size_t kFieldsLengthAt = 28;
constexpr std::size_t kNameAt = 30;

// A field of this kind has one byte of version, four of a sum, and the name in UTF-8.
constexpr std::uint16_t kUnicodeName = 0x7075;
constexpr std::size_t kUnicodeNameAt = 5;

std::uint16_t numberAt(std::string_view bytes, std::size_t place) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    return static_cast<std::uint16_t>(byte(place) | byte(place + 1) << 8);
}

std::optional<std::string_view> unicodeName(std::string_view fields) {
    constexpr std::size_t kHeadLength = 4;
    while (fields.size() >= kHeadLength) {
        const std::uint16_t kind = numberAt(fields, 0);
        const std::uint16_t length = numberAt(fields, 2);
        fields.remove_prefix(kHeadLength);
        if (length > fields.size()) break;
        if (kind == kUnicodeName && length > kUnicodeNameAt)
            return fields.substr(kUnicodeNameAt, length - kUnicodeNameAt);
        fields.remove_prefix(length);
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> nameInZipHeader(std::string_view bytes) {
    for (std::size_t begin = bytes.find(kHeader); begin != std::string_view::npos;
         begin = bytes.find(kHeader, begin + 1)) {
        const std::string_view header = bytes.substr(begin);
        if (header.size() < kNameAt) break;
        const std::size_t nameLength = numberAt(header, kNameLengthAt);
        const std::size_t fieldsLength = numberAt(header, kFieldsLengthAt);
        if (kNameAt + nameLength + fieldsLength != header.size()) continue;
        return std::string(unicodeName(header.substr(kNameAt + nameLength))
                               .value_or(header.substr(kNameAt, nameLength)));
    }
    return std::nullopt;
}

bool hasEndOfZip(std::string_view bytes) {
    for (std::size_t begin = bytes.rfind(kEnd); begin != std::string_view::npos;
         begin = begin == 0 ? std::string_view::npos : bytes.rfind(kEnd, begin - 1)) {
        const std::string_view record = bytes.substr(begin);
        if (record.size() < kEndLength) continue;
        if (record.size() >= kEndLength + numberAt(record, kCommentLengthAt)) return true;
    }
    return false;
}

}  // namespace zqpaths::program
