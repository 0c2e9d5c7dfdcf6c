#include "zqpaths/text/PathText.hpp"

#include <utf8/checked.h>
#include <utf8/unchecked.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace zqpaths {
namespace {

constexpr char16_t kByteEscape = 0xDC00;  // plus the byte, which is 0x80 at least
constexpr std::uint64_t kNotAsciiBytes = 0x8080808080808080;
constexpr std::uint64_t kNotAsciiUnits = 0xFF80FF80FF80FF80;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

constexpr bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
constexpr bool isEscapedByte(char16_t unit) {
    return unit >= 0xDC80 && unit <= 0xDCFF;
}

/// The number of ASCII characters at the front. Eight bytes at a time are looked at through
/// `kOthers`, the bits that only other characters have.
template <std::uint64_t kOthers, class Character>
std::size_t asciiPrefix(std::basic_string_view<Character> text) {
    constexpr std::size_t kStep = sizeof(std::uint64_t) / sizeof(Character);
    std::size_t count = 0;
    for (; count + kStep <= text.size(); count += kStep) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + count, sizeof word);
        if ((word & kOthers) != 0) break;
    }
    while (count < text.size() && isAscii(text[count])) ++count;
    return count;
}

/// Moves the ASCII characters at the front of `from` to the end of `to`.
template <std::uint64_t kOthers, class From, class To>
void moveAscii(std::basic_string_view<From>& from, std::basic_string<To>& to) {
    const std::size_t count = asciiPrefix<kOthers>(from);
    const std::size_t start = to.size();
    to.resize(start + count);
    std::transform(from.data(), from.data() + count, to.data() + start,
                   [](From character) { return static_cast<To>(character); });
    from.remove_prefix(count);
}

}  // namespace

void appendUtf16(std::string_view bytes, std::u16string& text) {
    while (true) {
        moveAscii<kNotAsciiBytes>(bytes, text);
        if (bytes.empty()) return;

        const char* const begin = bytes.data();
        const char* const invalid = utf8::find_invalid(begin, begin + bytes.size());
        utf8::unchecked::utf8to16(begin, invalid, std::back_inserter(text));
        bytes.remove_prefix(static_cast<std::size_t>(invalid - begin));
        if (bytes.empty()) return;

        const auto byte = static_cast<unsigned char>(bytes.front());
        text.push_back(static_cast<char16_t>(kByteEscape + byte));
        bytes.remove_prefix(1);
    }
}

void appendBytes(std::u16string_view text, std::string& bytes) {
    while (true) {
        moveAscii<kNotAsciiUnits>(text, bytes);
        if (text.empty()) return;

        const char16_t unit = text.front();
        text.remove_prefix(1);
        if (isHighSurrogate(unit) && !text.empty() && isLowSurrogate(text.front())) {
            const std::uint32_t high = unit - 0xD800U;
            const std::uint32_t low = text.front() - 0xDC00U;
            utf8::unchecked::append(0x10000U + (high << 10) + low, std::back_inserter(bytes));
            text.remove_prefix(1);
        } else if (isEscapedByte(unit)) {
            bytes.push_back(static_cast<char>(unit - kByteEscape));
        } else {
            utf8::unchecked::append(unit, std::back_inserter(bytes));
        }
    }
}

std::size_t utf8Prefix(std::string_view bytes) {
    const std::size_t ascii = asciiPrefix<kNotAsciiBytes>(bytes);
    const char* const end = bytes.data() + bytes.size();
    return static_cast<std::size_t>(utf8::find_invalid(bytes.data() + ascii, end) - bytes.data());
}

bool isUtf8(std::string_view bytes) {
    return utf8Prefix(bytes) == bytes.size();
}

void appendReadable(std::string_view bytes, std::string& text) {
    while (true) {
        const std::size_t valid = utf8Prefix(bytes);
        text += bytes.substr(0, valid);
        if (valid == bytes.size()) return;
        text += kReplacement;
        bytes.remove_prefix(valid + 1);
    }
}

}  // namespace zqpaths
