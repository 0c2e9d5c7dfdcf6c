#pragma once
// The bytes of a path as UTF-16 code units and back. A name on disk is any bytes; most are UTF-8:
//
//     std::u16string text;
//     appendUtf16("caf\xC3\xA9", text);  // text == u"caf\u00E9"
//     appendUtf16("\xFF", text);         // a byte that is not UTF-8: the unit 0xDC00 + 0xFF
//     std::string bytes;
//     appendBytes(text, bytes);          // bytes == "caf\xC3\xA9\xFF"
//
// Valid UTF-8 never gives a unit of 0xDC80 to 0xDCFF alone, so every byte string comes back as it
// was. These functions append, so that one string can be filled piece by piece and used again.
//
// Threads: free functions without state.

#include <cstddef>
#include <string>
#include <string_view>

#include "zqpaths/Export.hpp"

namespace zqpaths {

/// Appends `bytes` as UTF-16: UTF-8 converted, each byte that begins no valid sequence as the unit
/// 0xDC00 + byte. Throws only std::bad_alloc; part may have been appended then. O(bytes).
ZQPATHS_EXPORT void appendUtf16(std::string_view bytes, std::u16string& text);

/// Appends `text` as bytes: what appendUtf16 made of them. Other lone surrogates, which bytes never
/// give, take the three bytes that UTF-8 would have for their number, so that they can be told
/// apart. Throws only std::bad_alloc; part may have been appended then. O(units).
ZQPATHS_EXPORT void appendBytes(std::u16string_view text, std::string& bytes);

/// How many bytes at the front are whole UTF-8 characters; all of them if `bytes` is UTF-8.
/// O(bytes).
ZQPATHS_EXPORT std::size_t utf8Prefix(std::string_view bytes);

ZQPATHS_EXPORT bool isUtf8(std::string_view bytes);

/// Whether a byte is a character by itself, which is one unit of UTF-16 with the same number; and
/// whether a unit is such a character.
constexpr bool isAscii(char byte) noexcept {
    return static_cast<unsigned char>(byte) < 0x80;
}
constexpr bool isAscii(char16_t unit) noexcept {
    return unit < 0x80;
}

/// Appends `bytes` as UTF-8 for people to read: U+FFFD for each byte that appendUtf16 would not
/// convert. Throws only std::bad_alloc; part may have been appended then. O(bytes).
ZQPATHS_EXPORT void appendReadable(std::string_view bytes, std::string& text);

}  // namespace zqpaths
