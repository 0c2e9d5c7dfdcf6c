#include "zqpaths/set/SegmentJoining.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "zqpaths/set/CollectedPaths.hpp"

namespace zqpaths {
namespace {

using Sizes = std::vector<SegmentSize>;

Sizes sizesOf(const std::vector<std::uint64_t>& textSizes) {
    Sizes sizes;
    for (const std::uint64_t size : textSizes) sizes.push_back({1, size});
    return sizes;
}

constexpr std::uint64_t kLarge = CollectedPaths::kMaxTextSize / 2 + 1;

/// Joins the last segments where that is due; returns the text that was written for it.
std::uint64_t joinIfDue(Sizes& segments) {
    const std::size_t first = firstToJoin(segments);
    if (first >= segments.size()) return 0;
    SegmentSize joined{0, 0};
    for (std::size_t i = first; i < segments.size(); ++i) {
        joined.pathCount += segments[i].pathCount;
        joined.textSize += segments[i].textSize;
    }
    segments.resize(first);
    segments.push_back(joined);
    return joined.textSize;
}

TEST(SegmentJoining, leavesEightSmallSegments) {
    EXPECT_EQ(firstToJoin({}), 0U);
    EXPECT_EQ(firstToJoin(sizesOf({1, 1, 1, 1, 1, 1, 1, 1})), 8U);
}

TEST(SegmentJoining, joinsThoseThatAreNoLargerThanAllAfterThem) {
    EXPECT_EQ(firstToJoin(sizesOf({1, 1, 1, 1, 1, 1, 1, 1, 1})), 0U);
    EXPECT_EQ(firstToJoin(sizesOf({9, 1, 1, 1, 1, 1, 1, 1, 1})), 1U);
    EXPECT_EQ(firstToJoin(sizesOf({9, 8, 1, 1, 1, 1, 1, 1, 1})), 0U);
    EXPECT_EQ(firstToJoin(sizesOf({24, 8, 7, 1, 1, 1, 1, 1, 1})), 1U);
}

TEST(SegmentJoining, joinsTheLastTwoWhereEachIsLargerThanAllAfterIt) {
    EXPECT_EQ(firstToJoin(sizesOf({256, 128, 64, 32, 16, 8, 4, 2, 1})), 7U);
}

TEST(SegmentJoining, leavesALargeSegmentAndWhatIsBeforeIt) {
    EXPECT_EQ(firstToJoin(sizesOf({1, 1, 1, 1, 1, 1, 1, 1, kLarge, 1, 1})), 11U);
    EXPECT_EQ(firstToJoin(sizesOf({1, kLarge, 1, 1, 1, 1, 1, 1, 1, 1, 1})), 2U);
}

TEST(SegmentJoining, takesASegmentForLargeThatHasNoRoomForAnother) {
    EXPECT_TRUE(isSmall({CollectedPaths::kMaxPaths / 2, 1}));
    EXPECT_FALSE(isSmall({CollectedPaths::kMaxPaths / 2 + 1, 1}));
    EXPECT_TRUE(isSmall({1, kLarge - 1}));
    EXPECT_FALSE(isSmall({1, kLarge}));
}

TEST(SegmentJoining, leavesASetOfManySegmentsThatAreNearlyFull) {
    EXPECT_EQ(firstToJoin(Sizes(100, {CollectedPaths::kMaxPaths - 1, kLarge})), 100U);
}

TEST(SegmentJoining, writesAPathEightTimesInTenThousandAdditions) {
    Sizes segments;
    std::uint64_t written = 0;
    for (int i = 0; i < 10'000; ++i) {
        segments.push_back({1, 1});
        ++written;
        written += joinIfDue(segments);
        ASSERT_LE(segments.size(), kMostSmall);
    }
    EXPECT_LT(written, 9U * 10'000U);
}

TEST(SegmentJoining, keepsSegmentsFewWhateverTheSizesOfTheAdditions) {
    std::uint64_t state = 1;
    for (int set = 0; set < 100; ++set) {
        Sizes segments;
        std::uint64_t added = 0;
        std::uint64_t written = 0;
        for (int i = 0; i < 1000; ++i) {
            state = state * 6364136223846793005U + 1442695040888963407U;
            segments.push_back({1, 1 + (state >> 33) % (std::uint64_t{1} << (state >> 60))});
            added += segments.back().textSize;
            written += joinIfDue(segments);
            ASSERT_LE(segments.size(), kMostSmall);
        }
        EXPECT_LT(written, 12 * added);
    }
}

}  // namespace
}  // namespace zqpaths
