#include "tools/zqpaths/output/TextDrawing.hpp"

#include <gtest/gtest.h>

#include <string>

namespace zqpaths::program {
namespace {

constexpr DrawingStyle kAscii{};
constexpr DrawingStyle kBlocks{.hasBlocks = true};

TEST(CellsOf, countsWhatATerminalTakes) {
    EXPECT_EQ(cellsOf(""), 0U);
    EXPECT_EQ(cellsOf("abc"), 3U);
    EXPECT_EQ(cellsOf("caf\xC3\xA9"), 4U);
    EXPECT_EQ(cellsOf("cafe\xCC\x81"), 4U);       // with a combining accent
    EXPECT_EQ(cellsOf("\xE6\xBC\xA2"), 2U);       // a character of two cells
    EXPECT_EQ(cellsOf("\xF0\x9F\x98\x80!"), 3U);  // one of two code units
}

TEST(CutToCells, leavesWhatFits) {
    EXPECT_EQ(cutToCells("abc", 3, kBlocks), "abc");
    EXPECT_EQ(cutToCells("", 0, kBlocks), "");
}

TEST(CutToCells, marksWhatIsCutOff) {
    EXPECT_EQ(cutToCells("abcdef", 5, kBlocks), "abcd…");
    EXPECT_EQ(cutToCells("abcdef", 5, kAscii), "ab...");
    EXPECT_EQ(cutToCells("漢字漢字", 4, kBlocks), "漢…");
    EXPECT_EQ(cutToCells("漢字漢字", 5, kBlocks), "漢字…");
    EXPECT_EQ(cutToCells("abcdef", 1, kBlocks), "…");
    EXPECT_EQ(cutToCells("abcdef", 2, kAscii), "  ");
    EXPECT_EQ(cutToCells("abcdef", 0, kBlocks), "");
}

TEST(Bar, isAsLongAsItsShare) {
    EXPECT_EQ(bar(0.5, 4, kAscii), "##  ");
    EXPECT_EQ(bar(0.53125, 4, kBlocks), "██▏ ");
    EXPECT_EQ(bar(0, 2, kBlocks), "  ");
    EXPECT_EQ(bar(2, 2, kBlocks), "██");
    EXPECT_EQ(bar(0.5, 2, {.hasColours = true}), "\x1b[36m#\x1b[0m ");
    EXPECT_EQ(bar(0, 2, {.hasColours = true}), "  ");
}

}  // namespace
}  // namespace zqpaths::program
