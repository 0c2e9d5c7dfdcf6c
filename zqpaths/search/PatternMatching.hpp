#pragma once
// What a pattern is made of, once it has been understood. Copies of a Pattern share it.
//
// Threads: never changes; any number of threads may read it.

#include <re2/re2.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "zqpaths/Pattern.hpp"
#include "zqpaths/search/LiteralPieces.hpp"

namespace zqpaths {

struct Pattern::Matching {
    bool isAboutName = false;
    bool isWhole = false;                   // matched from beginning to end
    std::optional<std::string> fixedText;   // then there are no regular expressions
    std::string literalEnd;                 // what matches ends with it
    LiteralPiece piece;                     // what matches holds it
    std::unique_ptr<const re2::RE2> text;   // for what is UTF-8; none if the pattern is not
    std::unique_ptr<const re2::RE2> bytes;  // for what is not

    /// O(bytes), without allocating.
    bool matches(std::string_view path) const;

    /// Compiles a regular expression for what is UTF-8 and what is not. Throws Error kWrongUse.
    void compile(std::string_view pattern, const std::string& regex, Case letterCase);
};

}  // namespace zqpaths
