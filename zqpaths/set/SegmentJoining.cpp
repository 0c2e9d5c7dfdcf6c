#include "zqpaths/set/SegmentJoining.hpp"

#include "zqpaths/set/CollectedPaths.hpp"

namespace zqpaths {

bool isSmall(const SegmentSize& segment) noexcept {
    return segment.pathCount <= CollectedPaths::kMaxPaths / 2 &&
           segment.textSize <= CollectedPaths::kMaxTextSize / 2;
}

std::size_t firstToJoin(std::span<const SegmentSize> segments) noexcept {
    std::size_t first = segments.size();
    while (first > 0 && isSmall(segments[first - 1])) --first;
    if (segments.size() - first <= kMostSmall) return segments.size();

    // Where each is larger than all after it together, the last two are the cheapest.
    std::size_t found = segments.size() - 2;
    std::uint64_t sizeAfter = 0;
    for (std::size_t i = segments.size(); i-- > first;) {
        if (i < found && segments[i].textSize <= sizeAfter) found = i;
        sizeAfter += segments[i].textSize;
    }
    return found;
}

}  // namespace zqpaths
