#include "tools/zqpaths/DeferredSignals.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

void send(int signal) {
    if (std::raise(signal) != 0) std::exit(3);
}

TEST(DeferredSignals, haveNothingToTellUntilOneComes) {
    const DeferredSignals signals;
    EXPECT_FALSE(DeferredSignals::isPending());
    EXPECT_NO_THROW(DeferredSignals::throwIfOneCame());
}

TEST(DeferredSignalsDeathTest, endTheProcessWhenTheWorkIsDone) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EXIT(
            {
                {
                    const DeferredSignals signals;
                    send(signal);
                    if (!DeferredSignals::isPending()) std::exit(1);
                }
                std::exit(2);
            },
            ::testing::KilledBySignal(signal), "");
    }
}

TEST(DeferredSignalsDeathTest, endTheProcessAfterTheWorkHasBeenLeft) {
    EXPECT_EXIT(
        {
            try {
                const DeferredSignals signals;
                send(SIGTERM);
                DeferredSignals::throwIfOneCame();
            } catch (const Failure&) {
                std::exit(1);
            }
        },
        ::testing::KilledBySignal(SIGTERM), "");
}

TEST(DeferredSignals, leaveIgnoredOnesIgnored) {
    const auto former = std::signal(SIGHUP, SIG_IGN);
    {
        const DeferredSignals signals;
        send(SIGHUP);
        EXPECT_FALSE(DeferredSignals::isPending());
    }
    static_cast<void>(std::signal(SIGHUP, former));
}

}  // namespace
}  // namespace zqpaths::program
