#include "zqpaths/set/SetParts.hpp"

#include <algorithm>

namespace zqpaths {
namespace {

/// The last part before which at most `value` is counted.
std::size_t lastWith(const std::vector<SetPart>& parts, std::uint64_t SetPart::*before,
                     std::uint64_t value) noexcept {
    const auto after = std::ranges::partition_point(
        parts, [&](const SetPart& part) { return part.*before <= value; });
    return static_cast<std::size_t>(after - parts.begin()) - 1;
}

}  // namespace

SetParts::SetParts(const std::vector<ManifestRow>& rows) {
    parts_.reserve(rows.size());
    for (const ManifestRow& row : rows) parts_.push_back({.row = row});
    addUp();
}

void SetParts::markMissing(const std::vector<std::size_t>& parts) {
    for (const std::size_t part : parts) parts_[part].isMissing = true;
    addUp();
}

void SetParts::addUp() {
    SetPart next;
    for (SetPart& part : parts_) {
        part.firstNumber = next.firstNumber;
        part.segmentsBefore = next.segmentsBefore;
        part.goneBefore = next.goneBefore;
        part.presentBefore = next.presentBefore;
        next.firstNumber += part.row.pathCount;
        next.segmentsBefore += part.row.segmentCount;
        next.goneBefore += part.goneCount();
        next.presentBefore += part.presentCount();
    }
    end_ = next;
}

// Parts that have none of what is counted stand before the one that is found: the same is counted
// before them.

std::size_t SetParts::ofNumber(std::uint64_t number) const noexcept {
    return lastWith(parts_, &SetPart::firstNumber, number);
}

std::size_t SetParts::ofSegment(std::uint64_t segment) const noexcept {
    return lastWith(parts_, &SetPart::segmentsBefore, segment);
}

std::size_t SetParts::ofGone(std::uint64_t place) const noexcept {
    return lastWith(parts_, &SetPart::goneBefore, place);
}

std::size_t SetParts::ofPresent(std::uint64_t place) const noexcept {
    return lastWith(parts_, &SetPart::presentBefore, place);
}

std::vector<std::size_t> SetParts::ofFile(std::size_t file) const {
    const auto fileOf = [this](std::size_t i) { return parts_[i].row.file; };
    const std::vector<std::size_t>& order = byFile_.get([&] {
        std::vector<std::size_t> parts(parts_.size());
        for (std::size_t i = 0; i < parts.size(); ++i) parts[i] = i;
        std::ranges::stable_sort(parts, {}, fileOf);
        return parts;
    });
    return {std::ranges::lower_bound(order, file, {}, fileOf),
            std::ranges::upper_bound(order, file, {}, fileOf)};
}

}  // namespace zqpaths
