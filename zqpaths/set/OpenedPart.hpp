#pragma once
// OpenedPart is neighbouring segments of a set file as a part of a set, with the numbers that they
// have there:
//
//     file      numbers 1 to 100 | 101 to 300          the part: the second segment, from 5001 on
//     set       ... 5000 |         5001 to 5200 | ...
//
// Pins keep a part opened while it is used, whatever else is opened meanwhile:
//
//     const PinnedSegment segment = set.segmentOf(5007);
//     segment->appendPath(segment->positionOf(5007), text);
//
// Threads: never changes but for segments that open; any number of threads may read it.

#include <cstdint>
#include <deque>
#include <memory>
#include <utility>

#include "zqpaths/file/SetFile.hpp"
#include "zqpaths/set/GonePaths.hpp"
#include "zqpaths/set/Segment.hpp"
#include "zqpaths/set/SetParts.hpp"

namespace zqpaths {

class OpenedPart {
public:
    /// Throws Error kDamaged unless the file has such segments, with as many paths. O(segments of
    /// the file).
    OpenedPart(std::shared_ptr<const SetFile> file, const SetPart& part);

    const SetFile& file() const noexcept { return *file_; }
    const std::deque<Segment>& segments() const noexcept { return segments_; }

    /// The segment of a number that it has. O(log segments).
    const Segment& segmentOf(std::uint64_t number) const noexcept;

    // --- Which of its paths are gone. O(log runs).

    bool isGone(std::uint64_t number) const noexcept { return gone_.has(inFile(number)); }

    /// How many of its numbers below this one are, which it has or which follows them.
    std::uint64_t goneBelow(std::uint64_t number) const noexcept;

    /// The number at a place of the part, from 0 on, among those that are gone, or the others.
    /// Throw Error kDamaged if what the file says cannot be.
    std::uint64_t goneNumber(std::uint64_t place) const;
    std::uint64_t presentNumber(std::uint64_t place) const;

private:
    std::uint64_t inFile(std::uint64_t number) const noexcept {
        return number - firstNumber_ + firstInFile_;
    }
    std::uint64_t inSet(std::uint64_t numberInFile) const;

    std::shared_ptr<const SetFile> file_;
    std::deque<Segment> segments_;
    GonePaths gone_;  // of the file
    std::uint64_t firstNumber_;
    std::uint64_t pathCount_;
    std::uint64_t firstInFile_ = 1;
    std::uint64_t goneBefore_ = 0;  // in the file
};

/// Which paths of a set file are gone. The file outlives it.
GonePaths gonePathsOf(const SetFile& file) noexcept;

/// A part that stays opened as long as this is there. One that is opened anyway is not counted,
/// which threads that read the same set would wait for.
class PinnedPart {
public:
    explicit PinnedPart(const OpenedPart& opened) noexcept : part_(&opened) {}
    explicit PinnedPart(std::shared_ptr<const OpenedPart> held) noexcept
        : held_(std::move(held)), part_(held_.get()) {}

    const OpenedPart& operator*() const noexcept { return *part_; }
    const OpenedPart* operator->() const noexcept { return part_; }

private:
    std::shared_ptr<const OpenedPart> held_;
    const OpenedPart* part_;
};

/// A segment of a pinned part.
class PinnedSegment {
public:
    PinnedSegment(PinnedPart part, const Segment& segment) noexcept
        : part_(std::move(part)), segment_(&segment) {}

    const OpenedPart& part() const noexcept { return *part_; }
    const Segment& operator*() const noexcept { return *segment_; }
    const Segment* operator->() const noexcept { return segment_; }

private:
    PinnedPart part_;
    const Segment* segment_;
};

}  // namespace zqpaths
