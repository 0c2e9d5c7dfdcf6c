#include "zqpaths/set/BackgroundWork.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

namespace zqpaths {
namespace {

TEST(BackgroundWork, doesOneThingAfterAnotherOnOtherThreads) {
    std::vector<int> done;
    BackgroundWork work;
    for (int i = 0; i < 100; ++i)
        work.start([&done, i, caller = std::this_thread::get_id()] {
            EXPECT_NE(std::this_thread::get_id(), caller);
            done.push_back(i);
        });
    work.finish();
    ASSERT_EQ(done.size(), 100U);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(done[static_cast<std::size_t>(i)], i);
}

TEST(BackgroundWork, throwsOnceWhatItsWorkThrew) {
    BackgroundWork work;
    EXPECT_FALSE(work.hasFailed());
    work.start([] { throw std::runtime_error("at work"); });
    while (!work.hasFailed()) std::this_thread::yield();
    EXPECT_THROW(work.finish(), std::runtime_error);
    EXPECT_FALSE(work.hasFailed());
    EXPECT_NO_THROW(work.finish());
}

TEST(BackgroundWork, doesNotStartAfterAFailure) {
    BackgroundWork work;
    work.start([] { throw std::runtime_error("at work"); });
    EXPECT_THROW(work.start([] { ADD_FAILURE(); }), std::runtime_error);
}

TEST(BackgroundWork, isDoneWhenItIsGone) {
    bool isDone = false;
    {
        BackgroundWork work;
        work.start([&isDone] { isDone = true; });
    }
    EXPECT_TRUE(isDone);
}

}  // namespace
}  // namespace zqpaths
