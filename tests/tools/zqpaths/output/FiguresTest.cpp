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

}  // namespace
}  // namespace zqpaths::program
