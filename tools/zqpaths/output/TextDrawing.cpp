#include "tools/zqpaths/output/TextDrawing.hpp"

#include <algorithm>
#include <array>
#include <clocale>
#include <cmath>
#include <cwchar>

#include "tools/zqpaths/output/Figures.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths::program {
namespace {

constexpr unsigned kEighths = 8;
constexpr std::array<const char*, kEighths> kPartBlocks{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
constexpr const char* kWholeBlock = "█";
constexpr const char* kBarColour = "36";

/// The thread's locale while it lives is one of UTF-8, whatever the environment says: wcwidth knows
/// no character of the others.
class Utf8Locale {
public:
    Utf8Locale()
        : locale_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)), former_(uselocale(locale_)) {}
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;
    ~Utf8Locale() {
        uselocale(former_);
        if (locale_ != nullptr) freelocale(locale_);
    }

    /// One cell for what it does not know.
    static std::size_t cellsOf(char32_t character) {
        const int cells = ::wcwidth(static_cast<wchar_t>(character));
        return cells < 0 ? 1 : static_cast<std::size_t>(cells);
    }

private:
    locale_t locale_;
    locale_t former_;
};

/// The character at the front of `units`, which is removed.
char32_t takeCodePoint(std::u16string_view& units) {
    constexpr char16_t kFirstHigh = 0xD800;
    constexpr char16_t kFirstLow = 0xDC00;
    constexpr char32_t kFirstOfPairs = 0x10000;
    const char16_t unit = units.front();
    units.remove_prefix(1);
    if (unit < kFirstHigh || unit >= kFirstLow || units.empty()) return unit;
    const char16_t low = units.front();
    units.remove_prefix(1);
    return kFirstOfPairs + (static_cast<char32_t>(unit - kFirstHigh) << 10U) + (low - kFirstLow);
}

}  // namespace

std::string leftAligned(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string rightAligned(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string percent(std::uint64_t part, std::uint64_t whole) {
    return fixedPoint(100 * ratio(part, whole), 1) + " %";
}

double ratio(double part, double whole) {
    return whole > 0 ? part / whole : 0;
}

double ratio(std::uint64_t part, std::uint64_t whole) {
    return ratio(static_cast<double>(part), static_cast<double>(whole));
}

std::string bar(double share, std::size_t width, const DrawingStyle& style) {
    const unsigned steps = style.hasBlocks ? kEighths : 1;
    const auto filled = static_cast<std::size_t>(
        std::lround(std::clamp(share, 0.0, 1.0) * static_cast<double>(width * steps)));
    const std::size_t whole = filled / steps;
    const std::size_t part = filled % steps;
    std::string text;
    for (std::size_t i = 0; i < whole; ++i) text += style.hasBlocks ? kWholeBlock : "#";
    text += kPartBlocks[part];
    return coloured(text, kBarColour, style) + std::string(width - whole - (part > 0 ? 1 : 0), ' ');
}

std::string coloured(std::string_view text, std::string_view colour, const DrawingStyle& style) {
    if (!style.hasColours || colour.empty() || text.empty()) return std::string(text);
    return std::string("\x1b[").append(colour).append("m").append(text).append("\x1b[0m");
}

std::size_t cellsOf(std::string_view text) {
    const Utf8Locale locale;
    std::u16string units;
    appendUtf16(text, units);
    std::size_t cells = 0;
    for (std::u16string_view rest = units; !rest.empty();)
        cells += Utf8Locale::cellsOf(takeCodePoint(rest));
    return cells;
}

std::string cutToCells(std::string_view text, std::size_t width, const DrawingStyle& style) {
    const std::string_view mark = style.hasBlocks ? "…" : "...";
    const std::size_t markCells = style.hasBlocks ? 1 : mark.size();
    if (cellsOf(text) <= width) return std::string(text);
    if (width < markCells) return leftAligned("", width);
    const Utf8Locale locale;
    std::u16string units;
    appendUtf16(text, units);
    std::u16string_view rest = units;
    std::size_t kept = 0;
    for (std::size_t cells = 0; !rest.empty(); kept = units.size() - rest.size()) {
        cells += Utf8Locale::cellsOf(takeCodePoint(rest));
        if (cells + markCells > width) break;
    }
    std::string cut;
    appendBytes(std::u16string_view(units).substr(0, kept), cut);
    return cut.append(mark);
}

}  // namespace zqpaths::program
