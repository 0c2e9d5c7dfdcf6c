#include "zqpaths/choosing/PathParts.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

using Fractions = std::vector<double>;

constexpr int kPathCount = 100'000;

std::string pathOf(int i) {
    return "/data/" + std::to_string(i) + ".png";
}

std::string refusalOf(const Fractions& fractions) {
    try {
        const PathParts parts(fractions, 1);
        return "none";
    } catch (const Error& error) {
        EXPECT_EQ(error.kind(), ErrorKind::kWrongUse);
        return error.what();
    }
}

TEST(PathParts, areAsLargeAsTheirFractions) {
    const Fractions fractions{0.7, 0.2, 0.0999, 0.0001};
    const PathParts parts(fractions, 7);
    ASSERT_EQ(parts.count(), fractions.size());
    std::array<int, 5> counts{};
    for (int i = 0; i < kPathCount; ++i) ++counts.at(parts.partOf(pathOf(i)));
    EXPECT_EQ(counts[0], 0);
    for (std::size_t part = 1; part < counts.size(); ++part) {
        const double expected = fractions[part - 1] * kPathCount;
        // Five standard deviations, of which chance keeps once in two million cases.
        EXPECT_NEAR(counts.at(part), expected, 5 * std::sqrt(expected)) << part;
    }
}

TEST(PathParts, areTheSameOnEveryMachine) {
    // XXH3_64bits_withSeed of libxxhash, divided by 2^64, in thousandths; it goes other ways for
    // texts of other lengths.
    const Fractions thousandths(1000, 0.001);
    const PathParts unseeded(thousandths, 0);
    EXPECT_EQ(unseeded.partOf("a"), 902U);                            // 0.901462
    EXPECT_EQ(unseeded.partOf("a/b.txt"), 212U);                      // 0.211801
    EXPECT_EQ(unseeded.partOf("/data/images/train/0001.png"), 544U);  // 0.543535
    EXPECT_EQ(unseeded.partOf(std::string(200, 'x')), 317U);          // 0.316148
    EXPECT_EQ(unseeded.partOf(std::string(300, 'x')), 648U);          // 0.647731
    const PathParts seeded(thousandths, 7);
    EXPECT_EQ(seeded.partOf("a"), 621U);                            // 0.620446
    EXPECT_EQ(seeded.partOf("a/b.txt"), 134U);                      // 0.133727
    EXPECT_EQ(seeded.partOf("/data/images/train/0001.png"), 460U);  // 0.459353
    EXPECT_EQ(seeded.partOf(std::string(200, 'x')), 938U);          // 0.937552
    EXPECT_EQ(seeded.partOf(std::string(300, 'x')), 398U);          // 0.397211
}

TEST(PathParts, dependOnTheSeed) {
    const PathParts one(Fractions{0.5, 0.5}, 1);
    const PathParts other(Fractions{0.5, 0.5}, 2);
    int same = 0;
    for (int i = 0; i < kPathCount; ++i) same += one.partOf(pathOf(i)) == other.partOf(pathOf(i));
    EXPECT_NEAR(same, kPathCount / 2, 5 * std::sqrt(kPathCount / 4.0));
}

TEST(PathParts, stayWhereAnotherIsCutInTwo) {
    const PathParts two(Fractions{0.9, 0.1}, 3);
    const PathParts three(Fractions{0.5, 0.4, 0.1}, 3);
    for (int i = 0; i < kPathCount; ++i)
        ASSERT_EQ(two.partOf(pathOf(i)) == 2, three.partOf(pathOf(i)) == 3) << i;
}

TEST(PathParts, areOneForAFractionOfAll) {
    const PathParts whole(Fractions{1}, 0);
    EXPECT_EQ(whole.count(), 1U);
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(whole.partOf(pathOf(i)), 1U);
}

TEST(PathParts, reachTheEndAlsoIfFractionsAreRounded) {
    EXPECT_EQ(refusalOf({0.3333, 0.3333, 0.3333}), "none");
    EXPECT_EQ(refusalOf(Fractions(10, 0.1)), "none");
    EXPECT_EQ(refusalOf({1.0 - 1e-12, 1e-12}), "none");
    EXPECT_EQ(refusalOf({0.9998, 0.0004}), "none");  // the first ends before 1, the last beyond
}

TEST(PathParts, refuseFractionsThatAreNone) {
    EXPECT_EQ(refusalOf({}), "fractions: there is none");
    EXPECT_EQ(refusalOf({0.9, 0.2}), "fractions: they add up to 1.100000, not to 1");
    EXPECT_EQ(refusalOf({0.333, 0.333, 0.333}), "fractions: they add up to 0.999000, not to 1");
    for (const double wrong : {0.0, -0.5, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(refusalOf({1, wrong}), "fractions: each is above 0") << wrong;
    EXPECT_NE(refusalOf({std::numeric_limits<double>::infinity()}), "none");
}

}  // namespace
}  // namespace zqpaths
