#pragma once
// BackgroundWork does one thing after another on a thread of its own, while the caller prepares the
// next:
//
//     BackgroundWork work;
//     work.start([&] { write(first); });
//     work.start([&] { write(second); });  // waits for the first
//     work.finish();
//
// Threads: belongs to one thread at a time. There is a thread from start to finish only; one that
// the system does not give is done without.

#include <atomic>
#include <exception>
#include <system_error>
#include <thread>
#include <utility>

namespace zqpaths {

class BackgroundWork {
public:
    BackgroundWork() = default;
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;
    ~BackgroundWork() { join(); }

    /// Calls `work` on another thread, after what was started before. Throws as finish.
    template <class Work>
    void start(Work work) {
        finish();
        try {
            thread_ = std::thread([this, work]() mutable {
                try {
                    work();
                } catch (...) {
                    error_ = std::current_exception();
                    hasFailed_.store(true, std::memory_order_release);
                }
            });
        } catch (const std::system_error&) {
            work();
        }
    }

    /// Waits for what was started, and throws what it threw.
    void finish() {
        join();
        hasFailed_.store(false, std::memory_order_relaxed);
        if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
    }

    /// True if finish would throw; it may say so late.
    bool hasFailed() const noexcept { return hasFailed_.load(std::memory_order_acquire); }

private:
    void join() noexcept {
        if (thread_.joinable()) thread_.join();
    }

    std::thread thread_;
    std::atomic<bool> hasFailed_{false};
    std::exception_ptr error_;
};

}  // namespace zqpaths
