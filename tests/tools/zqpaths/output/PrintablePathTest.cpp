#include "tools/zqpaths/output/PrintablePath.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zqpaths::program {
namespace {

std::string printable(std::string_view text, Charset charset = Charset::kUtf8) {
    std::string out;
    appendPrintable(text, charset, out);
    return out;
}

TEST(PrintablePath, leavesTextAsItIs) {
    EXPECT_EQ(printable("a b/caf\xC3\xA9/\xF0\x9F\x98\x80"), "a b/caf\xC3\xA9/\xF0\x9F\x98\x80");
    EXPECT_EQ(printable(""), "");
}

TEST(PrintablePath, writesOutWhatWouldMoveTheCursor) {
    EXPECT_EQ(printable("new\nline"), "new\\x0Aline");
    EXPECT_EQ(printable("\x1B[31m\x7F"), "\\x1B[31m\\x7F");
    EXPECT_EQ(printable("\xC2\x9B"), "\\u009B");
    EXPECT_EQ(printable("\xE2\x80\xA8\xE2\x80\xA9"), "\\u2028\\u2029");
}

TEST(PrintablePath, writesOutWhatTurnsTheTextAroundOrHidesInIt) {
    EXPECT_EQ(printable("\xD8\x9C\xE2\x80\x8E\xE2\x80\x8F"), "\\u061C\\u200E\\u200F");
    EXPECT_EQ(printable("\xE2\x80\xAA\xE2\x80\xAEx\xE2\x81\xA6\xE2\x81\xA9"),
              "\\u202A\\u202Ex\\u2066\\u2069");
    EXPECT_EQ(printable("\xEF\xBB\xBF\xE2\x80\x8B\xC2\xAD"), "\\uFEFF\\u200B\\u00AD");
    EXPECT_EQ(printable("\xF3\xA0\x81\x81"), "\\U000E0041");
}

TEST(PrintablePath, writesOutBytesThatAreNotUtf8) {
    EXPECT_EQ(printable("\xFF\xC3(\x9B"), "\\xFF\\xC3(\\x9B");
}

TEST(PrintablePath, writesOutAllBytesThatAnotherCharsetWouldReadOtherwise) {
    EXPECT_EQ(printable("caf\xC3\xA9\xFF\xE2\x80\xAE", Charset::kAscii),
              "caf\\xC3\\xA9\\xFF\\u202E");
}

TEST(PrintablePath, doublesABackslashSoThatNothingPassesForAnEscape) {
    EXPECT_EQ(printable("\\x0A"), "\\\\x0A");
    EXPECT_EQ(printable("a\\u202E"), "a\\\\u202E");
}

TEST(PrintablePath, leavesOutTheMiddleOfALongPath) {
    const std::string printed = printablePath(std::string(1000, 'x'));
    EXPECT_EQ(printed, std::string(80, 'x') + " ... 840 characters ... " + std::string(80, 'x'));
    const std::string escaped = printablePath(std::string(161, '\n') + 'x');
    EXPECT_TRUE(escaped.starts_with("\\x0A\\x0A"));
    EXPECT_TRUE(escaped.ends_with("\\x0Ax"));
    EXPECT_NE(escaped.find("\\x0A ... 2 characters ... \\x0A"), std::string::npos);
    EXPECT_EQ(printablePath(std::string(160, 'x')), std::string(160, 'x'));
}

TEST(PrintableText, leavesNothingOut) {
    EXPECT_EQ(printableText(std::string(1000, 'x') + ": a\n\\"),
              std::string(1000, 'x') + ": a\\x0A\\\\");
}

}  // namespace
}  // namespace zqpaths::program
