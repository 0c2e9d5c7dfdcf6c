#include "tools/zqpaths/output/PrintablePath.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "tools/zqpaths/output/TerminalCharacters.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kMaxCharacters = 160;  // of a path that is written out in full
constexpr char32_t kLastOfFourDigits = 0xFFFF;

void appendEscape(const char* format, std::uint32_t code, std::string& out) {
    std::array<char, 11> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), format, code));
    out += text.data();
}

void appendCharacter(std::u16string_view character, Charset charset, std::string& out) {
    const char32_t code = codeOf(character);
    const bool isByte = code >= 0xDC80 && code <= 0xDCFF;
    if (code == U'\\') {
        out += "\\\\";
    } else if (isByte || (code < kFirstNotAscii && !isShown(code))) {
        appendEscape("\\x%02X", code & 0xFFU, out);
    } else if (!isShown(code)) {
        appendEscape(code <= kLastOfFourDigits ? "\\u%04X" : "\\U%08X", code, out);
    } else if (code >= kFirstNotAscii && charset == Charset::kAscii) {
        std::string bytes;
        appendBytes(character, bytes);
        for (const char byte : bytes)
            appendEscape("\\x%02X", static_cast<unsigned char>(byte), out);
    } else {
        appendBytes(character, out);
    }
}

/// Calls `visit(character)` for the one or two units of each character.
template <class Visit>
void forEachCharacter(std::string_view bytes, Visit visit) {
    std::u16string text;
    appendUtf16(bytes, text);
    for (std::u16string_view rest = text; !rest.empty();) visit(takeCharacter(rest));
}

}  // namespace

void appendPrintable(std::string_view text, Charset charset, std::string& out) {
    const std::size_t plain = std::min(shownAsciiPrefix(text), text.find('\\'));
    out += text.substr(0, plain);
    forEachCharacter(text.substr(plain), [charset, &out](std::u16string_view character) {
        appendCharacter(character, charset, out);
    });
}

std::string printablePath(std::string_view path) {
    std::string out;
    std::vector<std::size_t> ends;  // of what stands for each character
    const Charset charset = charsetOf(STDERR_FILENO);
    forEachCharacter(path, [&](std::u16string_view character) {
        appendCharacter(character, charset, out);
        ends.push_back(out.size());
    });
    if (ends.size() <= kMaxCharacters) return out;

    const std::size_t leftOut = ends.size() - kMaxCharacters;
    const std::size_t begin = ends[kMaxCharacters / 2 - 1];
    const std::size_t end = ends[kMaxCharacters / 2 - 1 + leftOut];
    return out.replace(begin, end - begin, " ... " + std::to_string(leftOut) + " characters ... ");
}

std::string printableText(std::string_view text) {
    std::string out;
    appendPrintable(text, charsetOf(STDERR_FILENO), out);
    return out;
}

}  // namespace zqpaths::program
