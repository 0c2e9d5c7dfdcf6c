#include "tools/zqpaths/GlobSyntax.hpp"

#include <re2/re2.h>

#include <algorithm>
#include <cstddef>

#include "tools/zqpaths/PathComponents.hpp"

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

    std::string run() {
        while (!rest_.empty()) step();
        return regex_;
    }

private:
    void step() {
        if (rest_.starts_with("**")) {
            anyFolders();
        } else if (take("*")) {
            regex_ += "[^/]*";
        } else if (take("?")) {
            regex_ += "[^/]";
        } else if (!rest_.starts_with("[") || !oneOf()) {
            literal();
        }
    }

    void anyFolders() {
        const bool isAfterSeparator =
            regex_.empty() || regex_.back() == kSeparator || regex_.ends_with(kAnyFolders);
        while (take("*")) continue;
        regex_ += isAfterSeparator && take("/") ? kAnyFolders : ".*";
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
};

}  // namespace

std::string globRegex(std::string_view glob) {
    return Translation(glob).run();
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
