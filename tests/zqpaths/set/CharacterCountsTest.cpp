#include "zqpaths/set/CharacterCounts.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zqpaths {
namespace {

using Frequencies = std::vector<double>;

TEST(CharacterCounts, areThoseOfTheCharactersAscending) {
    CharacterCounts counts;
    counts.count("banana");
    counts.count("an");
    EXPECT_EQ(counts.characters(), u"abn");
    EXPECT_EQ(counts.frequencies(), (Frequencies{4, 1, 3}));
}

TEST(CharacterCounts, countUtf16AndBytesThatAreNoText) {
    CharacterCounts counts;
    counts.count("x\xC3\xA9\xF0\x9F\x98\x80y\xFFx");
    EXPECT_EQ(counts.characters(), (std::u16string{u'x', u'y', 0xE9, 0xD83D, 0xDCFF, 0xDE00}));
    EXPECT_EQ(counts.frequencies(), (Frequencies{2, 1, 1, 1, 1, 1}));
}

TEST(CharacterCounts, areAddedUp) {
    CharacterCounts counts;
    counts.count("ab");
    CharacterCounts others;
    others.count("bc");
    counts.add(others);
    EXPECT_EQ(counts.characters(), u"abc");
    EXPECT_EQ(counts.frequencies(), (Frequencies{1, 2, 1}));
}

TEST(CharacterCounts, giveTwoCharactersAtLeast) {
    CharacterCounts counts;
    EXPECT_EQ(counts.characters(), (std::u16string{0, 1}));
    counts.count("aa");
    EXPECT_EQ(counts.characters(), (std::u16string{0, u'a'}));
    EXPECT_EQ(counts.frequencies(), (Frequencies{0, 2}));
}

TEST(CharacterCounts, giveTwoCharactersWhereOnlyTheLowestOccurs) {
    CharacterCounts counts;
    counts.count(std::string(3, '\0'));
    EXPECT_EQ(counts.characters(), (std::u16string{0, 1}));
    EXPECT_EQ(counts.frequencies(), (Frequencies{3, 0}));
}

}  // namespace
}  // namespace zqpaths
