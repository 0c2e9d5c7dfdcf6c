#pragma once
// WantedPaths is what most verbs show of a set: the paths that are not gone, or with --gone those
// alone; of a set of sets those that are not missing.
//
//     const WantedPaths wanted(set, options.gone);
//     if (wanted.has(number)) output.path(number, path);
//     wanted.numberAt(0);  // of the first of them

#include <cstdint>

#include "zqpaths/PathSet.hpp"

namespace zqpaths::program {

class WantedPaths {
public:
    WantedPaths(const PathSet& set, bool gone) noexcept
        : set_(set), isGone_(gone), areAll_(!gone && set.presentCount() == set.size()) {}

    const PathSet& set() const noexcept { return set_; }
    bool areAll() const noexcept { return areAll_; }

    /// How many there are.
    std::uint64_t size() const noexcept { return isGone_ ? set_.goneCount() : set_.presentCount(); }

    /// Of a number that is not missing. O(log runs of gone paths), as the next ones.
    bool has(std::uint64_t number) const { return areAll_ || set_.isGone(number) == isGone_; }

    /// How many of the numbers from `first` to `last` there are.
    std::uint64_t count(std::uint64_t first, std::uint64_t last) const {
        const std::uint64_t gone = set_.goneCount(first, last);
        return isGone_ ? gone : last - first + 1 - gone;
    }

    /// The number at a place, from 0 on. Throws as PathSet::presentNumber does.
    std::uint64_t numberAt(std::uint64_t place) const {
        if (areAll_) return place + 1;
        return isGone_ ? set_.goneNumber(place) : set_.presentNumber(place);
    }

private:
    const PathSet& set_;
    bool isGone_;
    bool areAll_;
};

}  // namespace zqpaths::program
