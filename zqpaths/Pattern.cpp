#include "zqpaths/Pattern.hpp"

#include <re2/re2.h>

#include <cstring>
#include <utility>

#include "zqpaths/Error.hpp"
#include "zqpaths/search/GlobSyntax.hpp"
#include "zqpaths/search/PatternMatching.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

/// The file name without the separators that follow it.
std::string_view plainName(std::string_view path) {
    std::string_view name = path.substr(folderLength(path));
    while (name.size() > 1 && name.back() == kSeparator) name.remove_suffix(1);
    return name;
}

bool occurs(const std::string& needle, std::string_view text) {
    return memmem(text.data(), text.size(), needle.data(), needle.size()) != nullptr;
}

std::unique_ptr<const RE2> compiled(std::string_view pattern, const std::string& regex,
                                    RE2::Options::Encoding encoding, Pattern::Case letterCase) {
    RE2::Options options;
    options.set_encoding(encoding);
    options.set_case_sensitive(letterCase == Pattern::Case::kRespect);
    options.set_dot_nl(true);
    options.set_never_capture(true);
    options.set_log_errors(false);
    auto made = std::make_unique<const RE2>(regex, options);
    if (!made->ok())
        throw Error(ErrorKind::kWrongUse, "pattern " + std::string(pattern), made->error());
    return made;
}

}  // namespace

void Pattern::Matching::compile(std::string_view pattern, const std::string& regex,
                                Case letterCase) {
    if (isUtf8(pattern)) text = compiled(pattern, regex, RE2::Options::EncodingUTF8, letterCase);
    bytes = compiled(pattern, regex, RE2::Options::EncodingLatin1, letterCase);
}

bool Pattern::Matching::matches(std::string_view path) const {
    const std::string_view subject = isAboutName ? plainName(path) : path;
    if (fixedText) return occurs(*fixedText, subject);
    if (!subject.ends_with(literalEnd)) return false;
    const RE2& regex = text != nullptr && isUtf8(subject) ? *text : *bytes;
    const RE2::Anchor anchor = isWhole ? RE2::ANCHOR_BOTH : RE2::UNANCHORED;
    return regex.Match({subject.data(), subject.size()}, 0, subject.size(), anchor, nullptr, 0);
}

Pattern Pattern::text(std::string_view text, Case letterCase) {
    auto matching = std::make_shared<Matching>();
    if (letterCase == Case::kRespect) {
        matching->fixedText = text;
        matching->piece = pieceOfText(text);
    } else {
        matching->compile(text, RE2::QuoteMeta({text.data(), text.size()}), letterCase);
    }
    return Pattern(std::move(matching));
}

Pattern Pattern::glob(std::string_view glob, Case letterCase) {
    auto matching = std::make_shared<Matching>();
    matching->isAboutName = !isAboutPaths(glob);
    matching->isWhole = true;
    matching->compile(glob, globRegex(glob), letterCase);
    if (letterCase == Case::kRespect) {
        matching->literalEnd = literalEnd(glob);
        matching->piece = pieceOfGlob(glob);
    }
    return Pattern(std::move(matching));
}

Pattern Pattern::regex(std::string_view regex, Case letterCase) {
    auto matching = std::make_shared<Matching>();
    matching->compile(regex, std::string(regex), letterCase);
    if (letterCase == Case::kRespect) matching->piece = pieceOfRegex(regex);
    return Pattern(std::move(matching));
}

Pattern::Pattern(std::shared_ptr<const Matching> matching) noexcept
    : matching_(std::move(matching)) {}
Pattern::Pattern(const Pattern&) noexcept = default;
Pattern::Pattern(Pattern&&) noexcept = default;
Pattern& Pattern::operator=(const Pattern&) noexcept = default;
Pattern& Pattern::operator=(Pattern&&) noexcept = default;
Pattern::~Pattern() = default;

bool Pattern::matches(std::string_view path) const {
    return matching_->matches(path);
}

}  // namespace zqpaths
