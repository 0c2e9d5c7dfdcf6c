#include "zqpaths/choosing/Permutation.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <set>
#include <vector>

namespace zqpaths {
namespace {

using testing::ElementsAre;

std::vector<std::uint64_t> allOf(const Permutation& order) {
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t place = 0; place < order.size(); ++place) numbers.push_back(order[place]);
    return numbers;
}

/// Whether each number below the size occurs once.
bool isComplete(const Permutation& order) {
    std::vector<bool> seen(order.size());
    for (std::uint64_t place = 0; place < order.size(); ++place) {
        const std::uint64_t number = order[place];
        if (number >= order.size() || seen[number]) return false;
        seen[number] = true;
    }
    return true;
}

/// The sum over all cells of (found - expected)^2 / expected; about the number of cells if all are
/// equally likely.
double chiSquare(const std::vector<std::uint64_t>& cells) {
    double total = 0;
    for (const std::uint64_t found : cells) total += static_cast<double>(found);
    const double expected = total / static_cast<double>(cells.size());
    double sum = 0;
    for (const std::uint64_t found : cells)
        sum += std::pow(static_cast<double>(found) - expected, 2) / expected;
    return sum;
}

/// The mean of chi-square and five standard deviations above it.
double boundFor(std::size_t cells) {
    const auto degrees = static_cast<double>(cells - 1);
    return degrees + 5 * std::sqrt(2 * degrees);
}

TEST(Permutation, hasEachNumberOnceAtEverySize) {
    for (std::uint64_t size = 0; size <= 3'000; ++size)
        ASSERT_TRUE(isComplete(Permutation(size, size * 31))) << size;
}

TEST(Permutation, hasEachNumberOnceForEverySeed) {
    for (std::uint64_t seed = 0; seed < 2'000; ++seed)
        for (const std::uint64_t size : {2U, 3U, 5U, 16U, 17U, 257U})
            ASSERT_TRUE(isComplete(Permutation(size, seed))) << size << " with seed " << seed;
}

// The values were computed apart, with unbounded integers cut to 64 bits.
TEST(Permutation, isTheSameOnEveryMachine) {
    EXPECT_THAT(allOf(Permutation(10, 0)), ElementsAre(6, 4, 8, 9, 3, 7, 0, 5, 2, 1));
    EXPECT_THAT(allOf(Permutation(10, 7)), ElementsAre(9, 3, 7, 8, 1, 2, 0, 4, 5, 6));
    const Permutation wide(7'300'000, 42);
    EXPECT_THAT((std::vector{wide[0], wide[1], wide[7'299'999]}),
                ElementsAre(1'764'816, 5'355'675, 1'768'468));
    const Permutation widest(std::numeric_limits<std::uint64_t>::max(), 1);
    EXPECT_THAT((std::vector{widest[0], widest[1]}),
                ElementsAre(11'172'939'434'637'437'434U, 7'858'421'003'467'053'637U));
}

TEST(Permutation, dependsOnTheSeed) {
    std::uint64_t same = 0;
    const Permutation one(1'000, 1);
    const Permutation other(1'000, 2);
    for (std::uint64_t place = 0; place < 1'000; ++place) same += one[place] == other[place];
    EXPECT_LT(same, 10);  // one is expected of two orders that have nothing to do with each other
}

TEST(Permutation, dependsOnTheSize) {
    std::uint64_t same = 0;
    const Permutation one(1'000, 1);
    const Permutation other(1'001, 1);
    for (std::uint64_t place = 0; place < 1'000; ++place) same += one[place] == other[place];
    EXPECT_LT(same, 10);
}

// The values were computed apart, as above.
TEST(SeedOfEpoch, isTheSameOnEveryMachine) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(seedOfEpoch(7, 0), 7U);
    EXPECT_EQ(seedOfEpoch(0, 1), 6'238'072'747'940'578'789U);
    EXPECT_EQ(seedOfEpoch(7, 1), 6'238'072'747'940'578'796U);
    EXPECT_EQ(seedOfEpoch(7, 2), 15'839'785'061'582'574'737U);
    EXPECT_EQ(seedOfEpoch(kMost, kMost), 13'029'008'266'876'403'066U);
}

TEST(SeedOfEpoch, isAnotherOneForEachOfManySeedsAndEpochs) {
    std::set<std::uint64_t> seeds;
    for (std::uint64_t seed = 0; seed < 200; ++seed)
        for (std::uint64_t epoch = 0; epoch < 200; ++epoch) seeds.insert(seedOfEpoch(seed, epoch));
    EXPECT_EQ(seeds.size(), 200U * 200U);
}

TEST(Permutation, givesAllOrdersOfFewNumbersEquallyOften) {
    std::vector<std::uint64_t> cells(6);
    for (std::uint64_t seed = 0; seed < 6'000; ++seed) {
        const Permutation order(3, seed);
        ++cells[order[0] * 2 + (order[1] > order[2] ? 1 : 0)];
    }
    EXPECT_LT(chiSquare(cells), boundFor(cells.size()));
}

TEST(Permutation, givesEachNumberTheFirstPlaceEquallyOften) {
    for (const std::uint64_t size : {2U, 5U, 16U, 100U, 1'000U}) {
        std::vector<std::uint64_t> cells(size);
        for (std::uint64_t seed = 0; seed < size * 50; ++seed) ++cells[Permutation(size, seed)[0]];
        EXPECT_LT(chiSquare(cells), boundFor(cells.size())) << size;
    }
}

TEST(Permutation, spreadsNeighboursOverAllNumbers) {
    constexpr std::uint64_t kSize = 1'000'000;
    constexpr std::uint64_t kCells = 100;
    const Permutation order(kSize, 3);
    std::vector<std::uint64_t> cells(kCells);
    std::vector<std::uint64_t> distances(kCells);
    for (std::uint64_t place = 0; place < 20'000; ++place) {
        ++cells[order[place] * kCells / kSize];
        const std::uint64_t distance = (order[place + 1] + kSize - order[place]) % kSize;
        ++distances[distance * kCells / kSize];
    }
    EXPECT_LT(chiSquare(cells), boundFor(kCells));
    EXPECT_LT(chiSquare(distances), boundFor(kCells));
}

}  // namespace
}  // namespace zqpaths
