#pragma once
// WorkPhases counts how far a work has come that goes through phases, one after the other:
//
//     WorkPhases work({{"reading", WorkUnit::kPaths, 1}, {"coding", WorkUnit::kPaths, 3}});
//     work.expect(0, 1000);
//     work.advance(0, 500);
//     work.partDone(0.5);  // 0.125: half of a quarter
//
// A phase has a share of the whole time, as good as that is known: only their ratio counts. One
// that has begun to count before its turn, as coding does while reading goes on, is believed to
// keep its distance.
//
// Threads: phases are counted on any thread, also at the same time, and asked on any.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace zqpaths::program {

enum class WorkUnit { kPaths, kBytes };

struct WorkPhase {
    const char* name;  // "reading"; empty where there is one phase alone
    WorkUnit unit;
    double share;
};

class WorkPhases {
public:
    static constexpr std::size_t kMostPhases = 4;

    explicit WorkPhases(std::vector<WorkPhase> phases);

    /// The phase that the work is in, 0 from the start; those before it are over.
    void begin(std::size_t phase) noexcept { current_ = phase; }
    std::size_t current() const noexcept { return current_; }
    const WorkPhase& phase(std::size_t phase) const noexcept { return phases_[phase]; }

    /// So many items of a phase more are done. O(1).
    void advance(std::size_t phase, std::uint64_t items) noexcept {
        counts_[phase].done.fetch_add(items, std::memory_order_relaxed);
    }

    /// A phase has so many items in all.
    void expect(std::size_t phase, std::uint64_t items) noexcept { counts_[phase].total = items; }

    std::uint64_t done(std::size_t phase) const noexcept { return counts_[phase].done; }
    std::optional<std::uint64_t> total(std::size_t phase) const noexcept;

    /// The share of the current phase for one of all those before it; nothing in the first.
    std::optional<double> shareForThoseBefore() const noexcept;

    /// How much of the current phase is done, from 0 to 1, by its items; nothing if it is not known
    /// how many there are.
    std::optional<double> partOfCurrent() const noexcept;

    /// How much of the whole is done if that part of the current phase is.
    double partDone(double partOfCurrent) const noexcept;

private:
    static constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

    struct Count {
        std::atomic<std::uint64_t> done{0};
        std::atomic<std::uint64_t> total{kUnknown};
    };

    std::vector<WorkPhase> phases_;
    std::array<Count, kMostPhases> counts_;
    std::atomic<std::size_t> current_{0};
};

}  // namespace zqpaths::program
