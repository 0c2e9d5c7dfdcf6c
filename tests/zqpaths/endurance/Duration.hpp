#pragma once
// How long a test of endurance goes on: a second, or as many as ZQ_SECONDS says.
//
//     for (const Duration duration; !duration.isOver();) ...
//
// Threads: never changes; any number of threads may ask it.

#include <chrono>
#include <cstdlib>

namespace zqpaths {

class Duration {
public:
    bool isOver() const noexcept { return std::chrono::steady_clock::now() >= end_; }

private:
    static std::chrono::seconds seconds() noexcept {
        const char* const given = std::getenv("ZQ_SECONDS");
        return std::chrono::seconds(given == nullptr ? 1 : std::atoi(given));
    }

    std::chrono::steady_clock::time_point end_ = std::chrono::steady_clock::now() + seconds();
};

}  // namespace zqpaths
