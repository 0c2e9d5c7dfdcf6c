#pragma once
// Lazy holds a value that is made when it is first asked for, by one of the threads that ask:
//
//     Lazy<std::vector<int>> squares;
//     squares.get([] { return std::vector{1, 4, 9}; });
//
// Threads: any number may call get; reset and moving belong to the one that changes the owner.

#include <atomic>
#include <mutex>
#include <utility>

namespace compressedpaths {

template <class Value>
class Lazy {
public:
    Lazy() = default;

    /// The value; made by `make()` if there is none. Throws what `make` throws.
    template <class Make>
    const Value& get(Make make) const {
        if (!isMade_.load(std::memory_order_acquire)) {
            const std::lock_guard lock(mutex_);
            if (!isMade_.load(std::memory_order_relaxed)) {
                value_ = make();
                isMade_.store(true, std::memory_order_release);
            }
        }
        return value_;
    }

    void set(Value value) noexcept {
        value_ = std::move(value);
        isMade_.store(true, std::memory_order_release);
    }

    /// Drops the value, which is then made anew when it is asked for.
    void reset() noexcept {
        if (!isMade_.load(std::memory_order_relaxed)) return;
        isMade_.store(false, std::memory_order_relaxed);
        value_ = Value();
    }

private:
    mutable std::mutex mutex_;
    mutable std::atomic<bool> isMade_{false};
    mutable Value value_;
};

}  // namespace compressedpaths
