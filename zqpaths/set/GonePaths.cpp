#include "zqpaths/set/GonePaths.hpp"

#include <algorithm>
#include <cstring>

#include "zqpaths/Error.hpp"
#include "zqpaths/file/SetFileDirectory.hpp"

namespace zqpaths {
namespace {

[[noreturn]] void refuseGoneNumbers() {
    throw Error(ErrorKind::kDamaged, {}, "the gone paths have numbers that cannot be");
}

/// Makes the runs of numbers that are given in ascending order.
class RunBuilder {
public:
    void append(GonePaths::Run run) {
        if (run.last < run.first) return;  // of a damaged set
        if (hasRun_ && run.first <= last_ + 1) {
            last_ = std::max(last_, run.last);
            return;
        }
        finish();
        first_ = run.first;
        last_ = run.last;
        hasRun_ = true;
    }

    void finish() {
        if (!hasRun_) return;
        const std::size_t begin = runs_.bytes.size();
        runs_.bytes.resize(begin + kGoneRunSize);
        ByteWriter writer(std::span(runs_.bytes).subspan(begin));
        writer.integer(first_, 8);
        writer.integer(runs_.goneCount, 8);
        runs_.goneCount += last_ - first_ + 1;
        hasRun_ = false;
    }

    GoneMarks::Runs take() {
        finish();
        return std::move(runs_);
    }

private:
    GoneMarks::Runs runs_;
    bool hasRun_ = false;
    std::uint64_t first_ = 0;
    std::uint64_t last_ = 0;
};

}  // namespace

GonePaths::GonePaths(std::span<const std::byte> runs, std::uint64_t goneCount,
                     std::uint64_t pathCount) noexcept
    : runs_(reinterpret_cast<const StoredRun*>(runs.data()), runs.size() / kGoneRunSize),
      goneCount_(goneCount),
      pathCount_(pathCount) {
    static_assert(sizeof(StoredRun) == kGoneRunSize && alignof(StoredRun) == kBlockAlignment);
}

/// How many numbers are gone up to the end of a run.
std::uint64_t GonePaths::endOfGone(std::size_t run) const noexcept {
    return run + 1 < runs_.size() ? runs_[run + 1].before : goneCount_;
}

GonePaths::Run GonePaths::operator[](std::size_t run) const noexcept {
    const auto& [first, before] = runs_[run];
    return {first, first + (endOfGone(run) - before) - 1};
}

bool GonePaths::has(std::uint64_t number) const noexcept {
    return countBelow(number + 1) != countBelow(number);
}

std::uint64_t GonePaths::countBelow(std::uint64_t number) const noexcept {
    const auto after = std::ranges::partition_point(
        runs_, [number](const StoredRun& run) { return run.first < number; });
    if (after == runs_.begin()) return 0;
    const auto run = static_cast<std::size_t>(after - runs_.begin()) - 1;
    const auto& [first, before] = runs_[run];
    return std::min(before + (number - first), endOfGone(run));
}

std::uint64_t GonePaths::goneNumber(std::uint64_t place) const {
    const auto after = std::ranges::partition_point(
        runs_, [place](const StoredRun& run) { return run.before <= place; });
    if (after == runs_.begin()) refuseGoneNumbers();
    const auto& [first, before] = *(after - 1);
    return requireNumber(first + (place - before));
}

std::uint64_t GonePaths::presentNumber(std::uint64_t place) const {
    // Before a run there are as many in place as its number says, less one and those gone before.
    const auto after = std::ranges::partition_point(
        runs_, [place](const StoredRun& run) { return run.first - 1 - run.before <= place; });
    const auto passed = static_cast<std::size_t>(after - runs_.begin());
    return requireNumber(place + 1 + (passed == 0 ? 0 : endOfGone(passed - 1)));
}

std::uint64_t GonePaths::requireNumber(std::uint64_t number) const {
    if (number == 0 || number > pathCount_) refuseGoneNumbers();
    return number;
}

void GonePaths::verify() const {
    std::uint64_t next = 1;  // the lowest number that a run may begin with
    std::uint64_t before = 0;
    for (std::size_t i = 0; i < runs_.size(); ++i) {
        const std::uint64_t end = endOfGone(i);
        const bool isInOrder = runs_[i].first >= next && runs_[i].before == before && end > before;
        if (!isInOrder || runs_[i].first > pathCount_ ||
            end - before > pathCount_ - runs_[i].first + 1)
            throw Error(ErrorKind::kDamaged, {},
                        "run " + std::to_string(i + 1) + " of the gone paths cannot be");
        next = runs_[i].first + (end - before) + 1;  // one is in place between two runs
        before = end;
    }
}

GoneMarks::Runs GoneMarks::appliedTo(const GonePaths& before) {
    const auto numberOf = [](std::uint64_t mark) { return mark >> 1; };
    // Those of one number stay in their order.
    std::ranges::stable_sort(marks_, {}, numberOf);
    RunBuilder runs;
    std::size_t nextRun = 0;
    GonePaths::Run left{1, 0};  // what is not taken of the run before `nextRun`
    const std::size_t runCount = before.runCount() + appended_.size();
    const auto runAt = [&](std::size_t run) {
        return run < before.runCount() ? before[run] : appended_[run - before.runCount()];
    };
    /// Takes what is gone below a number, and the number itself where it was.
    const auto takeBelow = [&](std::uint64_t number) {
        while (true) {
            if (left.last < left.first) {
                if (nextRun == runCount) return;
                left = runAt(nextRun++);
            }
            if (left.first >= number) break;
            runs.append({left.first, std::min(left.last, number - 1)});
            if (left.last >= number)
                left.first = number;
            else
                left = {1, 0};
        }
        if (left.first == number) ++left.first;
    };
    for (auto mark = marks_.begin(); mark != marks_.end();) {
        const std::uint64_t number = numberOf(*mark);
        const auto after = std::ranges::find_if(
            mark, marks_.end(), [&](std::uint64_t other) { return numberOf(other) != number; });
        takeBelow(number);
        if ((*(after - 1) & 1) != 0) runs.append({number, number});
        mark = after;
    }
    takeBelow(~std::uint64_t{0});
    return runs.take();
}

}  // namespace zqpaths
