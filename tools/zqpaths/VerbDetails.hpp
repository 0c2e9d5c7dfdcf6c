#pragma once
// What a person must know of a verb beyond its options: whole sentences, for help and manual page.

namespace zqpaths {

inline constexpr const char* kNumberDetails =
    "A:B is all numbers from A to B, both included, A:B:STEP each STEP-th of them. Only a STEP "
    "below zero counts down, as in 20:10:-1. Numbers given as arguments are checked before "
    "anything is printed, those on standard input as they come, apart by white space.";

inline constexpr const char* kListDetails =
    "FOLDER counts in whole names and in any number of separators. PATTERN is one as 'find' takes. "
    "The set's own walk leaves out a path that has others below it.";

inline constexpr const char* kPatternDetails =
    "A glob without / is matched against the file name alone, one with / against the whole path, "
    "each from beginning to end. * is any text, ? one character, [a-c] and [!a-c] one of those, "
    "none of them a /. ** is any text with /; a/**/b is also a/b. A backslash takes the meaning "
    "from what follows it. A regular expression (RE2) and a fixed text may be anywhere in the "
    "path. A path that is not UTF-8 is matched byte by byte. Status 1 tells that nothing matches.";

inline constexpr const char* kNumberOfDetails =
    "A path that occurs more than once has its first number printed. Status 1 tells that a path "
    "is not there; the numbers of the others are printed.";

inline constexpr const char* kDiffDetails =
    "Paths only in A follow '< ', then paths only in B follow '> ', each once and in the order of "
    "numbers; order does not make sets differ. Status 1 tells that there are any.";

}  // namespace zqpaths
