#include "tools/zqpaths/output/PrintablePath.hpp"

#include <gtest/gtest.h>

#include <string>

namespace zqpaths::program {
namespace {

TEST(PrintablePath, leavesTextAsItIs) {
    EXPECT_EQ(printablePath("a b/caf\xC3\xA9/\xF0\x9F\x98\x80"),
              "a b/caf\xC3\xA9/\xF0\x9F\x98\x80");
    EXPECT_EQ(printablePath(""), "");
}

TEST(PrintablePath, writesOutWhatWouldMoveTheCursor) {
    EXPECT_EQ(printablePath("new\nline"), "new\\x0Aline");
    EXPECT_EQ(printablePath("\x1B[31m\x7F"), "\\x1B[31m\\x7F");
    EXPECT_EQ(printablePath("\xC2\x9B"), "\\xC2\\x9B");
}

TEST(PrintablePath, writesOutBytesThatAreNotUtf8) {
    EXPECT_EQ(printablePath("\xFF\xC3("), "\\xFF\\xC3(");
}

TEST(PrintablePath, doublesABackslashSoThatNothingPassesForAnEscape) {
    EXPECT_EQ(printablePath("\\x0A"), "\\\\x0A");
}

TEST(PrintablePath, leavesOutTheMiddleOfALongPath) {
    const std::string printed = printablePath(std::string(1000, 'x'));
    EXPECT_EQ(printed, std::string(80, 'x') + " ... 840 characters ... " + std::string(80, 'x'));
}

TEST(PrintableText, leavesNothingOut) {
    EXPECT_EQ(printableText(std::string(1000, 'x') + ": a\n\\"),
              std::string(1000, 'x') + ": a\\x0A\\\\");
}

}  // namespace
}  // namespace zqpaths::program
