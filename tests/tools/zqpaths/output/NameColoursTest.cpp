#include "tools/zqpaths/output/NameColours.hpp"

#include <gtest/gtest.h>

namespace zqpaths::program {
namespace {

TEST(NameColours, areThoseOfTheVariable) {
    const NameColours colours("rs=0:di=38;5;27:fi=37:*.tar=01;31:*~=90");
    EXPECT_EQ(colours.ofFolder(), "38;5;27");
    EXPECT_EQ(colours.ofFile("a.tar"), "01;31");
    EXPECT_EQ(colours.ofFile("a~"), "90");
    EXPECT_EQ(colours.ofFile("a.tar.c"), "37");
}

TEST(NameColours, areTheUsualOnesWithoutTheVariable) {
    EXPECT_EQ(NameColours("").ofFolder(), "01;34");
    EXPECT_EQ(NameColours("").ofFile("a.tar"), "");
    EXPECT_EQ(NameColours("di=").ofFolder(), "");
}

TEST(NameColours, takeTheLastOfSeveral) {
    EXPECT_EQ(NameColours("*.c=1:*.c=2").ofFile("x.c"), "2");
}

TEST(NameColours, passOverWhatIsNoColour) {
    const NameColours colours("di=\x1b[2J:*.c=1m\x1b:*=:=3:x:*.h=4");
    EXPECT_EQ(colours.ofFolder(), "01;34");
    EXPECT_EQ(colours.ofFile("x.c"), "");
    EXPECT_EQ(colours.ofFile("x.h"), "4");
}

}  // namespace
}  // namespace zqpaths::program
