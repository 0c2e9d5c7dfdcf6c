#include "tools/zqpaths/progress/ProgressText.hpp"

#include <gtest/gtest.h>

namespace zqpaths::program {
namespace {

TEST(ProgressText, tellsAllThatIsKnown) {
    const ProgressState state{.work = "indexing",
                              .phase = "coding",
                              .done = 1'234,
                              .total = 5'678,
                              .part = 0.5,
                              .seconds = 4,
                              .phaseSeconds = 2};
    EXPECT_EQ(progressLine(state), "indexing: coding, 1,234 of 5,678 paths, 617/s, 50%, 4 s left");
    EXPECT_EQ(progressJson(state),
              R"({"work":"indexing","phase":"coding","unit":"paths","done":1234,"total":5678,)"
              R"("part":0.5,"seconds":4.0,"secondsLeft":4.0})");
}

TEST(ProgressText, leavesOutWhatIsNotKnown) {
    const ProgressState state{
        .work = "finding", .phase = "", .done = 30, .seconds = 3, .phaseSeconds = 3};
    EXPECT_EQ(progressLine(state), "finding: 30 paths, 10/s");
    EXPECT_EQ(progressJson(state),
              R"({"work":"finding","phase":null,"unit":"paths","done":30,"total":null,)"
              R"("part":null,"seconds":3.0,"secondsLeft":null})");
}

TEST(ProgressText, tellsBytesInMegabytes) {
    const ProgressState state{.work = "verifying",
                              .phase = "summing",
                              .unit = WorkUnit::kBytes,
                              .done = 50'400'000,
                              .total = 1'500'000'000,
                              .seconds = 2,
                              .phaseSeconds = 2};
    EXPECT_EQ(progressLine(state), "verifying: summing, 50 of 1,500 MB, 25 MB/s");
}

TEST(ProgressText, tellsTheTimeOfWhatCannotBeCounted) {
    const ProgressState state{
        .work = "indexing", .phase = "writing", .part = 0.999, .seconds = 99, .phaseSeconds = 65};
    EXPECT_EQ(progressLine(state), "indexing: writing, 1 min 5 s, 99%, 0 s left");
}

TEST(ProgressText, foretellsNothingFromNothing) {
    const ProgressState state{.work = "listing", .phase = "", .total = 7, .part = 0, .seconds = 1};
    EXPECT_EQ(progressLine(state), "listing: 0 of 7 paths, 0%");
    EXPECT_EQ(state.secondsLeft(), std::nullopt);
}

}  // namespace
}  // namespace zqpaths::program
