#include "tools/zqpaths/output/Base64.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zqpaths::program {
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

}  // namespace zqpaths::program
