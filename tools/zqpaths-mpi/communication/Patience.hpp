#pragma once
// Patience says how long to sleep before looking again for what others send: short at first, then
// longer, up to a millisecond; never long while bytes are on their way.
//
//     Patience patience;
//     while (!isOver()) {
//         if (look())
//             patience.renew();
//         else
//             std::this_thread::sleep_for(patience.next(mailbox.isMoving()));
//     }
//
// Threads: an object belongs to one thread at a time.

#include <algorithm>
#include <chrono>

namespace zqpaths::program::mpi {

class Patience {
public:
    static constexpr std::chrono::microseconds kShortest{20};
    static constexpr std::chrono::microseconds kLongestMoving{50};
    static constexpr std::chrono::microseconds kLongest{1000};

    void renew() noexcept { next_ = kShortest; }

    /// The time to sleep; the next one is half as long again.
    std::chrono::microseconds next(bool isMoving) noexcept {
        const std::chrono::microseconds now = next_;
        next_ = std::min(next_ + next_ / 2, kLongest);
        return isMoving ? std::min(now, kLongestMoving) : now;
    }

private:
    std::chrono::microseconds next_ = kShortest;
};

}  // namespace zqpaths::program::mpi
