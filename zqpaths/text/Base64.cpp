#include "zqpaths/text/Base64.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zqpaths {
namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kGroupBytes = 3;
constexpr std::size_t kGroupDigits = 4;
constexpr unsigned kDigitBits = 6;

}  // namespace

std::string toBase64(std::string_view bytes) {
    std::string digits;
    digits.reserve((bytes.size() + kGroupBytes - 1) / kGroupBytes * kGroupDigits);
    for (; !bytes.empty(); bytes.remove_prefix(std::min(kGroupBytes, bytes.size()))) {
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < kGroupBytes; ++i)
            group = group << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
        for (std::size_t i = 0; i < kGroupDigits; ++i) {
            const auto shift = static_cast<unsigned>(kGroupDigits - 1 - i) * kDigitBits;
            digits.push_back(i <= bytes.size() ? kDigits[group >> shift & 0x3F] : '=');
        }
    }
    return digits;
}

std::optional<std::string> fromBase64(std::string_view digits) {
    std::string bytes;
    bytes.reserve(digits.size() / kGroupDigits * kGroupBytes);
    std::uint32_t bits = 0;
    unsigned bitCount = 0;  // of those that make no byte yet
    for (const char digit : digits.substr(0, digits.find('='))) {
        const std::size_t value = kDigits.find(digit);
        if (value == std::string_view::npos) return std::nullopt;
        bits = bits << kDigitBits | static_cast<std::uint32_t>(value);
        bitCount += kDigitBits;
        if (bitCount < 8) continue;
        bitCount -= 8;
        bytes.push_back(static_cast<char>(bits >> bitCount & 0xFF));
    }
    // The padding and the bits that are left over have to be what they are in what we write.
    if (toBase64(bytes) != digits) return std::nullopt;
    return bytes;
}

}  // namespace zqpaths
