#include "zqpaths/search/LiteralPieces.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "zqpaths/Error.hpp"
#include "zqpaths/Pattern.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

TEST(PieceOfText, isTheLongestWithoutSeparator) {
    EXPECT_EQ(pieceOfText("lib/python3/x").text, "python3");
    EXPECT_EQ(pieceOfText("plain").text, "plain");
    EXPECT_EQ(pieceOfText("/caf\xC3\xA9").text, "caf\xC3\xA9");
    EXPECT_EQ(pieceOfText("ab/cd").text, "ab");  // the first of two as long
    EXPECT_FALSE(pieceOfText("plain").isInName);
}

TEST(PieceOfText, isNothingWhereNothingIsCertain) {
    for (const char* const text : {"", "/", "//", "bad\xFF", "\xA9"})
        EXPECT_EQ(pieceOfText(text), LiteralPiece{}) << text;
}

TEST(PieceOfGlob, isTheLongestThatIsPlainToSee) {
    EXPECT_EQ(pieceOfGlob("*.hpp"), (LiteralPiece{".hpp", true}));
    EXPECT_EQ(pieceOfGlob("a?bcd[ef]gh"), (LiteralPiece{"bcd", true}));
    EXPECT_EQ(pieceOfGlob("/usr/**/*.hpp"), (LiteralPiece{".hpp", true}));
    EXPECT_EQ(pieceOfGlob("/usr/include/*.h"), (LiteralPiece{"include", false}));
    EXPECT_EQ(pieceOfGlob("a\\*b\\?c*"), (LiteralPiece{"a*b?c", true}));
    EXPECT_EQ(pieceOfGlob("un[closed"), (LiteralPiece{"un[closed", true}));
    EXPECT_EQ(pieceOfGlob("x]y"), (LiteralPiece{"x]y", true}));
    EXPECT_EQ(pieceOfGlob("abc/xyz"), (LiteralPiece{"xyz", true}));  // of two as long
}

TEST(PieceOfGlob, isNotInTheNameIfASeparatorMayFollow) {
    EXPECT_EQ(pieceOfGlob("a/long**b"), (LiteralPiece{"long", false}));
    EXPECT_EQ(pieceOfGlob("a/long[+-9]b"), (LiteralPiece{"long", false}));
    EXPECT_EQ(pieceOfGlob("a/long[!a]b"), (LiteralPiece{"long", true}));
    EXPECT_EQ(pieceOfGlob("a/long/"), (LiteralPiece{"long", false}));
    // Without a separator in the glob it is the name that is matched.
    EXPECT_EQ(pieceOfGlob("long**b"), (LiteralPiece{"long", true}));
    EXPECT_EQ(pieceOfGlob("long[+-9]b"), (LiteralPiece{"long", true}));
}

TEST(PieceOfGlob, isNothingWhereNothingIsCertain) {
    for (const char* const glob : {"", "*", "**/*", "?/[ab]", "bad\xFF*"})
        EXPECT_EQ(pieceOfGlob(glob).text, "") << glob;
}

TEST(PieceOfRegex, isTheLongestThatIsPlainToSee) {
    EXPECT_EQ(pieceOfRegex("lib").text, "lib");
    EXPECT_EQ(pieceOfRegex("^lib[0-9]+ext?$").text, "lib");
    EXPECT_EQ(pieceOfRegex("(a|b)cde(f|(g)h)i").text, "cde");
    EXPECT_EQ(pieceOfRegex("abc+d").text, "abc");
    EXPECT_EQ(pieceOfRegex("abcd*e").text, "abc");
    EXPECT_EQ(pieceOfRegex("xyz{2,3}ab").text, "xy");
    EXPECT_EQ(pieceOfRegex("libstdc\\+\\+\\.so").text, "libstdc++.so");
    EXPECT_EQ(pieceOfRegex("a/bcd/ef").text, "bcd");
    EXPECT_EQ(pieceOfRegex("[]abc]def[^]xyzw]").text, "def");
    EXPECT_EQ(pieceOfRegex("[[:alpha:]]def").text, "def");
    EXPECT_EQ(pieceOfRegex("(?:ab|cd)ef").text, "ef");
    EXPECT_EQ(pieceOfRegex("caf\xC3\xA9*x").text, "caf");
    EXPECT_EQ(pieceOfRegex("a\\d+bcd").text, "bcd");
}

TEST(PieceOfRegex, isNothingWhereNothingIsCertain) {
    for (const char* const regex :
         {"", ".*", "abc|def", "(?i)abc", "x(?i)abc", "abc\\x2Fdef", "\\Qa|b\\E", "\\pLabc",
          "(?i:abc)", "bad\xFF", "(abc)", "[abc]", "a?b*c{0}", "([)]abc|x"})
        EXPECT_EQ(pieceOfRegex(regex).text, "") << regex;
}

/// A pattern of few characters, most of which mean something.
std::string randomPattern(std::mt19937& random, std::string_view characters) {
    std::string pattern;
    for (std::size_t left = 1 + random() % 10; left > 0; --left)
        pattern += characters[random() % characters.size()];
    return pattern;
}

std::string randomPath(std::mt19937& random) {
    std::string path;
    for (std::size_t left = 1 + random() % 9; left > 0; --left)
        path += "aabc/{}1,\xC3\xA9\xFF"[random() % 12];
    return path;
}

std::string_view nameOf(std::string_view path) {
    return path.substr(folderLength(path));
}

/// Whatever a pattern matches holds its piece. Returns how many matches had one.
template <class Make>
std::size_t requirePieceInMatches(std::mt19937& random, const std::string& pattern,
                                  const LiteralPiece& piece, Make make) {
    std::size_t count = 0;
    try {
        const Pattern made = make(pattern);
        for (int i = 0; i < 60; ++i) {
            const std::string path = randomPath(random);
            if (!made.matches(path)) continue;
            const std::string_view place = piece.isInName ? nameOf(path) : std::string_view(path);
            EXPECT_NE(place.find(piece.text), std::string_view::npos)
                << "'" << pattern << "' on '" << path << "' without '" << piece.text << "'";
            count += piece.text.empty() ? 0 : 1;
        }
    } catch (const Error&) {
        return 0;  // it is not well formed
    }
    return count;
}

TEST(LiteralPieces, areInWhateverThePatternsMatch) {
    std::mt19937 random(11);
    std::size_t globCount = 0;
    std::size_t regexCount = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::string glob = randomPattern(random, "aabbc/*?[]!\\-1{}");
        globCount += requirePieceInMatches(random, glob, pieceOfGlob(glob),
                                           [](const std::string& p) { return Pattern::glob(p); });
        const std::string regex = randomPattern(random, "aabbc/*?[]^\\+(){}|.1,QE:");
        regexCount += requirePieceInMatches(random, regex, pieceOfRegex(regex),
                                            [](const std::string& p) { return Pattern::regex(p); });
        if (HasFailure()) return;
    }
    EXPECT_GT(globCount, 1000U);
    EXPECT_GT(regexCount, 1000U);
}

}  // namespace
}  // namespace zqpaths
