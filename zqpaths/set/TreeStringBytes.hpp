#pragma once
// The tree string of a set as bytes, as packed segments and exported pieces hold it: UTF-16, the
// lowest byte of each character first.
//
//     std::vector<std::uint8_t> bytes;
//     appendTreeString(u"a\u20AC", bytes);  // 61 00 AC 20
//     treeStringOf(bytes);                  // u"a\u20AC"
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zqpaths {

inline void appendTreeString(std::u16string_view characters, std::vector<std::uint8_t>& bytes) {
    for (const char16_t character : characters) {
        bytes.push_back(static_cast<std::uint8_t>(character & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(character >> 8));
    }
}

/// A byte that is left over is none of a character.
inline std::u16string treeStringOf(std::span<const std::uint8_t> bytes) {
    std::u16string characters;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        characters.push_back(static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8));
    return characters;
}

}  // namespace zqpaths
