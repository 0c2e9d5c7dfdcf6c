#include "compressedpaths/store/FlatArray.hpp"

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <vector>

namespace compressedpaths {
namespace {

using Numbers = std::vector<std::uint32_t>;

/// Values that somebody else owns, with what may be read past them.
class Lent {
public:
    explicit Lent(std::size_t size) : values_(size + 4), size_(size) {
        std::iota(values_.begin(), values_.end(), 1U);
    }

    FlatArray<std::uint32_t> array() const {
        return FlatArray<std::uint32_t>::borrowing({values_.data(), size_});
    }
    const std::uint32_t* data() const { return values_.data(); }
    Numbers values() const {
        return {values_.begin(), values_.begin() + static_cast<std::ptrdiff_t>(size_)};
    }

private:
    Numbers values_;
    std::size_t size_;
};

Numbers listOf(const FlatArray<std::uint32_t>& array) {
    return {array.data(), array.end()};
}

FlatArray<std::uint32_t> arrayOf(const Numbers& values) {
    FlatArray<std::uint32_t> array;
    for (const std::uint32_t value : values) array.push(value);
    return array;
}

TEST(FlatArray, readsBorrowedValuesWhereTheyStand) {
    const Lent lent(3);
    const FlatArray<std::uint32_t> array = lent.array();
    EXPECT_EQ(array.data(), lent.data());
    EXPECT_EQ(listOf(array), (Numbers{1, 2, 3}));
    EXPECT_EQ(array.heapByteSize(), 0U);
}

TEST(FlatArray, copiesBorrowedValuesWhenItIsFirstChanged) {
    const Lent lent(3);
    FlatArray<std::uint32_t> array = lent.array();
    array.push(9);
    array.at(0) = 7;
    EXPECT_EQ(listOf(array), (Numbers{7, 2, 3, 9}));
    EXPECT_EQ(lent.values(), (Numbers{1, 2, 3}));
}

TEST(FlatArray, keepsItsOwnValuesWhereTheyAre) {
    FlatArray<std::uint32_t> array = arrayOf({1, 2});
    const std::uint32_t* const before = array.data();
    array.own();
    EXPECT_EQ(array.data(), before);
}

TEST(FlatArray, hasACopyOfItsOwnOfBorrowedValues) {
    const Lent lent(2);
    const FlatArray<std::uint32_t> array = lent.array();
    FlatArray<std::uint32_t> copy(array);
    copy.at(0) = 5;
    EXPECT_EQ(listOf(array), (Numbers{1, 2}));
    EXPECT_EQ(listOf(copy), (Numbers{5, 2}));
}

// None of these values came from the heap, so that freeing one would end the program.
TEST(FlatArray, freesNoBorrowedValues) {
    const std::array<std::uint32_t, 8> values{};
    for (const std::size_t size : {std::size_t{0}, std::size_t{4}}) {
        auto array = FlatArray<std::uint32_t>::borrowing({values.data(), size});
        array.shrink();
        array.own();
        EXPECT_EQ(array.size(), size);
        auto dropped = FlatArray<std::uint32_t>::borrowing({values.data(), size});
        dropped = arrayOf({1});
        EXPECT_EQ(listOf(dropped), (Numbers{1}));
        auto replaced = FlatArray<std::uint32_t>::borrowing({values.data(), size});
        replaced.assign(2, 3);
        EXPECT_EQ(listOf(replaced), (Numbers{3, 3}));
    }
}

TEST(FlatArray, canGrowFromBorrowedValuesOfWhichThereAreNone) {
    const Lent lent(0);
    FlatArray<std::uint32_t> array = lent.array();
    array.own();
    EXPECT_TRUE(array.isEmpty());
    array.push(4);
    EXPECT_EQ(listOf(array), (Numbers{4}));
}

TEST(FlatArray, hasAllValuesHoweverItGrew) {
    FlatArray<std::uint32_t> array;
    Numbers expected;
    for (std::uint32_t value = 0; value < 3000; ++value) {
        array.push(value);
        expected.push_back(value);
    }
    const Numbers more(500, 77);
    array.reserveFor(more.size());
    array.append(more.data(), more.size());
    expected.insert(expected.end(), more.begin(), more.end());
    EXPECT_EQ(listOf(array), expected);
}

TEST(FlatArray, standsEmptyByAnEighthAtMostWhenItGrowsByOne) {
    FlatArray<std::uint32_t> array;
    for (std::uint32_t value = 0; value < 10000; ++value) {
        array.push(value);
        ASSERT_LE(array.heapByteSize() / sizeof value, array.size() + array.size() / 8 + 4);
    }
}

TEST(FlatArray, takesAValueOfItsOwn) {
    FlatArray<std::uint32_t> array = arrayOf({6});
    for (int i = 0; i < 100; ++i) array.push(array[0]);
    EXPECT_EQ(listOf(array), Numbers(101, 6));
}

TEST(FlatArray, insertsBeforeBetweenAndAfterItsValues) {
    FlatArray<std::uint32_t> array = arrayOf({2, 4});
    array.reserveFor(3);
    array.insert(0, 1);
    array.insert(2, 3);
    array.insert(4, 5);
    EXPECT_EQ(listOf(array), (Numbers{1, 2, 3, 4, 5}));
}

TEST(FlatArray, hasValuesThatAreWrittenIntoItsEnd) {
    FlatArray<std::uint32_t> array = arrayOf({1});
    array.reserveFor(2);
    std::uint32_t* const end = array.extend(2);
    end[0] = 2;
    end[1] = 3;
    EXPECT_EQ(listOf(array), (Numbers{1, 2, 3}));
}

TEST(FlatArray, keepsWhatStandsBeforeWhereItIsCut) {
    FlatArray<std::uint32_t> array = arrayOf({1, 2, 3});
    array.truncate(1);
    array.push(9);
    EXPECT_EQ(listOf(array), (Numbers{1, 9}));

    const Lent lent(3);
    FlatArray<std::uint32_t> borrowed = lent.array();
    borrowed.truncate(1);
    borrowed.push(9);
    EXPECT_EQ(listOf(borrowed), (Numbers{1, 9}));
    EXPECT_EQ(lent.values(), (Numbers{1, 2, 3}));
}

TEST(FlatArray, givesBackWhatStandsEmpty) {
    FlatArray<std::uint32_t> array = arrayOf({1, 2, 3});
    array.reserveFor(1000);
    array.shrink();
    EXPECT_EQ(array.heapByteSize(), 3 * sizeof(std::uint32_t));
    EXPECT_EQ(listOf(array), (Numbers{1, 2, 3}));
    array.truncate(0);
    array.shrink();
    EXPECT_EQ(array.heapByteSize(), 0U);
    array.push(8);
    EXPECT_EQ(listOf(array), (Numbers{8}));
}

TEST(FlatArray, hasItsValuesWhenItsBlockGetsPagesOfItsOwnAndWhenItLosesThem) {
    constexpr std::size_t kLarge = 3 * kMappedSize / sizeof(std::uint32_t);
    Numbers expected(kLarge);
    std::iota(expected.begin(), expected.end(), 0U);
    FlatArray<std::uint32_t> array;
    for (const std::uint32_t value : expected) array.push(value);
    EXPECT_EQ(listOf(array), expected);
    EXPECT_EQ(listOf(FlatArray(std::as_const(array))), expected);
    for (const std::size_t size : {kLarge / 2, kLarge / 4, std::size_t{3}}) {
        array.truncate(size);
        array.shrink();
        expected.resize(size);
        EXPECT_EQ(listOf(array), expected);
    }
    array.reserveFor(kLarge);
    EXPECT_EQ(listOf(array), expected);
}

TEST(FlatArray, isUnchangedByRoomThatNobodyHas) {
    FlatArray<std::uint32_t> array = arrayOf({1, 2});
    EXPECT_THROW(array.reserveFor(std::numeric_limits<std::size_t>::max() / 2), std::bad_alloc);
    EXPECT_EQ(listOf(array), (Numbers{1, 2}));
}

}  // namespace
}  // namespace compressedpaths
