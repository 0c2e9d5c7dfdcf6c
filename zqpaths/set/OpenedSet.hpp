#pragma once
// OpenedSet is a set that is opened to be read: a set file, or a manifest and the set files that it
// names. All copies of a PathSet share one.
//
//     const auto opened = OpenedSet::open("usr.zqp");
//     PathBuffer paths;
//     opened->appendPaths({.first = 1, .last = 100}, paths);
//     opened->forEachPart([](const OpenedPart& part) { ... });
//
// Threads: never changes but for parts and segments that open; any number of threads may read it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "zqpaths/PathSet.hpp"
#include "zqpaths/set/OpenedPart.hpp"
#include "zqpaths/set/OpenedParts.hpp"
#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/set/PathBuffer.hpp"

namespace zqpaths {

inline constexpr std::uint64_t kPathsPerPiece = 4096;  // that are decoded before they are visited

/// The threads that decode so many paths. A few are decoded sooner than threads have started.
inline unsigned threadsFor(std::uint64_t pathCount) noexcept {
    constexpr std::uint64_t kFew = 100000;
    return pathCount < kFew ? 1 : threadCount();
}

class OpenedSet {
public:
    /// Throw Error: kNotFound, kSystem, kNotASet, kDamaged. O(segments of a set file, or rows of a
    /// manifest); openPartial reads all directories.
    static std::shared_ptr<const OpenedSet> open(const std::string& file);
    static std::shared_ptr<const OpenedSet> openPartial(const std::string& file);

    OpenedSet(const OpenedSet&) = delete;
    OpenedSet& operator=(const OpenedSet&) = delete;

    const std::string& name() const noexcept { return name_; }
    std::uint64_t size() const noexcept { return parts_.pathCount(); }
    std::uint64_t fingerprint() const noexcept { return fingerprint_; }

    /// The set file, unless it is a set of sets; null then.
    const SetFile* onlyFile() const noexcept { return only_ ? &only_->file() : nullptr; }

    /// Throws Error kDamaged if a set file has become shorter than what was opened; those of a
    /// manifest are looked at when a part is pinned. One system call.
    void requireWhole() const {
        if (only_) only_->file().requireWhole();
    }

    // --- Files and parts.

    std::size_t fileCount() const noexcept { return only_ ? 1 : opened_->fileCount(); }
    std::string fileName(std::size_t file) const { return only_ ? name_ : opened_->nameOf(file); }
    std::uint64_t fileSum(std::size_t file) const noexcept {
        return only_ ? fingerprint_ : (*opened_)[file].sum;
    }
    /// Opens it, if need be. Throws Error as OpenedParts::pin.
    std::shared_ptr<const SetFile> file(std::size_t file) const {
        return only_ ? onlyFile_ : opened_->file(file);
    }

    const SetParts& parts() const noexcept { return parts_; }
    const std::vector<PathSet::Missing>& missing() const noexcept { return missing_; }

    /// Throws Error as OpenedParts::pin.
    PinnedPart part(std::size_t part) const {
        return only_ ? PinnedPart(*only_) : opened_->pin(part);
    }

    /// Calls `visit(part)` for the parts that are not missing, in their order, until one returns
    /// false if they return bool; false then. Throws as OpenedParts::pin.
    template <class Visit>
    bool forEachPart(Visit visit) const {
        for (std::size_t i = 0; i < parts_.count(); ++i) {
            if (parts_[i].isMissing) continue;
            const PinnedPart pinned = part(i);
            if constexpr (std::is_void_v<std::invoke_result_t<Visit&, const OpenedPart&>>)
                visit(*pinned);
            else if (!visit(*pinned))
                return false;
        }
        return true;
    }

    std::uint64_t segmentCount() const noexcept { return parts_.segmentCount(); }

    /// Throws Error kWrongUse unless there are so many segments from the one at a place on.
    void requireSegments(std::uint64_t first, std::uint64_t count) const;

    /// The segment at a place, which there is, and that of a number that there is. Throw as
    /// OpenedParts::pin. O(log parts + log segments).
    PinnedSegment segment(std::uint64_t place) const;
    PinnedSegment segmentOf(std::uint64_t number) const;

    /// What a manifest says of neighbouring segments, which there are, in terms of these files.
    std::vector<ManifestRow> manifestRows(std::uint64_t firstSegment, std::uint64_t count) const;
    std::vector<ManifestRow> manifestRows() const { return manifestRows(0, segmentCount()); }

    // --- Numbers.

    /// Throws Error kWrongUse unless there is a path with this number.
    void requireNumber(std::uint64_t number) const;

    /// The same, and throws the reason if it is missing.
    void requirePresent(std::uint64_t number) const;

    /// The first number from this one on that is not missing, if there is any, with the last one
    /// before those that are missing after it.
    std::optional<PathNumbers> nextThere(std::uint64_t number) const noexcept;

    /// Appends the path with this number, which there is. Throws Error kDamaged. O(log entries +
    /// bytes).
    void appendPath(std::uint64_t number, std::string& text) const;

    /// Appends the paths with these numbers, which there are, but for those that are missing, until
    /// the buffer is full. Returns the first number that was not looked at. Throws Error kDamaged.
    /// O(log entries + bytes).
    std::uint64_t appendPaths(PathNumbers numbers, PathBuffer& paths) const;

    /// Appends the paths with these numbers, which there are and which ascend, none twice, until
    /// the buffer is full; false if some are left. Throws Error kDamaged. O(log entries + bytes)
    /// each; less for many neighbours.
    bool appendPaths(std::span<const std::uint64_t> numbers, PathBuffer& paths) const;

    // --- Paths that are gone. O(log parts + log runs of neighbours that are); throw as
    // OpenedParts::pin.

    bool isGone(std::uint64_t number) const;
    std::uint64_t goneBelow(std::uint64_t number) const;  // one that there is, or the next
    std::uint64_t goneNumber(std::uint64_t place) const;
    std::uint64_t presentNumber(std::uint64_t place) const;

private:
    explicit OpenedSet(std::shared_ptr<const SetFile> file);
    OpenedSet(std::string name, SetManifest manifest);

    static std::shared_ptr<OpenedSet> openAny(const std::string& file);
    void findMissing();
    std::vector<PathSet::Missing>::const_iterator firstMissingUpFrom(
        std::uint64_t number) const noexcept;
    bool appendScattered(std::span<const std::uint64_t> numbers, PathBuffer& paths) const;

    std::string name_;
    std::uint64_t fingerprint_;
    SetParts parts_;
    std::vector<PathSet::Missing> missing_;
    // Either these or the parts of a manifest.
    std::shared_ptr<const SetFile> onlyFile_;
    std::optional<OpenedPart> only_;
    std::optional<OpenedParts> opened_;
};

/// What a set shares with its copies.
const OpenedSet& openedSetOf(const PathSet& set) noexcept;

}  // namespace zqpaths
