#include "zqpaths/Pattern.hpp"

#include <fnmatch.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

using Case = Pattern::Case;

bool textMatches(std::string_view text, std::string_view path, Case letterCase = Case::kRespect) {
    return Pattern::text(text, letterCase).matches(path);
}

bool globMatches(std::string_view glob, std::string_view path, Case letterCase = Case::kRespect) {
    return Pattern::glob(glob, letterCase).matches(path);
}

bool regexMatches(std::string_view regex, std::string_view path, Case letterCase = Case::kRespect) {
    return Pattern::regex(regex, letterCase).matches(path);
}

/// All texts of at most `length` of these characters.
std::vector<std::string> allTexts(std::string_view characters, std::size_t length) {
    std::vector<std::string> texts{""};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string text = texts[i];
        if (text.size() == length) break;
        for (const char character : characters) texts.push_back(text + character);
    }
    return texts;
}

/// Where the system's globs mean something else: they have no `**`, leave open what a separator
/// between brackets is, and do not find one that has a backslash.
bool isOfOurOwn(const std::string& glob) {
    const bool hasBracket = glob.find('[') != std::string::npos;
    return glob.find("**") != std::string::npos ||
           (hasBracket && glob.find('/') != std::string::npos) || glob.ends_with('\\') ||
           glob.find("\\/") != std::string::npos;
}

TEST(Globs, matchAsTheSystemsDo) {
    const std::vector<std::string> texts = allTexts("ab/[", 3);
    std::size_t matchCount = 0;
    for (const std::string& tail : allTexts("ab*?[]!/\\", 4)) {
        if (isOfOurOwn(tail)) continue;
        const std::string glob = "/" + tail;
        const Pattern pattern = Pattern::glob(glob);
        for (const std::string& text : texts) {
            const std::string path = "/" + text;
            const bool expected = fnmatch(glob.c_str(), path.c_str(), FNM_PATHNAME) == 0;
            ASSERT_EQ(pattern.matches(path), expected) << glob << " on " << path;
            matchCount += expected ? 1 : 0;
        }
    }
    EXPECT_GT(matchCount, 1000);  // so that the comparison says something
}

TEST(Globs, withoutSeparatorMatchTheFileNameAlone) {
    EXPECT_TRUE(globMatches("*.hpp", "/usr/include/zlib.hpp"));
    EXPECT_TRUE(globMatches("zlib*", "/usr/include/zlib.hpp"));
    EXPECT_FALSE(globMatches("include", "/usr/include/zlib.hpp"));
    EXPECT_TRUE(globMatches("b", "a/b/"));
    EXPECT_TRUE(globMatches("x", "x"));
}

TEST(Globs, withSeparatorMatchTheWholePath) {
    EXPECT_TRUE(globMatches("/usr/*/x", "/usr/lib/x"));
    EXPECT_FALSE(globMatches("/usr/*/x", "/usr/lib/y/x"));
    EXPECT_FALSE(globMatches("lib/x", "/usr/lib/x"));
    EXPECT_FALSE(globMatches("/usr/*", "/usr/lib/x"));
}

TEST(Globs, crossFoldersWithTwoStars) {
    EXPECT_TRUE(globMatches("/usr/**", "/usr/lib/x"));
    EXPECT_TRUE(globMatches("**/x", "/usr/lib/x"));
    EXPECT_TRUE(globMatches("**/x", "x"));
    EXPECT_TRUE(globMatches("a/**/b", "a/b"));
    EXPECT_TRUE(globMatches("a/**/b", "a/c/d/b"));
    EXPECT_FALSE(globMatches("a/**/b", "a/cb"));
    EXPECT_TRUE(globMatches("a/**/**/b", "a/b"));
    EXPECT_TRUE(globMatches("a/c**b", "a/cd/eb"));
}

TEST(Globs, countCharactersNotBytes) {
    EXPECT_TRUE(globMatches("caf?", "caf\xC3\xA9"));
    EXPECT_TRUE(globMatches("?", "\xF0\x9F\x98\x80"));
    EXPECT_TRUE(globMatches("[\xC3\xA8-\xC3\xAA]", "\xC3\xA9"));
    EXPECT_FALSE(globMatches("[\xC3\xA8-\xC3\xAA]", "e"));
}

