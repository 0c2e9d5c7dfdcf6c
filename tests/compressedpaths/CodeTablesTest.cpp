#include "compressedpaths/CodeTables.hpp"

#include <gtest/gtest.h>

namespace compressedpaths {
namespace {

using Word = CodeWordTable::Word;

std::deque<bool> alternating(std::size_t length) {
    std::deque<bool> word;
    for (std::size_t i = 0; i < length; ++i) word.push_back(i % 2 == 0);
    return word;
}

unsigned lengthOf(const CodeWordTable& table, char16_t character) {
    return table.find(character).length;
}

TEST(CodeWordTable, hasNoWordsAtFirst) {
    const CodeWordTable table;
    EXPECT_EQ(lengthOf(table, u'\0'), Word::kAbsent);
    EXPECT_EQ(lengthOf(table, 0xFFFF), Word::kAbsent);
}

TEST(CodeWordTable, storesTheFirstBitLowest) {
    CodeWordTable table;
    table.set(u'a', {true, false, true, true});
    EXPECT_EQ(std::uint64_t{table.find(u'a').bits}, 0b1101U);
    EXPECT_EQ(lengthOf(table, u'a'), 4U);
}

TEST(CodeWordTable, keepsCharactersOfOnePageAndOfDifferentPagesApart) {
    CodeWordTable table;
    table.set(0x0041, {true});
    table.set(0x0042, {false, true});
    table.set(0x4100, {true, true, true});
    EXPECT_EQ(lengthOf(table, 0x0041), 1U);
    EXPECT_EQ(lengthOf(table, 0x0042), 2U);
    EXPECT_EQ(lengthOf(table, 0x4100), 3U);
    EXPECT_EQ(lengthOf(table, 0x0043), Word::kAbsent);
    EXPECT_EQ(lengthOf(table, 0x4141), Word::kAbsent);
    EXPECT_EQ(lengthOf(table, 0xFF41), Word::kAbsent);
}

TEST(CodeWordTable, holdsWordsUpToTheLongestAndMarksLongerOnes) {
    CodeWordTable table;
    table.set(u'a', alternating(Word::kMaxLength));
    EXPECT_EQ(lengthOf(table, u'a'), Word::kMaxLength);
    EXPECT_EQ(std::uint64_t{table.find(u'a').bits}, 0x0155'5555'5555'5555U);
    table.set(u'b', alternating(Word::kMaxLength + 1));
    EXPECT_EQ(lengthOf(table, u'b'), Word::kLong);
    EXPECT_EQ(std::uint64_t{table.find(u'b').bits}, 0U);
}

TEST(CodeWordTable, holdsAWordWithoutBits) {
    CodeWordTable table;
    table.set(u'a', {});
    EXPECT_EQ(lengthOf(table, u'a'), 0U);
}

TEST(DecodingTable, isEmptyUntilItHasAWidth) {
    EXPECT_TRUE(DecodingTable().isEmpty());
    const DecodingTable table(3);
    EXPECT_FALSE(table.isEmpty());
    EXPECT_EQ(table.width(), 3U);
}

TEST(DecodingTable, findsACharacterWhateverFollowsItsBits) {
    DecodingTable table(3);
    table.fill(0b1, {u'a', 1});
    table.fill(0b10, {u'b', 2});
    for (const std::uint64_t bits : {0b001U, 0b011U, 0b101U, 0b111U}) {
        EXPECT_EQ(table.find(bits).character, u'a');
        EXPECT_EQ(table.find(bits).length, 1);
    }
    EXPECT_EQ(table.find(0b010).character, u'b');
    EXPECT_EQ(table.find(0b110).character, u'b');
}

TEST(DecodingTable, ignoresBitsAboveItsWidth) {
    DecodingTable table(2);
    table.fill(0b01, {u'a', 2});
    EXPECT_EQ(table.find(0b1111'1101).character, u'a');
    EXPECT_EQ(table.find(~std::uint64_t{2}).character, u'a');
}

TEST(DecodingTable, leavesWhatIsLongerThanALookUpWithoutLength) {
    DecodingTable table(2);
    table.fill(0b0, {u'a', 1});
    EXPECT_EQ(table.find(0b01).length, 0);
    EXPECT_EQ(table.find(0b11).length, 0);
}

TEST(DecodingTable, ofNoWidthFindsOneCharacter) {
    DecodingTable table(0);
    table.fill(0, {u'a', 0});
    EXPECT_EQ(table.find(0xFFFF).character, u'a');
}

}  // namespace
}  // namespace compressedpaths
