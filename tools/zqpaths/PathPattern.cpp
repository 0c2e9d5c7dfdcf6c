#include "tools/zqpaths/PathPattern.hpp"

#include <re2/re2.h>

#include <cstring>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/GlobSyntax.hpp"
#include "tools/zqpaths/PathComponents.hpp"
#include "tools/zqpaths/PathText.hpp"

namespace zqpaths {
namespace {

/// The file name without the separators behind it.
std::string_view plainName(std::string_view path) {
    std::string_view name = path.substr(folderLength(path));
    while (name.size() > 1 && name.back() == kSeparator) name.remove_suffix(1);
    return name;
}

bool occurs(const std::string& needle, std::string_view text) {
    return memmem(text.data(), text.size(), needle.data(), needle.size()) != nullptr;
}

std::unique_ptr<const RE2> compile(const std::string& regex, RE2::Options::Encoding encoding,
                                   PathPattern::Case letterCase, const std::string& pattern) {
    RE2::Options options;
    options.set_encoding(encoding);
    options.set_case_sensitive(letterCase == PathPattern::Case::kRespect);
    options.set_dot_nl(true);
    options.set_never_capture(true);
    options.set_log_errors(false);
    auto compiled = std::make_unique<const RE2>(regex, options);
    if (!compiled->ok()) throw failureAt("pattern " + pattern, compiled->error());
    return compiled;
}

}  // namespace

PathPattern::PathPattern(PatternKind kind, const std::string& pattern, Case letterCase) {
    if (kind == PatternKind::kFixed && letterCase == Case::kRespect) {
        fixedText_ = pattern;
        return;
    }
    std::string regex = pattern;
    if (kind == PatternKind::kFixed) {
        regex = RE2::QuoteMeta(pattern);
    } else if (kind == PatternKind::kGlob) {
        regex = globRegex(pattern);
        isAboutName_ = !isAboutPaths(pattern);
        isWhole_ = true;
        if (letterCase == Case::kRespect) literalEnd_ = literalEnd(pattern);
    }
    if (isUtf8(pattern)) text_ = compile(regex, RE2::Options::EncodingUTF8, letterCase, pattern);
    bytes_ = compile(regex, RE2::Options::EncodingLatin1, letterCase, pattern);
}

PathPattern::PathPattern(PathPattern&&) noexcept = default;
PathPattern& PathPattern::operator=(PathPattern&&) noexcept = default;
PathPattern::~PathPattern() = default;

bool PathPattern::matches(std::string_view path) const {
    const std::string_view subject = isAboutName_ ? plainName(path) : path;
    if (bytes_ == nullptr) return occurs(fixedText_, subject);
    return subject.ends_with(literalEnd_) && matchesRegex(subject);
}

bool PathPattern::matchesRegex(std::string_view text) const {
    const RE2& regex = text_ != nullptr && isUtf8(text) ? *text_ : *bytes_;
    const RE2::Anchor anchor = isWhole_ ? RE2::ANCHOR_BOTH : RE2::UNANCHORED;
    return regex.Match({text.data(), text.size()}, 0, text.size(), anchor, nullptr, 0);
}

}  // namespace zqpaths
