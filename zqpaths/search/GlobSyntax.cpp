#include "zqpaths/search/GlobSyntax.hpp"

#include <re2/re2.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

constexpr std::string_view kSpecial = "*?[]\\";
constexpr std::string_view kAnyFolders = "(?:.*/)?";

bool isAsciiPunctuation(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte > 0x20 && byte < 0x7F && !((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z') &&
           !(byte >= '0' && byte <= '9');
}

/// Translates a glob from front to back.
class Translation {
public:
    explicit Translation(std::string_view glob) : rest_(glob) {}

    void run() {
        while (!rest_.empty()) step();
    }
    const std::string& regex() const noexcept { return regex_; }
    std::vector<GlobPiece> pieces() && {
        for (std::size_t i = 0; i < piecesInFolders_; ++i) pieces_[i].isInName = false;
        return std::move(pieces_);
    }

private:
    void step() {
        if (rest_.starts_with("**")) {
            anyFolders();
        } else if (take("*")) {
            regex_ += "[^/]*";
            isPieceOpen_ = false;
        } else if (take("?")) {
            regex_ += "[^/]";
            isPieceOpen_ = false;
        } else if (!rest_.starts_with("[") || !oneOf()) {
            literal();
        }
    }

    void anyFolders() {
        const bool isAfterSeparator =
            regex_.empty() || regex_.back() == kSeparator || regex_.ends_with(kAnyFolders);
        while (take("*")) continue;
        regex_ += isAfterSeparator && take("/") ? kAnyFolders : ".*";
        crossFolder();
    }

    /// A set of characters, in brackets; false, and nothing is taken, if they are not closed.
    bool oneOf() {
        const std::string_view before = rest_;
        take("[");
        std::string members;
        const bool isNegative = take("!") || take("^");
        if (take("]")) members += "\\]";
        while (!rest_.starts_with("]")) {
            if (rest_.empty()) {
                rest_ = before;
                return false;
            }
            members += member();
        }
        take("]");
        isPieceOpen_ = false;
        if (!isNegative) crossFolder();  // a separator may be among them
        // Also what is not among some characters is no separator.
        regex_ += isNegative ? "[^/" + members + "]" : "[" + members + "]";
        return true;
    }

    /// What stands for the next thing between brackets.
    std::string member() {
        if (rest_.starts_with("[:")) {
            const std::size_t end = rest_.find(":]");
            if (end != std::string_view::npos) return std::string(takeBytes(end + 2));
        }
        if (take("-")) return "-";
        if (rest_.size() > 1) take("\\");
        return escaped(takeBytes(1).front());
    }

    static std::string escaped(char character) {
        std::string text(isAsciiPunctuation(character) ? 1 : 0, '\\');
        text.push_back(character);
        return text;
    }

    void literal() {
        if (rest_.size() > 1) take("\\");
        // The first byte may be a special one that stands for itself.
        const std::size_t end = std::min(rest_.find_first_of(kSpecial, 1), rest_.size());
        const std::string_view text = takeBytes(end);
        regex_ += RE2::QuoteMeta({text.data(), text.size()});
        for (const char character : text) noteLiteral(character);
    }

    void noteLiteral(char character) {
        if (character == kSeparator) return crossFolder();
        if (!isPieceOpen_) pieces_.push_back({"", true});
        isPieceOpen_ = true;
        pieces_.back().text.push_back(character);
    }

    /// What has been met so far may be in a folder.
    void crossFolder() {
        isPieceOpen_ = false;
        piecesInFolders_ = pieces_.size();
    }

    bool take(std::string_view text) {
        if (!rest_.starts_with(text)) return false;
        rest_.remove_prefix(text.size());
        return true;
    }

    std::string_view takeBytes(std::size_t count) {
        const std::string_view text = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return text;
    }

    std::string_view rest_;
    std::string regex_;
    std::vector<GlobPiece> pieces_;
    bool isPieceOpen_ = false;         // the last one goes on
    std::size_t piecesInFolders_ = 0;  // those that a separator may follow
};

}  // namespace

std::string globRegex(std::string_view glob) {
    Translation translation(glob);
    translation.run();
    return translation.regex();
}

std::vector<GlobPiece> literalPieces(std::string_view glob) {
    Translation translation(glob);
    translation.run();
    std::vector<GlobPiece> pieces = std::move(translation).pieces();
    for (GlobPiece& piece : pieces) piece.isInName = piece.isInName || !isAboutPaths(glob);
    return pieces;
}

bool isAboutPaths(std::string_view glob) {
    return glob.find(kSeparator) != std::string_view::npos;
}

std::string literalEnd(std::string_view glob) {
    const std::size_t last = glob.find_last_of(kSpecial);
    if (last == std::string_view::npos) return std::string(glob);
    std::string_view end = glob.substr(last + 1);
    // "**/" may be nothing.
    if (end.starts_with(kSeparator)) end.remove_prefix(1);
    return std::string(end);
}

}  // namespace zqpaths
