#include "tools/zqpaths/progress/WorkPhases.hpp"

#include <algorithm>
#include <cassert>
#include <utility>

namespace zqpaths::program {

WorkPhases::WorkPhases(std::vector<WorkPhase> phases) : phases_(std::move(phases)) {
    assert(!phases_.empty() && phases_.size() <= kMostPhases);
}

std::optional<std::uint64_t> WorkPhases::total(std::size_t phase) const noexcept {
    const std::uint64_t items = counts_[phase].total;
    if (items == kUnknown) return std::nullopt;
    return items;
}

std::optional<double> WorkPhases::shareForThoseBefore() const noexcept {
    const std::size_t now = current();
    if (now == 0) return std::nullopt;
    double before = 0;
    for (std::size_t i = 0; i < now; ++i) before += phases_[i].share;
    return phases_[now].share / before;
}

std::optional<double> WorkPhases::partOfCurrent() const noexcept {
    const std::size_t now = current();
    const std::optional<std::uint64_t> items = total(now);
    if (!items || *items == 0) return std::nullopt;
    return std::min(1.0, static_cast<double>(done(now)) / static_cast<double>(*items));
}

double WorkPhases::partDone(double partOfCurrent) const noexcept {
    const std::size_t now = current();
    // Of what the current phase has passed on, so much can be done in a later one, too.
    const auto passedOn = static_cast<double>(std::max<std::uint64_t>(1, done(now)));
    double all = 0;
    double doneShares = 0;
    for (std::size_t i = 0; i < phases_.size(); ++i) {
        double part = i < now ? 1 : partOfCurrent;
        if (i > now) part *= std::min(1.0, static_cast<double>(done(i)) / passedOn);
        all += phases_[i].share;
        doneShares += phases_[i].share * part;
    }
    return doneShares / all;
}

}  // namespace zqpaths::program
