#pragma once
// OpenedSet is a set file with its segments, which open when they are first needed. All copies of a
// PathSet share one.
//
//     const auto opened = OpenedSet::open("usr.zqp");
//     PathBuffer paths;
//     opened->appendPaths({.first = 1, .last = 100}, paths);
//
// Threads: never changes but for segments that open; any number of threads may read it.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <string>

#include "zqpaths/PathSet.hpp"
#include "zqpaths/file/SetFile.hpp"
#include "zqpaths/set/GonePaths.hpp"
#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/set/PathBuffer.hpp"
#include "zqpaths/set/Segment.hpp"

namespace zqpaths {

class PathSet;

inline constexpr std::uint64_t kPathsPerPiece = 4096;  // that are decoded before they are visited

/// The threads that decode so many paths. A few are decoded sooner than threads have started.
inline unsigned threadsFor(std::uint64_t pathCount) noexcept {
    constexpr std::uint64_t kFew = 100000;
    return pathCount < kFew ? 1 : threadCount();
}

class OpenedSet {
public:
    /// Throws Error as SetFile::open. O(segments).
    static std::shared_ptr<const OpenedSet> open(const std::string& file);
    explicit OpenedSet(std::shared_ptr<const SetFile> file);

    const SetFile& file() const noexcept { return *file_; }
    std::uint64_t size() const noexcept { return file_->pathCount(); }
    const std::deque<Segment>& segments() const noexcept { return segments_; }

    const GonePaths& gone() const noexcept { return gone_; }

    /// Throws Error kWrongUse unless there is a path with this number.
    void requireNumber(std::uint64_t number) const;

    /// The segment of a number that there is. O(log segments).
    const Segment& segmentOf(std::uint64_t number) const noexcept;

    /// Appends the path with this number, which there is. Throws Error kDamaged. O(log entries +
    /// bytes).
    void appendPath(std::uint64_t number, std::string& text) const;

    /// Appends the paths with these numbers, which there are. Throws Error kDamaged. O(log entries
    /// + bytes).
    void appendPaths(PathNumbers numbers, PathBuffer& paths) const;

    /// Appends the paths with these numbers, which there are and which ascend, none twice. Throws
    /// Error kDamaged. O(log entries + bytes) each; less for many neighbours.
    void appendPaths(std::span<const std::uint64_t> numbers, PathBuffer& paths) const;

private:
    void appendScattered(std::span<const std::uint64_t> numbers, PathBuffer& paths) const;

    std::shared_ptr<const SetFile> file_;
    std::deque<Segment> segments_;
    GonePaths gone_;
};

/// What a set shares with its copies.
const OpenedSet& openedSetOf(const PathSet& set) noexcept;

}  // namespace zqpaths
