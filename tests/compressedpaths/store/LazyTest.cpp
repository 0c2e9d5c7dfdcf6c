#include "compressedpaths/store/Lazy.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

namespace compressedpaths {
namespace {

TEST(Lazy, makesItsValueOnceForManyThreads) {
    for (int round = 0; round < 50; ++round) {
        Lazy<std::vector<int>> lazy;
        std::atomic<int> made{0};
        std::atomic<int> right{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                const std::vector<int>& value = lazy.get([&] {
                    ++made;
                    return std::vector<int>(1000, 7);
                });
                if (value == std::vector<int>(1000, 7)) ++right;
            });
        }
        for (std::thread& thread : threads) thread.join();
        ASSERT_EQ(made, 1);
        ASSERT_EQ(right, 4);
    }
}

TEST(Lazy, makesItsValueAnewAfterItWasDropped) {
    Lazy<int> lazy;
    EXPECT_EQ(lazy.get([] { return 1; }), 1);
    EXPECT_EQ(lazy.get([] { return 2; }), 1);
    lazy.reset();
    EXPECT_EQ(lazy.get([] { return 3; }), 3);
}

TEST(Lazy, makesNoValueThatIsGiven) {
    Lazy<int> lazy;
    lazy.set(5);
    EXPECT_EQ(lazy.get([] { return 1; }), 5);
    lazy.reset();
    EXPECT_EQ(lazy.get([] { return 1; }), 1);
}

TEST(Lazy, hasNoValueWhoseMakingFailed) {
    Lazy<int> lazy;
    EXPECT_THROW(lazy.get([]() -> int { throw std::runtime_error("none"); }), std::runtime_error);
    EXPECT_EQ(lazy.get([] { return 4; }), 4);
}

}  // namespace
}  // namespace compressedpaths
