#pragma once
// PathPattern is what paths are searched for: a glob, a regular expression or a fixed text.
//
//     PathPattern pattern(PatternKind::kGlob, "*.hpp", PathPattern::Case::kRespect);
//     pattern.matches("/usr/include/zlib.hpp");  // true
//
// A glob without a separator is matched against the file name alone, one with a separator against
// the whole path, each from beginning to end; GlobSyntax.hpp tells what it may hold. A regular
// expression, as RE2 understands it, and a fixed text may be anywhere in the path; `.` is any
// character, a newline too.
//
// Characters are those of UTF-8. A path that is not UTF-8, and a pattern that is not, are matched
// byte by byte, so that every path can be matched.
//
// Threads: a pattern may be used by several at a time.

#include <memory>
#include <string>
#include <string_view>

#include "tools/zqpaths/Options.hpp"

namespace re2 {
class RE2;
}

namespace zqpaths {

class PathPattern {
public:
    enum class Case { kRespect, kIgnore };

    /// Throws Failure kFailed, with the reason, if the pattern is not well formed or too large.
    PathPattern(PatternKind kind, const std::string& pattern, Case letterCase);
    PathPattern(PathPattern&&) noexcept;
    PathPattern& operator=(PathPattern&&) noexcept;
    ~PathPattern();

    /// O(bytes), without allocating.
    bool matches(std::string_view path) const;

private:
    bool matchesRegex(std::string_view text) const;

    bool isAboutName_ = false;
    bool isWhole_ = false;                   // matched from beginning to end
    std::string fixedText_;                  // if there are no regular expressions
    std::string literalEnd_;                 // what matches ends with it
    std::unique_ptr<const re2::RE2> text_;   // for what is UTF-8; none if the pattern is not
    std::unique_ptr<const re2::RE2> bytes_;  // for what is not
};

}  // namespace zqpaths
