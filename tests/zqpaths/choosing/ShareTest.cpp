#include "zqpaths/choosing/Share.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

using testing::ElementsAre;

template <class AnyShare>
std::vector<std::uint64_t> numbersOf(const AnyShare& share) {
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t place = 0; place < share.size(); ++place) numbers.push_back(share[place]);
    return numbers;
}

std::string refusalOf(std::uint64_t rank, std::uint64_t readerCount) {
    try {
        const Share share(10, rank, readerCount);
        return "none";
    } catch (const Error& error) {
        EXPECT_EQ(error.kind(), ErrorKind::kWrongUse);
        return error.what();
    }
}

TEST(Share, isSpreadOverTheWholeSet) {
    using Numbers = std::vector<std::uint64_t>;
    EXPECT_EQ(numbersOf(Share(10, 0, 3)), (Numbers{1, 4, 7, 10}));
    EXPECT_EQ(numbersOf(Share(10, 2, 3)), (Numbers{3, 6, 9}));
    EXPECT_EQ(numbersOf(Share(10, 0, 1)).size(), 10);
}

TEST(Share, isNothingForMoreReadersThanPaths) {
    EXPECT_EQ(Share(3, 3, 5).size(), 0);
    EXPECT_EQ(Share(0, 0, 1).size(), 0);
}

TEST(Share, givesEachNumberToOneReader) {
    for (std::uint64_t pathCount = 0; pathCount <= 40; ++pathCount) {
        for (std::uint64_t readerCount = 1; readerCount <= 45; ++readerCount) {
            std::vector<std::uint64_t> all;
            std::uint64_t largest = 0;
            std::uint64_t smallest = std::numeric_limits<std::uint64_t>::max();
            for (std::uint64_t rank = 0; rank < readerCount; ++rank) {
                const Share share(pathCount, rank, readerCount);
                for (const std::uint64_t number : numbersOf(share)) all.push_back(number);
                largest = std::max(largest, share.size());
                smallest = std::min(smallest, share.size());
            }
            std::sort(all.begin(), all.end());
            ASSERT_EQ(all, numbersOf(Share(pathCount, 0, 1))) << pathCount << ' ' << readerCount;
            ASSERT_LE(largest - smallest, 1U);
        }
    }
}

TEST(ShuffledShare, givesEachNumberToOneReader) {
    for (std::uint64_t pathCount = 0; pathCount <= 40; ++pathCount) {
        for (std::uint64_t readerCount = 1; readerCount <= 45; ++readerCount) {
            std::vector<std::uint64_t> all;
            for (std::uint64_t rank = 0; rank < readerCount; ++rank) {
                const ShuffledShare share(pathCount, rank, readerCount, 5, pathCount);
                ASSERT_EQ(share.size(), Share(pathCount, rank, readerCount).size());
                for (const std::uint64_t number : numbersOf(share)) all.push_back(number);
            }
            std::sort(all.begin(), all.end());
            ASSERT_EQ(all, numbersOf(Share(pathCount, 0, 1))) << pathCount << ' ' << readerCount;
        }
    }
}

// The values were computed apart, with unbounded integers cut to 64 bits.
TEST(ShuffledShare, isTheSameOnEveryMachine) {
    EXPECT_THAT(numbersOf(ShuffledShare(10, 0, 3, 7)), ElementsAre(10, 9, 1, 7));
    EXPECT_THAT(numbersOf(ShuffledShare(10, 2, 3, 7)), ElementsAre(8, 3, 6));
    EXPECT_THAT(numbersOf(ShuffledShare(10, 0, 3, 7, 1)), ElementsAre(8, 10, 9, 7));
    EXPECT_THAT(numbersOf(ShuffledShare(10, 1, 3, 7, 1)), ElementsAre(3, 1, 4));
    EXPECT_THAT(numbersOf(ShuffledShare(10, 1, 3, 7, 2)), ElementsAre(6, 5, 2));
    const ShuffledShare wide(7'300'000, 5, 8, 42, 3);
    EXPECT_THAT((std::vector{wide[0], wide[1], wide[wide.size() - 1]}),
                ElementsAre(294'441, 675'708, 6'914'309));
}

TEST(ShuffledShare, isTheShuffleByItsSeedInTheFirstEpoch) {
    const Permutation shuffle(1'000, 9);
    const ShuffledShare whole(1'000, 0, 1, 9);
    for (std::uint64_t place = 0; place < 1'000; ++place)
        ASSERT_EQ(whole[place], shuffle[place] + 1);
}

TEST(ShuffledShare, isAnotherOneInEveryEpoch) {
    for (std::uint64_t epoch = 0; epoch < 20; ++epoch) {
        const ShuffledShare one(10'000, 1, 4, 9, epoch);
        const ShuffledShare next(10'000, 1, 4, 9, epoch + 1);
        const ShuffledShare ofNextSeed(10'000, 1, 4, 10, epoch);
        std::uint64_t same = 0;
        for (std::uint64_t place = 0; place < one.size(); ++place)
            same += (one[place] == next[place]) + (next[place] == ofNextSeed[place]);
        EXPECT_LT(same, 10) << epoch;  // a half is expected of orders that have nothing in common
    }
}

TEST(ShuffledShare, isRefusedToReadersThatThereAreNot) {
    EXPECT_THROW(ShuffledShare(10, 0, 0, 7), Error);
    EXPECT_THROW(ShuffledShare(10, 3, 3, 7), Error);
}

TEST(Share, isRefusedToReadersThatThereAreNot) {
    EXPECT_EQ(refusalOf(0, 0), "there is no reader");
    EXPECT_EQ(refusalOf(3, 3), "rank 3: of 3 readers the last has rank 2");
    EXPECT_EQ(refusalOf(2, 3), "none");
}

}  // namespace
}  // namespace zqpaths
