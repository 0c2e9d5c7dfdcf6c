#include "zqpaths/search/LiteralPieces.hpp"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "zqpaths/search/GlobSyntax.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

bool isAsciiLetterOrDigit(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte >= '0' && byte <= '9') || ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z');
}

/// Keeps the longest of the texts that stand between separators and other breaks.
class LongestText {
public:
    void append(char character) {
        if (character == kSeparator) return end();
        current_.push_back(character);
    }
    void end() {
        if (current_.size() > longest_.size()) longest_ = current_;
        current_.clear();
    }
    /// The last character may not be there after all.
    void endBeforeLast() {
        while (!current_.empty()) {
            const auto byte = static_cast<unsigned char>(current_.back());
            current_.pop_back();
            if ((byte & 0xC0) != 0x80) break;  // it began the character
        }
        end();
    }
    std::string take() {
        end();
        return std::move(longest_);
    }

private:
    std::string current_;
    std::string longest_;
};

/// Reads a regular expression as far as it is plain what it says.
class RegexReader {
public:
    explicit RegexReader(std::string_view regex) : rest_(regex) {}

    std::string piece() {
        while (!rest_.empty())
            if (!step()) return "";
        return texts_.take();
    }

private:
    /// False if nothing is certain about the whole any more.
    bool step() {
        const char character = takeOne();
        switch (character) {
            case '|':
                return false;
            case '\\':
                return escape();
            case '(':
                texts_.end();
                return skipGroup();
            case '[':
                texts_.end();
                return skipSet();
            case '.':
            case '^':
            case '$':
            case '+':
                texts_.end();
                return true;
            case '?':
            case '*':
                texts_.endBeforeLast();
                return true;
            case '{':
                texts_.endBeforeLast();
                skipCounts();
                return true;
            default:
                texts_.append(character);
                return true;
        }
    }

    /// What follows a backslash: a character for itself, or one letter that stands for others. Of
    /// longer ones, as \x2F, \pL or \Q...\E, it is not known where they end.
    bool escape() {
        constexpr std::string_view kOneLetter = "dDsSwWbBAznrtfva";
        if (rest_.empty()) return false;
        const char character = takeOne();
        if (!isAsciiLetterOrDigit(character)) {
            texts_.append(character);
            return isAscii(character);
        }
        texts_.end();
        return kOneLetter.find(character) != kNone;
    }

    /// Goes past a group. Flags may say that letters match in either case.
    bool skipGroup() {
        if (rest_.starts_with("?") && !rest_.starts_with("?:") && !rest_.starts_with("?P<"))
            return false;
        for (std::size_t open = 1; open > 0;) {
            if (rest_.empty()) return false;
            const char character = takeOne();
            if (character == '(') ++open;
            if (character == ')') --open;
            if (character == '[' && !skipSet()) return false;
            if (character == '\\' && !skipEscape()) return false;
        }
        return true;
    }

    /// Goes past a set of characters, which a bracket has begun.
    bool skipSet() {
        if (rest_.starts_with("^")) takeOne();
        if (rest_.starts_with("]")) takeOne();
        while (!rest_.empty()) {
            if (rest_.starts_with("[:")) {
                const std::size_t end = rest_.find(":]");
                if (end != kNone) {
                    rest_.remove_prefix(end + 2);
                    continue;
                }
            }
            const char character = takeOne();
            if (character == ']') return true;
            if (character == '\\' && !skipEscape()) return false;
        }
        return false;
    }

    /// Goes past the first character after a backslash. A quoted text may hold anything.
    bool skipEscape() { return !rest_.empty() && takeOne() != 'Q'; }

    /// Goes past "2,3}", how often something is repeated; if it is none, a brace stands for itself.
    void skipCounts() {
        const std::size_t end = rest_.find_first_not_of("0123456789,");
        if (end != 0 && end != kNone && rest_[end] == '}') rest_.remove_prefix(end + 1);
    }

    char takeOne() {
        const char character = rest_.front();
        rest_.remove_prefix(1);
        return character;
    }

    std::string_view rest_;
    LongestText texts_;
};

}  // namespace

LiteralPiece pieceOfText(std::string_view text) {
    if (!isUtf8(text)) return {};
    LongestText texts;
    for (const char character : text) texts.append(character);
    return {texts.take()};
}

LiteralPiece pieceOfGlob(std::string_view glob) {
    if (!isUtf8(glob)) return {};
    LiteralPiece longest;
    for (GlobPiece& piece : literalPieces(glob)) {
        // Of two that are as long, one in the file name has fewer places to be in.
        const bool isBetter = piece.text.size() > longest.text.size() ||
                              (piece.text.size() == longest.text.size() && piece.isInName);
        if (isBetter) longest = {std::move(piece.text), piece.isInName};
    }
    return longest;
}

LiteralPiece pieceOfRegex(std::string_view regex) {
    if (!isUtf8(regex)) return {};
    return {RegexReader(regex).piece()};
}

}  // namespace zqpaths
