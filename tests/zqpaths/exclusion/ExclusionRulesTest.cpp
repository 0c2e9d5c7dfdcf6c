#include "zqpaths/exclusion/ExclusionRules.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "zqpaths/Error.hpp"
#include "zqpaths/exclusion/ExcludedPaths.hpp"

namespace zqpaths {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Patterns = std::vector<std::string>;

/// A path with a separator at its end is a directory.
bool excluded(const Patterns& patterns, std::string_view path) {
    return ExcludedPaths(patterns).contain(path);
}

TEST(ExclusionRules, matchNamesAtAnyDepth) {
    EXPECT_TRUE(excluded({"a.o"}, "a.o"));
    EXPECT_TRUE(excluded({"a.o"}, "x/y/a.o"));
    EXPECT_TRUE(excluded({"*.o"}, "x/y/a.o"));
    EXPECT_FALSE(excluded({"a.o"}, "a.obj"));
    EXPECT_FALSE(excluded({"a.o"}, "ba.o"));
    EXPECT_FALSE(excluded({"a.o"}, "A.o"));
}

TEST(ExclusionRules, leaveOutAllThatIsInADirectory) {
    EXPECT_TRUE(excluded({"build"}, "src/build/x/y.o"));
    EXPECT_TRUE(excluded({"build/"}, "src/build/x"));
    EXPECT_TRUE(excluded({"build/", "!x"}, "src/build/x"));
}

TEST(ExclusionRules, tieAPatternWithASeparatorToTheRoot) {
    EXPECT_TRUE(excluded({"/a"}, "a"));
    EXPECT_FALSE(excluded({"/a"}, "x/a"));
    EXPECT_TRUE(excluded({"x/a"}, "x/a"));
    EXPECT_FALSE(excluded({"x/a"}, "y/x/a"));
    EXPECT_FALSE(excluded({"x/*.o"}, "x/y/a.o"));
    EXPECT_TRUE(excluded({"/*"}, "a/b"));
}

TEST(ExclusionRules, tellDirectoriesFromFiles) {
    EXPECT_FALSE(excluded({"a/"}, "a"));
    EXPECT_TRUE(excluded({"a/"}, "a/"));
    EXPECT_FALSE(excluded({"x/a/"}, "x/a"));
    EXPECT_TRUE(excluded({"/a/"}, "a/b"));
    EXPECT_FALSE(ExclusionRules({"a/"}).excludes("a", EntryKind::kOther));
    EXPECT_TRUE(ExclusionRules({"a/"}).excludes("a", EntryKind::kDirectory));
}

TEST(ExclusionRules, matchAnyDirectoriesByTwoStars) {
    for (const char* path : {"b", "x/b", "x/y/b"}) EXPECT_TRUE(excluded({"**/b"}, path)) << path;
    for (const char* path : {"a/x", "a/x/y"}) EXPECT_TRUE(excluded({"a/**"}, path)) << path;
    EXPECT_FALSE(excluded({"a/**"}, "a"));
    EXPECT_FALSE(ExclusionRules({"a/**"}).excludes("a", EntryKind::kDirectory));
    for (const char* path : {"a/b", "a/x/b", "a/x/y/b"})
        EXPECT_TRUE(excluded({"a/**/b"}, path)) << path;
    EXPECT_FALSE(excluded({"a/**/b"}, "ab"));
    EXPECT_TRUE(excluded({"**"}, "x"));
    // Elsewhere they are as one.
    EXPECT_TRUE(excluded({"x/a**b"}, "x/a1b"));
    EXPECT_FALSE(excluded({"x/?**b"}, "x/a/b"));
}

TEST(ExclusionRules, takeBackWhatALaterPatternNegates) {
    const Patterns patterns{"*.o", "!keep.o", "keep.o/"};
    EXPECT_TRUE(excluded(patterns, "x/a.o"));
    EXPECT_FALSE(excluded(patterns, "x/keep.o"));
    EXPECT_TRUE(excluded(patterns, "keep.o/x"));
    EXPECT_TRUE(excluded({"!a", "a"}, "a"));
    EXPECT_FALSE(excluded({"/*", "!/a", "/a/*", "!/a/b"}, "a/b"));
    EXPECT_TRUE(excluded({"/*", "!/a", "/a/*", "!/a/b"}, "a/c"));
}

TEST(ExclusionRules, matchByteByByte) {
    EXPECT_TRUE(excluded({"?"}, "\xFF"));
    EXPECT_FALSE(excluded({"?"}, "\xC3\xA9"));
    EXPECT_TRUE(excluded({"*\xC3\xA9"}, "caf\xC3\xA9"));
    EXPECT_TRUE(excluded({"a*b"}, "a\nb"));
    EXPECT_TRUE(excluded({"a.b"}, "a.b"));
    EXPECT_FALSE(excluded({"a.b"}, "axb"));
}

TEST(ExclusionRules, knowBrackets) {
    for (const char* pattern : {"[a-c]", "[!x]", "[^x]", "[xb]", "[[:lower:]]", "[]b]", "[b-]",
                                "[\\b]", "[a-\\c]", "[z-a[:alpha:]]"})
        EXPECT_TRUE(excluded({pattern}, "b")) << pattern;
    for (const char* pattern : {"[a-a]", "[!b]", "[[:upper:]]", "[c-a]", "[b", "[[:none:]b]", "[]"})
        EXPECT_FALSE(excluded({pattern}, "b")) << pattern;
    EXPECT_TRUE(excluded({"[]-]"}, "]"));
    EXPECT_FALSE(excluded({"x[/]y"}, "x/y"));
    EXPECT_FALSE(excluded({"x[+-9]y"}, "x/y"));
    EXPECT_FALSE(excluded({"x[!a]y"}, "x/y"));
    EXPECT_TRUE(excluded({"[[:x]"}, ":"));  // a bracket and letters, no class
}

TEST(ExclusionRules, takeTheMeaningFromWhatABackslashStandsBefore) {
    EXPECT_TRUE(excluded({"\\*"}, "*"));
    EXPECT_FALSE(excluded({"\\*"}, "a"));
    EXPECT_TRUE(excluded({"\\!a"}, "!a"));
    EXPECT_TRUE(excluded({"\\#a"}, "#a"));
    EXPECT_FALSE(excluded({"a\\"}, "a\\"));
    EXPECT_FALSE(excluded({"a\\"}, "a"));
}

TEST(ExclusionRules, areNoneWithoutAPatternThatCanMatch) {
    for (const Patterns& patterns : {Patterns{}, {"", "/", "!", "!/"}, {"[a"}}) {
        EXPECT_TRUE(ExclusionRules(patterns).isEmpty());
        EXPECT_FALSE(excluded(patterns, "a"));
    }
}

TEST(ExclusionRules, lookPastWhatDoesNotChangeAPath) {
    for (const char* path : {"a/b", "./a/b", "/a/b", "a//b", "a/./b", "//a/b"})
        EXPECT_TRUE(excluded({"/a/b"}, path)) << path;
    EXPECT_FALSE(excluded({"*"}, "./"));
    EXPECT_FALSE(excluded({"*"}, "/"));
}

TEST(ExcludedPaths, rememberNoFolderButThatOfThePath) {
    ExcludedPaths paths({"/a/b/", "x"});
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(paths.contain("a/b/c"));
        EXPECT_FALSE(paths.contain("a/c"));
        EXPECT_FALSE(paths.contain("a/bb/c"));
        EXPECT_TRUE(paths.contain("a/b/d/e"));
        EXPECT_TRUE(paths.contain("a/b//d"));
        EXPECT_FALSE(paths.contain("b"));
        EXPECT_TRUE(paths.contain("x"));
        EXPECT_FALSE(paths.contain("b"));
    }
}

