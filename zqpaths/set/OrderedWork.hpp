#pragma once
// Work in numbered pieces that any thread makes and the calling thread takes, in order:
//
//     makeInOrder(slices.size(), threads,
//                 [&](std::size_t i) { return code(slices[i]); },    // on any thread
//                 [&](Coded coded) { set.add(coded); });             // here, 0, 1, 2 ...
//
// The calling thread makes pieces, too, while the one that it is to take is not ready. At most
// kPiecesAhead pieces for each thread are made before they are taken, so that memory is bounded.
// A piece that could not be made is an error when it is to be taken: whatever the threads do, it is
// the first one, and those before it have been taken.
//
// Threads: those that are started are joined before the call returns.

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace zqpaths {

inline constexpr std::size_t kPiecesAhead = 4;

/// What the threads share. A piece that has been made waits in the slot of its number.
template <class Piece, class Make>
class OrderedWork {
public:
    OrderedWork(std::size_t count, unsigned threads, Make& make)
        : count_(count), make_(make), slots_(kPiecesAhead * threads) {}
    OrderedWork(const OrderedWork&) = delete;
    OrderedWork& operator=(const OrderedWork&) = delete;
    ~OrderedWork() {
        {
            const std::lock_guard lock(mutex_);
            next_ = count_;  // nobody begins another
            taken_ = count_;
        }
        changed_.notify_all();
        for (std::thread& thread : threads_) thread.join();
    }

    /// Starts so many threads, or as many as the system has.
    void start(unsigned threads) {
        threads_.reserve(threads);
        try {
            while (threads_.size() < threads) threads_.emplace_back([this] { makeAll(); });
        } catch (const std::system_error&) {
            return;  // the others and the calling thread do it all
        }
    }

    /// The next piece, made here if no other thread has begun it. Throws what making it threw.
    Piece take() {
        std::unique_lock lock(mutex_);
        Slot& slot = slots_[taken_ % slots_.size()];
        while (!slot.isMade) {
            if (mayBegin())
                makeOne(lock);
            else
                changed_.wait(lock);
        }
        if (slot.error) std::rethrow_exception(slot.error);
        Piece piece = std::move(*slot.piece);
        slot = {};
        ++taken_;
        lock.unlock();
        changed_.notify_all();
        return piece;
    }

private:
    struct Slot {
        bool isMade = false;
        std::optional<Piece> piece;
        std::exception_ptr error;
    };

    bool mayBegin() const noexcept { return next_ < count_ && next_ - taken_ < slots_.size(); }

    void makeAll() {
        std::unique_lock lock(mutex_);
        while (next_ < count_) {
            if (mayBegin())
                makeOne(lock);
            else
                changed_.wait(lock);
        }
    }

    void makeOne(std::unique_lock<std::mutex>& lock) {
        const std::size_t number = next_++;
        Slot& slot = slots_[number % slots_.size()];  // nobody else touches it until it is made
        lock.unlock();
        try {
            slot.piece.emplace(make_(number));
        } catch (...) {
            slot.error = std::current_exception();
        }
        lock.lock();
        slot.isMade = true;
        if (slot.error) next_ = count_;  // what comes after it is not taken
        changed_.notify_all();
    }

    std::size_t count_;
    Make& make_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Slot> slots_;
    std::size_t next_ = 0;   // piece to be begun
    std::size_t taken_ = 0;  // pieces that were taken
    std::vector<std::thread> threads_;
};

/// As many threads as there are processors for them.
inline unsigned threadCount() noexcept {
    return std::max(1U, std::thread::hardware_concurrency());
}

/// Calls `take(make(0))` to `take(make(count - 1))`. If `take` returns bool, false ends it, and is
/// returned. Throws the first exception of either; the rest is then not done.
template <class Make, class Take>
bool makeInOrder(std::size_t count, unsigned threads, Make make, Take take) {
    using Piece = std::remove_cvref_t<std::invoke_result_t<Make&, std::size_t>>;
    const auto goesOnAfter = [&take](Piece piece) -> bool {
        if constexpr (std::is_void_v<std::invoke_result_t<Take&, Piece>>) {
            take(std::move(piece));
            return true;
        } else {
            return take(std::move(piece));
        }
    };
    if (threads <= 1 || count <= 1) {
        for (std::size_t number = 0; number < count; ++number)
            if (!goesOnAfter(make(number))) return false;
        return true;
    }
    const auto most = static_cast<unsigned>(std::min<std::size_t>(threads, count));
    OrderedWork<Piece, Make> work(count, most, make);
    work.start(most - 1);
    for (std::size_t number = 0; number < count; ++number)
        if (!goesOnAfter(work.take())) return false;
    return true;
}

}  // namespace zqpaths
