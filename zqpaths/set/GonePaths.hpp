#pragma once
// GonePaths is which paths of a set are gone: they keep their numbers, and are marked. The marks
// are runs of numbers, read where they lie in the file:
//
//     first number   gone before it        numbers    1 2 3 4 5 6 7 8 9
//                3   0                     gone           x x       x x
//                8   2                     in place   1 2     3 4 5      of those that are not
//
//     const GonePaths gone(bytes, 4, 9);
//     gone.has(4);            // true
//     gone.presentNumber(2);  // 5: places count from 0
//
// Each answer is a binary search in the runs; nothing is loaded. The bytes come from outside: if
// the runs are not what they should be, answers are wrong or refused, and nothing else is read.
//
// GoneMarks are the changes that a writer makes to them.
//
// Threads: never changes; any number of threads may read it. Marks belong to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zqpaths {

class GonePaths {
public:
    /// Of no gone path in a set of so many.
    explicit GonePaths(std::uint64_t pathCount = 0) noexcept : pathCount_(pathCount) {}

    /// `runs` are kGoneRunSize bytes each, 8-aligned; `goneCount` paths are gone of `pathCount`.
    /// The bytes outlive it.
    GonePaths(std::span<const std::byte> runs, std::uint64_t goneCount,
              std::uint64_t pathCount) noexcept;

    /// Numbers from `first` to `last`, both included.
    struct Run {
        std::uint64_t first;
        std::uint64_t last;

        bool operator==(const Run&) const = default;
    };

    std::size_t runCount() const noexcept { return runs_.size(); }
    Run operator[](std::size_t run) const noexcept;

    std::uint64_t count() const noexcept { return goneCount_; }
    std::uint64_t presentCount() const noexcept { return pathCount_ - goneCount_; }

    /// O(log runs), as all that follow.
    bool has(std::uint64_t number) const noexcept;

    /// How many numbers below this one are gone.
    std::uint64_t countBelow(std::uint64_t number) const noexcept;

    /// The number at a place, from 0 on, among those that are gone, or among the others. Throws
    /// Error kDamaged if the runs do not say it; the place is below count(), or presentCount().
    std::uint64_t goneNumber(std::uint64_t place) const;
    std::uint64_t presentNumber(std::uint64_t place) const;

    /// Throws Error kDamaged unless the runs are in order, apart, and have as many numbers as they
    /// should. O(runs).
    void verify() const;

private:
    // As it stands in the file.
    struct StoredRun {
        std::uint64_t first;
        std::uint64_t before;  // gone numbers below `first`
    };

    std::uint64_t endOfGone(std::size_t run) const noexcept;
    std::uint64_t requireNumber(std::uint64_t number) const;

    std::span<const StoredRun> runs_;
    std::uint64_t goneCount_ = 0;
    std::uint64_t pathCount_;
};

/// Goes through the gone paths with numbers that ascend, which needs no search each time.
class GoneCursor {
public:
    explicit GoneCursor(const GonePaths& gone) noexcept : gone_(gone) { load(); }

    /// `number` is not below that of the call before. Amortised O(1).
    bool isGone(std::uint64_t number) noexcept {
        while (number > run_.last) {
            ++next_;
            load();
        }
        return number >= run_.first;
    }

private:
    void load() noexcept {
        constexpr std::uint64_t kNever = ~std::uint64_t{0};
        run_ = next_ < gone_.runCount() ? gone_[next_] : GonePaths::Run{kNever, kNever};
    }

    const GonePaths& gone_;
    std::size_t next_ = 0;
    GonePaths::Run run_{};
};

class GoneMarks {
public:
    /// The last mark of a number counts. Throws only std::bad_alloc. Amortised O(1).
    void markGone(std::uint64_t number) { marks_.push_back(number << 1 | 1); }
    void markPresent(std::uint64_t number) { marks_.push_back(number << 1); }

    /// A number that was none before and is gone from the first; it is above those of all such
    /// calls before, and next to the last one takes no memory. A later mark of it counts. Throws
    /// only std::bad_alloc. Amortised O(1).
    void appendGone(std::uint64_t number) {
        if (!appended_.empty() && appended_.back().last + 1 == number)
            appended_.back().last = number;
        else
            appended_.push_back({number, number});
    }

    bool isEmpty() const noexcept { return marks_.empty() && appended_.empty(); }

    /// What the runs are after these marks, as bytes for a file, and how many numbers are gone
    /// then. Those of `before` are below what was appended. O(runs + marks log marks).
    struct Runs {
        std::vector<std::byte> bytes;
        std::uint64_t goneCount = 0;
    };
    Runs appliedTo(const GonePaths& before);

private:
    std::vector<std::uint64_t> marks_;  // twice the number, and one if it is gone
    std::vector<GonePaths::Run> appended_;
};

}  // namespace zqpaths
