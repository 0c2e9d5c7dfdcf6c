#include "zqpaths/exclusion/ExclusionPattern.hpp"

#include <algorithm>
#include <array>
#include <bitset>
#include <cctype>
#include <cstddef>
#include <optional>
#include <utility>

#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

using Bytes = std::bitset<256>;

constexpr std::string_view kAnyDirectories = "(?:.*/)?";

std::string hexEscape(unsigned byte) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    return {'\\', 'x', kDigits[byte / 16], kDigits[byte % 16]};
}

std::string literal(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return std::isalnum(byte) != 0 && byte < 0x80 ? std::string(1, character) : hexEscape(byte);
}

/// The bytes of a class like "alpha", of ASCII alone; nothing if there is none of this name.
std::optional<Bytes> namedClass(std::string_view name) {
    struct Named {
        std::string_view name;
        int (*isIn)(int);
    };
    static constexpr std::array<Named, 12> kClasses{{{"alnum", std::isalnum},
                                                     {"alpha", std::isalpha},
                                                     {"blank", std::isblank},
                                                     {"cntrl", std::iscntrl},
                                                     {"digit", std::isdigit},
                                                     {"graph", std::isgraph},
                                                     {"lower", std::islower},
                                                     {"print", std::isprint},
                                                     {"punct", std::ispunct},
                                                     {"space", std::isspace},
                                                     {"upper", std::isupper},
                                                     {"xdigit", std::isxdigit}}};
    const auto* const found = std::ranges::find(kClasses, name, &Named::name);
    if (found == kClasses.end()) return std::nullopt;
    Bytes bytes;
    for (int byte = 0; byte < 0x80; ++byte)
        bytes.set(static_cast<std::size_t>(byte), found->isIn(byte) != 0);
    return bytes;
}

/// Reads what stands between brackets, after the first of them.
class BracketReader {
public:
    explicit BracketReader(std::string_view& rest) : rest_(rest) {}

    /// The bytes that are meant; nothing if the bracket is not whole. Takes the second one, too.
    std::optional<Bytes> read() {
        const bool isNegative = rest_.starts_with('!') || rest_.starts_with('^');
        if (isNegative) rest_.remove_prefix(1);
        // A bracket at the very front stands for itself.
        bool isFirst = true;
        while (isFirst || !rest_.starts_with(']')) {
            if (rest_.empty() || !readMember()) return std::nullopt;
            isFirst = false;
        }
        rest_.remove_prefix(1);
        if (isNegative) bytes_.flip();
        bytes_.reset(static_cast<unsigned char>(kSeparator));
        return bytes_;
    }

private:
    bool readMember() {
        if (rest_.starts_with("[:")) {
            const std::size_t end = rest_.find(']', 2);
            if (end == std::string_view::npos) return false;
            if (end > 2 && rest_[end - 1] == ':') return addClass(end);
        }
        const bool mayBeRange = previous_ && rest_.size() > 1 && rest_[1] != ']';
        if (mayBeRange && rest_.starts_with('-')) {
            rest_.remove_prefix(1);
            return addRange();
        }
        previous_ = takeByte();
        if (previous_) bytes_.set(*previous_);
        return previous_.has_value();
    }

    /// A class whose last bracket is at `end`.
    bool addClass(std::size_t end) {
        const std::optional<Bytes> named = namedClass(rest_.substr(2, end - 3));
        if (!named) return false;
        bytes_ |= *named;
        rest_.remove_prefix(end + 1);
        previous_.reset();
        return true;
    }

    bool addRange() {
        const std::optional<std::size_t> last = takeByte();
        if (!last) return false;
        for (std::size_t byte = *previous_; byte <= *last; ++byte) bytes_.set(byte);
        previous_.reset();
        return true;
    }

    /// The next byte, which a backslash may stand before; nothing at the end.
    std::optional<std::size_t> takeByte() {
        if (rest_.starts_with('\\')) rest_.remove_prefix(1);
        if (rest_.empty()) return std::nullopt;
        const auto byte = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return byte;
    }

    std::string_view& rest_;
    Bytes bytes_;
    std::optional<std::size_t> previous_;  // a byte that a range can begin with
};

std::string bracketRegex(const Bytes& bytes) {
    std::string members;
    for (unsigned byte = 0; byte < bytes.size(); ++byte)
        if (bytes.test(byte)) members += hexEscape(byte);
    return members.empty() ? "" : '[' + members + ']';
}

/// The regular expression of a pattern without marks at its ends; empty if nothing matches.
class Translation {
public:
    explicit Translation(std::string_view pattern) : rest_(pattern) {}

    std::string run() {
        bool isWhole = !rest_.empty();
        while (isWhole && !rest_.empty()) isWhole = step();
        return isWhole ? std::move(regex_) : std::string();
    }

private:
    bool step() {
        const char character = rest_.front();
        if (character == '*') return stars();
        const bool isAtComponent = character == kSeparator;
        rest_.remove_prefix(1);
        isAtComponent_ = isAtComponent;
        if (character == '?') return append("[^/]");
        if (character == '[') return bracket();
        if (character != '\\') return append(literal(character));
        if (rest_.empty()) return false;
        isAtComponent_ = rest_.front() == kSeparator;
        const bool isTaken = append(literal(rest_.front()));
        rest_.remove_prefix(1);
        return isTaken;
    }

    bool stars() {
        const std::size_t count = std::min(rest_.find_first_not_of('*'), rest_.size());
        rest_.remove_prefix(count);
        const bool isAtEnd =
            rest_.empty() || rest_.starts_with(kSeparator) || rest_.starts_with("\\/");
        const bool isAnyDirectories = count > 1 && isAtComponent_ && isAtEnd;
        isAtComponent_ = false;
        if (!isAnyDirectories) return append("[^/]*");
        if (!rest_.starts_with(kSeparator)) return append(".*");
        rest_.remove_prefix(1);
        isAtComponent_ = true;
        return append(kAnyDirectories);
    }

    bool bracket() {
        const std::optional<Bytes> bytes = BracketReader(rest_).read();
        const std::string regex = bytes ? bracketRegex(*bytes) : "";
        return !regex.empty() && append(regex);
    }

    bool append(std::string_view regex) {
        regex_ += regex;
        return true;
    }

    std::string_view rest_;
    std::string regex_;
    bool isAtComponent_ = true;  // the pattern begins here, or after a separator
};

bool takeFront(std::string_view& text, char character) {
    if (!text.starts_with(character)) return false;
    text.remove_prefix(1);
    return true;
}

}  // namespace

ExclusionPattern parseExclusion(std::string_view pattern) {
    ExclusionPattern parsed{};
    parsed.isNegative = takeFront(pattern, '!');
    parsed.isForDirectories = pattern.ends_with(kSeparator);
    if (parsed.isForDirectories) pattern.remove_suffix(1);

    const bool isTied = pattern.find(kSeparator) != std::string_view::npos;
    takeFront(pattern, kSeparator);
    parsed.regex = Translation(pattern).run();
    if (!isTied && !parsed.regex.empty()) parsed.regex.insert(0, kAnyDirectories);
    return parsed;
}

}  // namespace zqpaths
