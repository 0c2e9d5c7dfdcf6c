#pragma once
// Pattern is what paths are searched for: a fixed text, a glob or a regular expression.
//
//     const zqpaths::Pattern headers = zqpaths::Pattern::glob("*.hpp");
//     headers.matches("/usr/include/zlib.hpp");  // true
//
// A text may be anywhere in the path. A glob without a separator is matched against the file name
// alone, one with a separator against the whole path, each from beginning to end: * is any text, ?
// one character, [a-c] and [!a-c] one of those, none of them a /; ** is any text with /; a/**/b is
// also a/b; a backslash takes the meaning from what follows it. A regular expression, as RE2
// understands it, may be anywhere in the path; `.` is any character, a newline too.
//
// Characters are those of UTF-8. A path that is not UTF-8, and a pattern that is not, are matched
// byte by byte, so that every path can be matched.
//
// Threads: a pattern never changes; any number of threads may use it.

#include <memory>
#include <string>
#include <string_view>

#include "zqpaths/Export.hpp"

namespace zqpaths {

class ZQPATHS_EXPORT Pattern {
public:
    enum class Case { kRespect, kIgnore };

    /// Throw Error kWrongUse, with the reason, if a pattern is not well formed or too large. RE2
    /// compiles all but texts whose case counts, and is not made for a lack of memory: there is no
    /// going on after one then.
    static Pattern text(std::string_view text, Case letterCase = Case::kRespect);
    static Pattern glob(std::string_view glob, Case letterCase = Case::kRespect);
    static Pattern regex(std::string_view regex, Case letterCase = Case::kRespect);

    Pattern(const Pattern&) noexcept;
    Pattern(Pattern&&) noexcept;
    Pattern& operator=(const Pattern&) noexcept;
    Pattern& operator=(Pattern&&) noexcept;
    ~Pattern();

    /// O(bytes), without allocating.
    bool matches(std::string_view path) const;

private:
    struct Matching;  // what copies share; the search reads it, too
    friend class PatternSearch;

    explicit Pattern(std::shared_ptr<const Matching> matching) noexcept;
    std::shared_ptr<const Matching> matching_;
};

}  // namespace zqpaths
