#include "zqpaths/choosing/Share.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

std::vector<std::uint64_t> numbersOf(const Share& share) {
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
    EXPECT_EQ(numbersOf({10, 0, 3}), (Numbers{1, 4, 7, 10}));
    EXPECT_EQ(numbersOf({10, 2, 3}), (Numbers{3, 6, 9}));
    EXPECT_EQ(numbersOf({10, 0, 1}).size(), 10);
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

TEST(Share, isRefusedToReadersThatThereAreNot) {
    EXPECT_EQ(refusalOf(0, 0), "there is no reader");
    EXPECT_EQ(refusalOf(3, 3), "rank 3: of 3 readers the last has rank 2");
    EXPECT_EQ(refusalOf(2, 3), "none");
}

}  // namespace
}  // namespace zqpaths
