#include "tools/zqpaths/progress/WorkPhases.hpp"

#include <gtest/gtest.h>

#include <thread>

namespace zqpaths::program {
namespace {

constexpr WorkUnit kPaths = WorkUnit::kPaths;

TEST(WorkPhases, knowNoPartWithoutATotal) {
    WorkPhases work({{"", kPaths, 1}});
    work.advance(0, 7);
    EXPECT_EQ(work.done(0), 7U);
    EXPECT_EQ(work.total(0), std::nullopt);
    EXPECT_EQ(work.partOfCurrent(), std::nullopt);
    work.expect(0, 28);
    EXPECT_EQ(work.total(0), 28U);
    EXPECT_DOUBLE_EQ(*work.partOfCurrent(), 0.25);
}

TEST(WorkPhases, ofNothingHaveNoPart) {
    WorkPhases work({{"", kPaths, 1}});
    work.expect(0, 0);
    EXPECT_EQ(work.partOfCurrent(), std::nullopt);
}

TEST(WorkPhases, areNoMoreThanDone) {
    WorkPhases work({{"", kPaths, 1}});
    work.expect(0, 10);
    work.advance(0, 20);
    EXPECT_DOUBLE_EQ(*work.partOfCurrent(), 1);
}

TEST(WorkPhases, haveSharesOfTheWhole) {
    WorkPhases work({{"reading", kPaths, 1}, {"coding", kPaths, 2}, {"writing", kPaths, 1}});
    EXPECT_EQ(work.shareForThoseBefore(), std::nullopt);
    EXPECT_DOUBLE_EQ(work.partDone(0), 0);
    EXPECT_DOUBLE_EQ(work.partDone(0.5), 0.125);
    work.begin(1);
    EXPECT_DOUBLE_EQ(*work.shareForThoseBefore(), 2);
    EXPECT_DOUBLE_EQ(work.partDone(0), 0.25);
    EXPECT_DOUBLE_EQ(work.partDone(0.5), 0.5);
    work.begin(2);
    EXPECT_DOUBLE_EQ(*work.shareForThoseBefore(), 1.0 / 3);
    EXPECT_DOUBLE_EQ(work.partDone(1), 1);
}

TEST(WorkPhases, countWhatIsDoneBeforeItsTurn) {
    WorkPhases work({{"reading", kPaths, 1}, {"coding", kPaths, 3}});
    work.expect(0, 1000);
    work.advance(0, 500);
    work.advance(1, 250);  // half of what was read: a quarter of all
    EXPECT_DOUBLE_EQ(work.partDone(*work.partOfCurrent()), (0.5 + 3 * 0.25) / 4);
    work.advance(0, 500);
    work.advance(1, 10'000);  // more than was read, as where others are coded anew
    EXPECT_DOUBLE_EQ(work.partDone(1), 1);
}

TEST(WorkPhases, areCountedOnAnyThread) {
    WorkPhases work({{"", kPaths, 1}});
    const auto count = [&work] {
        for (int i = 0; i < 10'000; ++i) work.advance(0, 1);
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(work.done(0), 20'000U);
}

}  // namespace
}  // namespace zqpaths::program
