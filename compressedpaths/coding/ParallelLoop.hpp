#pragma once
// A loop whose parts run on all cores:
//
//     inParallel(names.size(), [&](std::size_t first, std::size_t end) {
//         for (std::size_t i = first; i < end; ++i) lengths[i] = names[i].size();
//     });
//
// Threads: the parts run on any threads, the caller's among them, and may run at the same time;
// what the caller did before is there for all of them, and what they did is there when the call
// returns.

#include <cstddef>

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace compressedpaths {

/// A piece of work whose type is forgotten, so that the loop can be compiled apart from it.
struct LoopWork {
    void (*run)(const void* work, std::size_t first, std::size_t end);
    const void* work;
};

/// Runs the work for parts of 0 to count, which together are all of it.
void runParts(std::size_t count, LoopWork work);

// oneTBB is not instrumented, and so the thread sanitizer does not see how it hands out work and
// waits for it. These say just that: a part begins after the loop, and the loop ends after all its
// parts. Between the parts they say nothing, and a race of two of them is found.
//
//     caller    begins ──┬──────────── ends
//     part 1             ├─ enter … leave ─┤
//     part 2             └─ enter … leave ─┘
#ifdef __SANITIZE_THREAD__
class LoopOrder {
public:
    LoopOrder() noexcept { __tsan_release(&begin_); }
    LoopOrder(const LoopOrder&) = delete;
    LoopOrder& operator=(const LoopOrder&) = delete;
    ~LoopOrder() { __tsan_acquire(&end_); }

    class Part {
    public:
        explicit Part(const LoopOrder& loop) noexcept : loop_(loop) {
            __tsan_acquire(&loop.begin_);
        }
        Part(const Part&) = delete;
        Part& operator=(const Part&) = delete;
        ~Part() { __tsan_release(&loop_.end_); }

    private:
        const LoopOrder& loop_;
    };

private:
    mutable char begin_ = 0;
    mutable char end_ = 0;
};
#else
struct LoopOrder {
    struct Part {
        explicit Part(const LoopOrder& /*loop*/) noexcept {}
    };
};
#endif

/// Calls `work(first, end)` for parts of 0 to count, which together are all of it. The first
/// exception of a part keeps others from beginning and is thrown here. O(parts) beside the work.
template <class Work>
void inParallel(std::size_t count, const Work& work) {
    struct Ordered {
        const Work& work;
        LoopOrder order;
    } const ordered{work, {}};
    runParts(count, {[](const void* loop, std::size_t first, std::size_t end) {
                         const auto& [theWork, order] = *static_cast<const Ordered*>(loop);
                         const LoopOrder::Part part(order);
                         theWork(first, end);
                     },
                     &ordered});
}

}  // namespace compressedpaths