TEST(ExclusionRules, areManyWithoutBeingSlow) {
    Patterns patterns;
    for (int i = 0; i < 2000; ++i) patterns.push_back("*name" + std::to_string(i) + "*");
    const ExclusionRules rules(patterns);
    std::string long_path;
    for (int i = 0; i < 1000; ++i) long_path += "directory/";
    EXPECT_TRUE(rules.excludes(long_path + "xname1999y", EntryKind::kOther));
    EXPECT_FALSE(rules.excludes(long_path + "xnam", EntryKind::kOther));
    EXPECT_FALSE(excluded(Patterns(1, std::string(60, '*') + "b"), std::string(5000, 'a')));
}

TEST(ExclusionRules, refusePatternsBeyondAllBounds) {
    const Patterns patterns(1, std::string(100'000, '?'));
    EXPECT_THROW(ExclusionRules rules(patterns), Error);
}

TEST(ExclusionPatterns, areTheLinesOfAFileThatSaySomething) {
    EXPECT_THAT(exclusionPatterns(""), IsEmpty());
    EXPECT_THAT(exclusionPatterns("\n#comment\n  \na\n\\#b\n!c"), ElementsAre("a", "\\#b", "!c"));
    EXPECT_THAT(exclusionPatterns("\xEF\xBB\xBF"
                                  "a\r\nb\r"),
                ElementsAre("a", "b"));
}

TEST(ExclusionPatterns, loseSpacesAtTheirEnds) {
    EXPECT_THAT(exclusionPatterns("a  \nb \\ \\  \n c\nd\t\ne\\"),
                ElementsAre("a", "b \\ \\ ", " c", "d\t", "e\\"));
}

}  // namespace
}  // namespace zqpaths
