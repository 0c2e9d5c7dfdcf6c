#include "zqpaths/set/OrderedWork.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zqpaths {
namespace {

class OrderedWork : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Threads, OrderedWork, testing::Values(1, 2, 3, 16));

TEST_P(OrderedWork, takesThePiecesInOrderOnTheCallingThread) {
    const std::thread::id caller = std::this_thread::get_id();
    std::vector<std::string> taken;
    makeInOrder(
        1000, GetParam(), [](std::size_t number) { return std::to_string(number); },
        [&](const std::string& piece) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            taken.push_back(piece);
        });
    ASSERT_EQ(taken.size(), 1000U);
    for (std::size_t i = 0; i < taken.size(); ++i) EXPECT_EQ(taken[i], std::to_string(i));
}

TEST_P(OrderedWork, doesNothingForNoPieces) {
    makeInOrder(
        0, GetParam(), [](std::size_t number) { return number; },
        [](std::size_t) { ADD_FAILURE(); });
}

TEST_P(OrderedWork, isNeverFarAhead) {
    std::atomic<std::size_t> takenCount{0};
    std::atomic<std::size_t> farthest{0};
    makeInOrder(
        500, GetParam(),
        [&](std::size_t number) {
            const std::size_t ahead = number - takenCount;
            for (std::size_t before = farthest; before < ahead;)
                if (farthest.compare_exchange_weak(before, ahead)) break;
            return number;
        },
        [&](std::size_t) { ++takenCount; });
    // The count is raised after a piece has left its slot: one more may have been begun by then.
    EXPECT_LE(farthest, kPiecesAhead * GetParam());
}

TEST_P(OrderedWork, throwsWhatMakingThrows) {
    std::size_t takenCount = 0;
    const auto work = [&] {
        makeInOrder(
            100, GetParam(),
            [](std::size_t number) {
                if (number == 50) throw std::runtime_error("fifty");
                return number;
            },
            [&](std::size_t number) {
                EXPECT_EQ(number, takenCount);
                ++takenCount;
            });
    };
    EXPECT_THROW(work(), std::runtime_error);
    EXPECT_EQ(takenCount, 50U);  // all that come before it
}

// Whatever the threads were about to do after it.
TEST_P(OrderedWork, endsWhenTakingSaysSo) {
    std::size_t takenCount = 0;
    const auto takeTen = [&](std::size_t) { return ++takenCount < 10; };
    EXPECT_FALSE(makeInOrder(
        100, GetParam(),
        [](std::size_t number) {
            if (number >= 10) throw std::runtime_error("too far");
            return number;
        },
        takeTen));
    EXPECT_EQ(takenCount, 10U);
    EXPECT_TRUE(makeInOrder(
        100, GetParam(), [](std::size_t number) { return number; },
        [](std::size_t) { return true; }));
}

TEST_P(OrderedWork, throwsWhatTakingThrows) {
    std::size_t takenCount = 0;
    const auto work = [&] {
        makeInOrder(
            100, GetParam(), [](std::size_t number) { return number; },
            [&](std::size_t) {
                if (++takenCount == 10) throw std::runtime_error("ten");
            });
    };
    EXPECT_THROW(work(), std::runtime_error);
    EXPECT_EQ(takenCount, 10U);
}

}  // namespace
}  // namespace zqpaths
