#include "host/runtime/Arrays.hpp"

#include <gtest/gtest.h>

#include "tests/host/runtime/CountersTest.hpp"

namespace korvex {
namespace {

kxDimensions dimensionsOf(const Array& array) {
    const auto dimensions = kxGetDimensions(array.get());
    return {dimensions.begin(), dimensions.end()};
}

using ArraysTest = BalancedTest;

TEST_F(ArraysTest, ofTextAreRows) {
    const Array red = text(u"r\u00E9d");
    EXPECT_EQ(kxGetCharacters(red.get()), u"r\u00E9d");
    EXPECT_EQ(dimensionsOf(red), (kxDimensions{1, 3}));
    EXPECT_EQ(dimensionsOf(text(u"")), (kxDimensions{1, 0}));
}

TEST_F(ArraysTest, ofNumbersAreColumns) {
    const std::vector<double> values{1.5, -2, 0};
    const Array column = numbers(values);
    EXPECT_EQ(kxGetClass(column.get()), kxClass::kDouble);
    EXPECT_EQ(dimensionsOf(column), (kxDimensions{3, 1}));
    EXPECT_EQ(kxGetNumber(column.get(), 1), -2.0);
    EXPECT_EQ(dimensionsOf(numbers({})), (kxDimensions{0, 1}));
}

TEST_F(ArraysTest, ofBytesAreColumns) {
    const std::vector<std::uint8_t> values{0, 255};
    const Array column = bytes(values);
    EXPECT_EQ(kxGetClass(column.get()), kxClass::kUint8);
    EXPECT_EQ(dimensionsOf(column), (kxDimensions{2, 1}));
    EXPECT_EQ(kxGetNumber(column.get(), 1), 255.0);
}

TEST_F(ArraysTest, ofArraysOwnTheirElements) {
    Array red = text(u"red");
    const kxArray* first = red.get();
    const Array column = cellOf(std::move(red), number(7));
    EXPECT_EQ(dimensionsOf(column), (kxDimensions{2, 1}));
    EXPECT_EQ(kxGetCell(column.get(), 0), first);
    EXPECT_EQ(kxGetNumber(kxGetCell(column.get(), 1), 0), 7.0);
}

TEST_F(ArraysTest, takeAnEmptyArrayForAnEmptyPlace) {
    const Array column = cellOf(Array(), text(u"red"));
    EXPECT_EQ(kxGetNumberOfElements(kxGetCell(column.get(), 0)), 0U);
}

TEST_F(ArraysTest, areEmptyOrOwnAnArrayUntilTheyReleaseIt) {
    EXPECT_FALSE(Array());
    Array red = text(u"red");
    EXPECT_TRUE(red);
    const kxArrayPtr released(red.release());
    EXPECT_FALSE(red);
    EXPECT_EQ(kxGetCharacters(released.get()), u"red");
}

}  // namespace
}  // namespace korvex
