#pragma once
// ExclusionPattern is one pattern as a line of gitignore has it, taken apart:
//
//     const ExclusionPattern pattern = parseExclusion("!build/*.o");
//     pattern.isNegative;  // true: what it matches is taken after all
//     pattern.regex;       // for RE2: paths from the root on, byte by byte, as a whole
//
// The rules are those that gitignore's manual page gives. `*` is any text, `?` one byte and
// `[a-c]`,
// `[!a-c]` and `[[:alpha:]]` one of those, none of them a separator; a backslash takes the meaning
// from what follows it. `**` that stands alone between separators, or at an end, is any
// directories:
//
//     a.txt  build/      at any depth; the second only directories
//     /a.txt  docs/*.o   from the root on: a separator that is not the last one ties a pattern
//     **/a  a/**  a/**/b at any depth; all that is in a; a/b, a/x/b, a/x/y/b
//
// A pattern that is not whole, with a bracket that stays open or a backslash at its end, matches
// nothing.
//
// Threads: free functions without state.

#include <string>
#include <string_view>
#include <vector>

namespace zqpaths {

struct ExclusionPattern {
    std::string regex;  // in Latin-1, so that a character of it is a byte; empty if nothing matches
    bool isNegative;
    bool isForDirectories;  // alone
};

/// O(bytes).
ExclusionPattern parseExclusion(std::string_view pattern);

}  // namespace zqpaths
