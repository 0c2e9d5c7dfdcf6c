#include "compressedpaths/coding/ParallelLoop.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <stdexcept>
#include <vector>

namespace compressedpaths {
namespace {

TEST(ParallelLoop, doesEachPartOnce) {
    for (const std::size_t count : {0U, 1U, 2U, 1000U}) {
        std::vector<int> visits(count);  // those of a part are of its thread alone
        inParallel(count, [&](std::size_t first, std::size_t end) {
            for (std::size_t i = first; i < end; ++i) ++visits[i];
        });
        EXPECT_EQ(visits, std::vector<int>(count, 1));
    }
}

TEST(ParallelLoop, seesWhatTheCallerDidAndShowsWhatItDid) {
    for (int round = 0; round < 50; ++round) {
        std::vector<std::size_t> values(500);
        std::iota(values.begin(), values.end(), std::size_t{1});
        std::vector<std::size_t> squares(values.size());
        inParallel(values.size(), [&](std::size_t first, std::size_t end) {
            for (std::size_t i = first; i < end; ++i) squares[i] = values[i] * values[i];
        });
        ASSERT_EQ(std::accumulate(squares.begin(), squares.end(), std::size_t{0}), 41'791'750U);
    }
}

TEST(ParallelLoop, throwsTheFirstExceptionOfAPartAfterAllThatHaveBegunAreDone) {
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> running{0};
        const auto work = [&](std::size_t first, std::size_t end) {
            ++running;
            const bool isBad = first <= 70 && 70 < end;
            --running;
            if (isBad) throw std::runtime_error("part of 70");
        };
        EXPECT_THROW(inParallel(100, work), std::runtime_error);
        EXPECT_EQ(running, 0);
    }
}

}  // namespace
}  // namespace compressedpaths
