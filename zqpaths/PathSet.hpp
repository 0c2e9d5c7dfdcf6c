#pragma once
// PathSet is a set of paths in a file, opened to be read: bytes in, bytes out. The file is mapped,
// not loaded, so that opening takes microseconds and all processes share its bytes.
//
//     zqpaths::PathSet set = zqpaths::PathSet::open("usr.zqp");
//     std::string path = set.path(7);
//     set.find(zqpaths::Pattern::text("lib"), [](std::uint64_t number, std::string_view path) {
//         ...
//     });
//
// Paths have numbers from 1 on, in the order in which they were added. A path is any bytes but NUL,
// at least one. What others add to the file after it was opened is not seen.
//
// A path that was marked as gone, since the file that it led to is there no more, keeps its number:
// all that is said here of the paths of a set is said of it, too. Who wants the others alone asks
// isGone, or takes their numbers:
//
//     for (std::uint64_t place = 0; place < set.presentCount(); ++place)
//         use(set.path(set.presentNumber(place)));
//
// Threads: an opened set never changes; any number of threads may read it. The library starts
// threads of its own for long work and joins them before the call returns, so that a process may
// fork between calls. Segments of a set file that were read once give their paths and numbers
// without a lock: then it may fork while other threads are in the midst of path, numberOf and their
// like.
//
// The file may also be a set of sets, a manifest that names set files
// (manifest/SetManifestWriter.hpp makes one): numbers run through them. Opening reads the manifest
// alone; the files are mapped when they are first needed, at most 1,024 at a time. One that is
// missing or was changed since is an Error that names it, kNotFound or kDamaged, from the call that
// needs it; openPartial reads what is there.
//
// A file that others change while it is open gives an error or the right path. Its size is looked
// at once a call; one that is cut short in the midst of a call can end the process with SIGBUS,
// which the library leaves to the program.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/Error.hpp"
#include "zqpaths/Export.hpp"
#include "zqpaths/PathVisitor.hpp"
#include "zqpaths/Pattern.hpp"
#include "zqpaths/WorkWatcher.hpp"

namespace zqpaths {

class OpenedSet;  // what all copies of a set share

/// Numbers of paths; both ends belong to the range.
struct PathNumbers {
    std::uint64_t first;
    std::uint64_t last;

    bool operator==(const PathNumbers&) const = default;
};

class ZQPATHS_EXPORT PathSet {
public:
    /// Throws Error: kNotFound, kSystem, kNotASet, kDamaged. O(segments).
    static PathSet open(const std::string& file);

    /// Opens a set of sets as far as its files are there and are those that it was made of; of what
    /// is not, missing() tells. Paths keep their numbers. Whatever goes through the paths passes
    /// over those that are missing; what asks for one of them by its number throws the Error that
    /// says why. Reads the directories of all files; any other set is opened as by open().
    /// O(segments).
    static PathSet openPartial(const std::string& file);

    /// Copies share what is opened.
    PathSet(const PathSet&) noexcept;
    PathSet(PathSet&&) noexcept;
    PathSet& operator=(const PathSet&) noexcept;
    PathSet& operator=(PathSet&&) noexcept;
    ~PathSet();

    const std::string& file() const noexcept;
    std::uint64_t size() const noexcept;

    /// Tells what was opened from any other state of a file: the sum of its directory, which holds
    /// the sum of each segment. As good as unique (64 bits), but not against who means to deceive.
    /// A copy of the file has the same, and so has the file under another name; a set of the same
    /// paths that was written in another way may have another. Readers in several processes that
    /// compare it know that a number means the same path to all of them. O(1); reads nothing, so
    /// that damage of the segments is not seen.
    std::uint64_t fingerprint() const noexcept;

    /// Paths that cannot be read, in the order of their numbers; none unless the set was opened by
    /// openPartial.
    struct Missing {
        std::uint64_t firstNumber;
        std::uint64_t lastNumber;
        Error reason;      // names the file
        std::size_t file;  // its place among the files
    };
    const std::vector<Missing>& missing() const noexcept;

    // All operations below throw Error kDamaged for bytes that cannot be what was saved, and
    // kWrongUse, before any visit, for a number that the set does not have.

    /// The path with this number, or the same at the end of `text`. O(log entries + bytes).
    std::string path(std::uint64_t number) const;
    void appendPath(std::uint64_t number, std::string& text) const;

    /// The paths with these numbers, in the order of the numbers given. Sooner than one by one,
    /// since thousands are looked up together before they are visited, on all cores; so kDamaged
    /// can come before the visits of whole paths. O(log numbers + log entries + bytes) each.
    void paths(std::span<const std::uint64_t> numbers, PathVisitor visit) const;

    /// All paths, or those from number `first` to `last`, both included, downwards if last is below
    /// first. O(bytes), on all cores where there is much to do.
    void forEach(PathVisitor visit) const;
    void forEach(std::uint64_t first, std::uint64_t last, PathVisitor visit) const;

    /// for (std::string_view path : set): all paths in order. A view is valid until the next step.
    class Iterator;
    Iterator begin() const;
    std::default_sentinel_t end() const noexcept { return {}; }

