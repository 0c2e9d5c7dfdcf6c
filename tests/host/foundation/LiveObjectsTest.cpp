#include "host/foundation/LiveObjects.hpp"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "host/arrays/kxArray.hpp"

namespace foundation::core {
namespace {

TEST(LiveObjects, countAnArrayAsLongAsItLives) {
    const LiveObjects before = liveObjects();
    kxArrayPtr array(kxCreateCharacters(u"name"));
    LiveObjects withArray = before;
    ++withArray.arrays;
    EXPECT_EQ(liveObjects(), withArray);
    array.reset();
    EXPECT_EQ(liveObjects(), before);
}

TEST(LiveObjects, countEachArrayInACell) {
    const std::size_t before = liveObjects().arrays;
    const kxArrayPtr cell(kxCreateCell({3, 1}));
    kxReplaceCell(cell.get(), 0, kxCreateCharacters(u"a"));
    kxReplaceCell(cell.get(), 2, kxCreateCharacters(u"b"));
    EXPECT_EQ(liveObjects().arrays, before + 3);
}

TEST(LiveObjects, doNotCountWhatIsReadWhereNothingWasPut) {
    const kxArrayPtr cell(kxCreateCell({3, 1}));
    const LiveObjects before = liveObjects();
    EXPECT_EQ(kxGetNumberOfElements(kxGetCell(cell.get(), 1)), 0U);
    EXPECT_EQ(liveObjects(), before);
}

TEST(LiveObjects, loseNoCountToThreads) {
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kKept = 10'000;
    const std::size_t before = liveObjects().arrays;
    std::vector<std::vector<kxArrayPtr>> kept(kThreads);
    {
        std::vector<std::jthread> threads;
        threads.reserve(kThreads);
        for (std::vector<kxArrayPtr>& mine : kept) {
            threads.emplace_back([&mine] {
                for (std::size_t i = 0; i < kKept; ++i) {
                    mine.emplace_back(kxCreateCharacters(u"kept"));
                    kxDestroyArray(kxCreateCharacters(u"freed"));
                }
            });
        }
    }
    EXPECT_EQ(liveObjects().arrays, before + kThreads * kKept);
    kept.clear();
    EXPECT_EQ(liveObjects().arrays, before);
}

}  // namespace
}  // namespace foundation::core
