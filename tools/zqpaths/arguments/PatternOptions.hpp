#pragma once
// What verbs that search are told of the pattern, and the rows of the table for it.

#include <string>
#include <vector>

#include "tools/zqpaths/arguments/Verb.hpp"
#include "zqpaths/Pattern.hpp"

namespace zqpaths::program {

struct PatternOptions {
    std::string pattern;
    bool isRegex = false;  // else a glob, unless it is a text
    bool isText = false;
    bool ignoreCase = false;
};

/// What verbs that search say of patterns.
inline constexpr const char* kPatternDetails =
    "A glob without / is matched against the file name alone, one with / against the whole path, "
    "each from beginning to end. * is any text, ? one character, [a-c] and [!a-c] one of those, "
    "none of them a /. ** is any text with /; a/**/b is also a/b. A backslash takes the meaning "
    "from what follows it. A regular expression (RE2) and a fixed text may be anywhere in the "
    "path. A path that is not UTF-8 is matched byte by byte. Status 1 tells that nothing matches.";

std::vector<Option> patternOptions(PatternOptions& options);

/// Throws Error kWrongUse as Pattern does.
Pattern patternOf(const PatternOptions& options);

}  // namespace zqpaths::program