    // --- Paths that are gone. O(log runs of neighbours that are).

    std::uint64_t goneCount() const noexcept;
    std::uint64_t presentCount() const noexcept;  // of the others, but for those that are missing
    bool isGone(std::uint64_t number) const;

    /// How many of the numbers from `first` to `last`, both included, are gone; none if last is
    /// below first.
    std::uint64_t goneCount(std::uint64_t first, std::uint64_t last) const;

    /// The number at a place, from 0 on, among those that are gone, or among those counted as
    /// present: any choice of them takes no memory. Throws Error kWrongUse for a place that there
    /// is not.
    std::uint64_t goneNumber(std::uint64_t place) const;
    std::uint64_t presentNumber(std::uint64_t place) const;

    // --- Finding.

    /// The lowest number of this path, if the set has it. O(components * log folders + names in the
    /// folder) a segment.
    std::optional<std::uint64_t> numberOf(std::string_view path) const;
    bool contains(std::string_view path) const { return numberOf(path).has_value(); }

    /// The same among the paths of some neighbouring segments, the first of which is at a place
    /// from 0 on: several processes can look through a large set together. Throws Error kWrongUse
    /// if there are fewer.
    std::optional<std::uint64_t> numberOf(std::string_view path, std::uint64_t firstSegment,
                                          std::uint64_t segmentCount) const;

    /// The paths in a folder and below it, and that of the folder itself, in the order of numbers.
    /// How many separators stand together in `folder`, or at its end, does not matter; an empty
    /// folder holds all paths, "/" those that begin with a separator. Does not scan the set: O(what
    /// it gives + folders on the way and what they hold).
    void under(std::string_view folder, PathVisitor visit) const;

    /// The paths that match, in the order of numbers; on all cores.
    void find(const Pattern& pattern, PathVisitor visit) const;
    std::uint64_t count(const Pattern& pattern) const;

    /// The same among some numbers, which there are.
    void find(const Pattern& pattern, PathNumbers among, PathVisitor visit) const;

    /// The numbers of these paths without their text, which mostly need not be decoded then: from
    /// `first` to `last`, both included, range after range, until `visit` returns false.
    void findNumbers(
        const Pattern& pattern,
        const std::function<bool(std::uint64_t first, std::uint64_t last)>& visit) const;
    void findNumbers(
        const Pattern& pattern, PathNumbers among,
        const std::function<bool(std::uint64_t first, std::uint64_t last)>& visit) const;

    /// All paths in the order of the folders, folder by folder, segment after segment; a path that
    /// is the folder of others is not among them. The number given to `visit` counts the steps.
    void walk(PathVisitor visit) const;

    /// Everything that is damaged, after all sums and offsets have been looked at; nothing if the
    /// set is whole. O(size of the file), on all cores.
    std::vector<Error> verify() const;

    /// The same; `watch` is told of the bytes of segments that have been summed and of the paths
    /// that have been read, each once.
    std::vector<Error> verify(const WorkWatcher& watch) const;

    // --- What the set is made of.

    /// True if this is a set of sets, be it of one set file.
    bool isSetOfSets() const noexcept;

    /// The set files, in the order of their first numbers: one, the file itself, unless it is a set
    /// of sets. The place is below fileCount().
    std::size_t fileCount() const noexcept;
    std::string fileName(std::size_t place) const;

    /// What verify tells of one of the files, and of the paths that the set has of it.
    std::vector<Error> verifyFile(std::size_t place, const WorkWatcher& watch) const;

    std::uint64_t segmentCount() const noexcept;

    struct Segment {
        bool isPacked;
        std::uint64_t firstNumber;
        std::uint64_t pathCount;
        std::uint64_t textSize;  // bytes of its paths, one more for each
        std::size_t file;        // its place among the files
        std::uint64_t offset;    // in the file
        std::uint64_t size;      // bytes in the file
    };

    /// Those of all files that are there. Throws Error as open. O(segments).
    std::vector<Segment> segments() const;

private:
    explicit PathSet(std::shared_ptr<const OpenedSet> opened) noexcept;

    friend const OpenedSet& openedSetOf(const PathSet& set) noexcept;
    std::shared_ptr<const OpenedSet> opened_;
};

/// An input iterator. Throws as forEach.
class ZQPATHS_EXPORT PathSet::Iterator {
public:
    using value_type = std::string_view;
    using difference_type = std::ptrdiff_t;

    std::string_view operator*() const noexcept;
    Iterator& operator++();
    void operator++(int) { ++*this; }
    std::uint64_t number() const noexcept { return number_; }

    bool operator==(std::default_sentinel_t) const noexcept;

private:
    friend class PathSet;
    explicit Iterator(std::shared_ptr<const OpenedSet> opened);
    void fill();

    std::shared_ptr<const OpenedSet> opened_;
    std::uint64_t number_ = 1;
    std::uint64_t firstOfBuffer_ = 1;
    std::string buffer_;             // paths, one after the other
    std::vector<std::size_t> ends_;  // of each in the buffer
};

}  // namespace zqpaths
