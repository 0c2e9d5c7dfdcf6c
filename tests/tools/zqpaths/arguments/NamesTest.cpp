#include "tools/zqpaths/arguments/Names.hpp"

#include <gtest/gtest.h>

namespace zqpaths::program {
namespace {

const std::vector<std::string> kVerbs{"index", "add", "info", "list", "compact", "compare"};

TEST(Names, areAsFarApartAsLettersMustChange) {
    EXPECT_EQ(lettersBetween("", ""), 0U);
    EXPECT_EQ(lettersBetween("", "add"), 3U);
    EXPECT_EQ(lettersBetween("add", ""), 3U);
    EXPECT_EQ(lettersBetween("index", "index"), 0U);
    EXPECT_EQ(lettersBetween("idnex", "index"), 1U);   // swapped
    EXPECT_EQ(lettersBetween("inex", "index"), 1U);    // one is lacking
    EXPECT_EQ(lettersBetween("indexx", "index"), 1U);  // one too many
    EXPECT_EQ(lettersBetween("ibdex", "index"), 1U);   // another one
    EXPECT_EQ(lettersBetween("xedni", "index"), 4U);
    EXPECT_EQ(lettersBetween("ab", "ba"), 1U);
    EXPECT_EQ(lettersBetween("abc", "ca"), 3U);  // what was swapped is not changed again
}

TEST(Names, areNearIfFewLettersAreWrong) {
    EXPECT_EQ(nearestName("idnex", kVerbs), "index");
    EXPECT_EQ(nearestName("ad", kVerbs), "add");
    EXPECT_EQ(nearestName("lst", kVerbs), "list");
    EXPECT_EQ(nearestName("infos", kVerbs), "info");
    EXPECT_EQ(nearestName("xyz", kVerbs), std::nullopt);
    EXPECT_EQ(nearestName("dd", kVerbs), std::nullopt);
    EXPECT_EQ(nearestName("", kVerbs), std::nullopt);
    EXPECT_EQ(nearestName("index", {}), std::nullopt);
    EXPECT_EQ(nearestName(std::string(1 << 20, 'x'), kVerbs), std::nullopt);
}

TEST(Names, areNearIfTheyAreBegun) {
    EXPECT_EQ(nearestName("comp", kVerbs), "compact");
    EXPECT_EQ(nearestName("compar", kVerbs), "compare");
    EXPECT_EQ(nearestName("--ign", {"--json", "--ignore-case"}), "--ignore-case");
    EXPECT_EQ(nearestName("c", kVerbs), std::nullopt);
    EXPECT_EQ(nearestName("--i", {"--ignore-case"}), std::nullopt);
    EXPECT_EQ(nearestName("-", {"--ignore-case"}), std::nullopt);
}

TEST(Names, areSaidInWords) {
    EXPECT_EQ(inWords({}, "or"), "");
    EXPECT_EQ(inWords({"man"}, "or"), "man");
    EXPECT_EQ(inWords({"man", "bash"}, "or"), "man or bash");
    EXPECT_EQ(inWords({"man", "bash", "zsh"}, "and"), "man, bash and zsh");
    EXPECT_EQ(nearestInWords("idnex", kVerbs, "'"), "; the nearest is 'index'");
    EXPECT_EQ(nearestInWords("xyz", kVerbs, "'"), "");
}

}  // namespace
}  // namespace zqpaths::program
