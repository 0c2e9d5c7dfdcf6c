#include "tools/zqpaths/output/PrintablePath.hpp"

#include <array>
#include <cstddef>
#include <cstdio>
#include <vector>

#include "zqpaths/text/PathText.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kMaxCharacters = 160;  // of a path that is written out in full

std::string escapedByte(unsigned byte) {
    std::array<char, 5> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "\\x%02X", byte & 0xFFU));
    return text.data();
}

/// What stands for the character at the front of `text`, which is removed.
std::string takeCharacter(std::u16string_view& text) {
    const char16_t unit = text.front();
    const bool isPair = unit >= 0xD800 && unit <= 0xDBFF;
    const std::u16string_view character = text.substr(0, isPair ? 2 : 1);
    text.remove_prefix(character.size());

    const bool isControl = unit < 0x20 || unit == 0x7F;
    const bool isByte = unit >= 0xDC80 && unit <= 0xDCFF;
    if (isControl || isByte) return escapedByte(unit);
    if (unit == u'\\') return "\\\\";
    std::string bytes;
    appendBytes(character, bytes);
    // The control characters from U+0080 on, of which some terminals take the first one for ESC [.
    if (unit >= 0x80 && unit < 0xA0) return escapedByte(0xC2) + escapedByte(unit);
    return bytes;
}

/// What stands for the characters of a text, one by one.
std::vector<std::string> printableCharacters(std::string_view bytes) {
    std::u16string text;
    appendUtf16(bytes, text);
    std::vector<std::string> characters;
    for (std::u16string_view rest = text; !rest.empty();) characters.push_back(takeCharacter(rest));
    return characters;
}

}  // namespace

std::string printablePath(std::string_view path) {
    const std::vector<std::string> characters = printableCharacters(path);
    std::string out;
    const bool isLong = characters.size() > kMaxCharacters;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        if (isLong && i == kMaxCharacters / 2) {
            const std::size_t leftOut = characters.size() - kMaxCharacters;
            out.append(" ... ").append(std::to_string(leftOut)).append(" characters ... ");
            i += leftOut;
        }
        out += characters[i];
    }
    return out;
}

std::string printableText(std::string_view text) {
    std::string out;
    for (const std::string& character : printableCharacters(text)) out += character;
    return out;
}

}  // namespace zqpaths::program
