#include "tools/zqpaths/output/TerminalCharacters.hpp"

#include <algorithm>
#include <array>

namespace zqpaths::program {
namespace {

constexpr char32_t kFirstOfTwoUnits = 0x10000;

constexpr bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

struct Range {
    char32_t first;
    char32_t last;
};

// The general categories Cc, Zl and Zp and the property Default_Ignorable_Code_Point (The Unicode
// Standard 15.0, DerivedCoreProperties.txt), with the marks of interlinear text between.
constexpr std::array<Range, 19> kNotShown{{{0x0000, 0x001F},
                                           {0x007F, 0x009F},
                                           {0x00AD, 0x00AD},
                                           {0x034F, 0x034F},
                                           {0x061C, 0x061C},
                                           {0x115F, 0x1160},
                                           {0x17B4, 0x17B5},
                                           {0x180B, 0x180F},
                                           {0x200B, 0x200F},
                                           {0x2028, 0x202E},
                                           {0x2060, 0x206F},
                                           {0x3164, 0x3164},
                                           {0xFE00, 0xFE0F},
                                           {0xFEFF, 0xFEFF},
                                           {0xFFA0, 0xFFA0},
                                           {0xFFF0, 0xFFFB},
                                           {0x1BCA0, 0x1BCA3},
                                           {0x1D173, 0x1D17A},
                                           {0xE0000, 0xE0FFF}}};

}  // namespace

bool isShown(char32_t character) noexcept {
    const auto* const range = std::ranges::lower_bound(kNotShown, character, {}, &Range::last);
    return range == kNotShown.end() || character < range->first;
}

std::u16string_view takeCharacter(std::u16string_view& text) noexcept {
    const bool isPair = text.size() > 1 && isHighSurrogate(text[0]) && isLowSurrogate(text[1]);
    const std::u16string_view character = text.substr(0, isPair ? 2 : 1);
    text.remove_prefix(character.size());
    return character;
}

char32_t codeOf(std::u16string_view character) noexcept {
    if (character.size() == 1) return character[0];
    return kFirstOfTwoUnits + ((character[0] - 0xD800U) << 10U) + (character[1] - 0xDC00U);
}

std::size_t shownAsciiPrefix(std::string_view text) noexcept {
    const auto* const end = std::ranges::find_if(
        text, [](char byte) { return byte < ' ' || byte > '~'; });  // from 0x80 on below zero
    return static_cast<std::size_t>(end - text.begin());
}

}  // namespace zqpaths::program
