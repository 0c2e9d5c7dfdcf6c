#pragma once
// The longest text that a path must hold if it is to match: what coded names are searched for
// before anything is decoded.
//
//     pieceOfText("lib/python3")          // "python3"
//     pieceOfGlob("/usr/**/*.hpp")        // ".hpp", in the file name
//     pieceOfRegex("(a|b)lib[0-9]+ext?")  // "lib"
//
// A piece holds no separator, since components are coded one by one, and is UTF-8. It may be empty:
// then nothing is certain. What a piece says holds for the regular expression of characters and for
// that of bytes.
//
// Threads: free functions without state.

#include <string>
#include <string_view>

namespace zqpaths {

struct LiteralPiece {
    std::string text;
    bool isInName = false;  // in the file name; else it may be in the name of a folder

    bool operator==(const LiteralPiece&) const = default;
};

/// O(bytes), all of them.
LiteralPiece pieceOfText(std::string_view text);
LiteralPiece pieceOfGlob(std::string_view glob);

/// Of a regular expression that RE2 takes. Looks at what stands outside of groups; gives up where
/// alternatives, flags or escapes make that uncertain.
LiteralPiece pieceOfRegex(std::string_view regex);

}  // namespace zqpaths