TEST(Globs, matchPathsThatAreNotUtf8) {
    EXPECT_TRUE(globMatches("bad*", "bad\xFF\xFE"));
    EXPECT_TRUE(globMatches("bad??", "bad\xFF\xFE"));
    EXPECT_TRUE(globMatches("bad\xFF*", "bad\xFF\xFE"));
    EXPECT_FALSE(globMatches("bad\xFF*", "bad\xFE"));
}

TEST(Globs, takeClassesOfCharacters) {
    EXPECT_TRUE(globMatches("[[:digit:]]x", "7x"));
    EXPECT_FALSE(globMatches("[![:digit:]]x", "7x"));
    EXPECT_TRUE(globMatches("[]^-]", "]"));
    EXPECT_TRUE(globMatches("[]^-]", "^"));
    EXPECT_TRUE(globMatches("[]^-]", "-"));
    EXPECT_TRUE(globMatches("[a\\-c]", "-"));
    EXPECT_FALSE(globMatches("[a\\-c]", "b"));
}

TEST(Globs, takeRegularCharactersForThemselves) {
    EXPECT_TRUE(globMatches("a.b+(c)|{d}^$", "a.b+(c)|{d}^$"));
    EXPECT_FALSE(globMatches("a.b", "axb"));
    EXPECT_TRUE(globMatches("new\nline*", "new\nline\n"));
}

TEST(RegularExpressions, areFoundAnywhere) {
    EXPECT_TRUE(regexMatches("b+/", "a/bb/c"));
    EXPECT_TRUE(regexMatches("^a.*c$", "a/bb/c"));
    EXPECT_FALSE(regexMatches("^b", "a/bb/c"));
}

TEST(RegularExpressions, takeEveryCharacterForADot) {
    EXPECT_TRUE(regexMatches("^a.b$", "a\nb"));
    EXPECT_TRUE(regexMatches("^a.b$",
                             "a\xC3\xA9"
                             "b"));
    EXPECT_TRUE(regexMatches("^a.b$",
                             "a\xFF"
                             "b"));
}

TEST(RegularExpressions, thatAreNotWellFormedAreRefused) {
    try {
        Pattern::regex("(a");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.kind(), ErrorKind::kWrongUse);
        EXPECT_STREQ(error.what(), "pattern (a: missing ): (a");
    }
    EXPECT_THROW(regexMatches("((a{1000}){1000}){1000}", "a"), Error);
    EXPECT_THROW(globMatches("[b-a]", "a"), Error);
}

TEST(Patterns, matchTheSameAsTheirCopies) {
    const Pattern headers = Pattern::glob("*.hpp");
    Pattern copy = Pattern::text("x");
    EXPECT_FALSE(copy.matches("a.hpp"));
    copy = headers;
    EXPECT_TRUE(copy.matches("a.hpp"));
    const Pattern moved = std::move(copy);
    EXPECT_TRUE(moved.matches("a.hpp"));
    EXPECT_TRUE(headers.matches("a.hpp"));
}

TEST(FixedTexts, areFoundToTheByte) {
    EXPECT_TRUE(textMatches("b.*", "a/b.*c"));
    EXPECT_FALSE(textMatches("b.*", "a/bxc"));
    EXPECT_TRUE(textMatches("\xA9", "caf\xC3\xA9"));
    EXPECT_TRUE(textMatches("", "a"));
}

TEST(Patterns, matchWithoutCase) {
    EXPECT_TRUE(textMatches("README.", "a/readme.txt", Case::kIgnore));
    EXPECT_FALSE(textMatches("README.", "a/readme_txt", Case::kIgnore));
    EXPECT_TRUE(textMatches("\xC3\x89", "\xC3\xA9", Case::kIgnore));
    EXPECT_TRUE(globMatches("*.HPP", "x.hpp", Case::kIgnore));
    EXPECT_FALSE(globMatches("*.HPP", "x.hpp"));
    EXPECT_TRUE(regexMatches("^A", "a\xFF", Case::kIgnore));
}

}  // namespace
}  // namespace zqpaths
