#pragma once
// Globs as regular expressions:
//
//     globRegex("*.[ch]")    // "[^/]*\.[ch]"
//     globRegex("src/**/x")  // "src\/(?:.*/)?x"
//
// `*` is any text, `?` one character, `[a-c]`, `[!a-c]` and `[[:alpha:]]` one of those; none of
// them is a separator. `**` is any text with separators; between two separators it may also be
// nothing, together with one of them. A backslash takes the meaning from what follows it; a bracket
// that is not closed stands for itself.
//
// Threads: free functions without state.

#include <string>
#include <string_view>
#include <vector>

namespace zqpaths {

/// The regular expression, for RE2, that matches as a whole what the glob matches. O(bytes).
std::string globRegex(std::string_view glob);

/// Whether the glob is about whole paths: it has a separator. Others are about file names.
bool isAboutPaths(std::string_view glob);

/// A text without a separator that is in whatever the glob matches.
struct GlobPiece {
    std::string text;
    bool isInName;  // it is in the file name; others may be in that of a folder
};

/// The pieces of a glob, in their order. O(bytes).
std::vector<GlobPiece> literalPieces(std::string_view glob);

/// The bytes that end whatever the glob matches, as far as they are plain to see. O(bytes).
std::string literalEnd(std::string_view glob);

}  // namespace zqpaths
