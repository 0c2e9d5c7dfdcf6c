#include "tools/zqpaths/output/Figures.hpp"

#include <gtest/gtest.h>

namespace zqpaths::program {
namespace {

TEST(Figures, groupDigitsByThree) {
    EXPECT_EQ(groupDigits(0), "0");
    EXPECT_EQ(groupDigits(999), "999");
    EXPECT_EQ(groupDigits(1'000), "1,000");
    EXPECT_EQ(groupDigits(18'446'744'073'709'551'615U), "18,446,744,073,709,551,615");
    EXPECT_EQ(fixedPoint(1234.56, 1), "1,234.6");
    EXPECT_EQ(fixedPoint(0.26, 0), "0");
    EXPECT_EQ(fixedPoint(999'999.7, 0), "1,000,000");
}

TEST(Figures, tellTimesInTwoUnits) {
    EXPECT_EQ(durationText(0.4), "0 s");
    EXPECT_EQ(durationText(59.4), "59 s");
    EXPECT_EQ(durationText(65), "1 min 5 s");
    EXPECT_EQ(durationText(3'599.7), "1 h 0 min");
    EXPECT_EQ(durationText(7'380), "2 h 3 min");
}

TEST(Figures, sizesComeInTheirLargestUnit) {
    EXPECT_EQ(sizeText(0, SizeUnits::kBinary), "0 B");
    EXPECT_EQ(sizeText(1023, SizeUnits::kBinary), "1,023 B");
    EXPECT_EQ(sizeText(1024, SizeUnits::kBinary), "1.0 KiB");
    EXPECT_EQ(sizeText(1536, SizeUnits::kBinary), "1.5 KiB");
    EXPECT_EQ(sizeText(132'654'976, SizeUnits::kBinary), "126.5 MiB");
    EXPECT_EQ(sizeText(132'654'976, SizeUnits::kDecimal), "132.7 MB");
    EXPECT_EQ(sizeText(999, SizeUnits::kDecimal), "999 B");
    EXPECT_EQ(sizeText(1000, SizeUnits::kDecimal), "1.0 kB");
    EXPECT_EQ(sizeText(UINT64_MAX, SizeUnits::kBinary), "16.0 EiB");
}

TEST(Figures, sizesThatRoundUpToAUnitAreOneOfIt) {
    EXPECT_EQ(sizeText((1U << 20U) - 1, SizeUnits::kBinary), "1.0 MiB");
    EXPECT_EQ(sizeText(999'949, SizeUnits::kDecimal), "999.9 kB");
    EXPECT_EQ(sizeText(999'950, SizeUnits::kDecimal), "1.0 MB");
}

TEST(Figures, sizesInBytesAreExact) {
    EXPECT_EQ(sizeText(132'654'976, SizeUnits::kBytes), "132,654,976 bytes");
    EXPECT_EQ(sizeText(1, SizeUnits::kBytes), "1 byte");
}

}  // namespace
}  // namespace zqpaths::program
