#pragma once
// PathSetWriter makes a set file, or adds to one, in one pass over the paths:
//
//     zqpaths::PathSetWriter writer("usr.zqp");  // refuses a file that is there
//     for (const std::string& path : paths) writer.add(path);
//     writer.commit();                           // now the file is there, whole and on the disk
//
// Until commit returns, whoever opens the file sees what was there before; so it is after a crash
// at any moment. A writer that is destroyed without a commit discards what it was given.
//
// Paths are collected up to a segment's worth; a full segment is coded and written on other threads
// while the next is collected. Memory stays below 512 MB and eight times the longest path, however
// many paths there are; and a hundred bytes for each folder of a path that is in millions of them.
//
// Threads: a writer belongs to one thread at a time. Threads of its own may be at work between two
// calls of add, none before the first, nor after commit or when the writer is gone: fork there. One
// writer at a time has a set; another that comes waits up to five seconds.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/Error.hpp"
#include "zqpaths/Export.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/WorkWatcher.hpp"

namespace zqpaths {

struct EncodedScan;  // what a set remembers of the directories that its paths come from

class ZQPATHS_EXPORT PathSetWriter {
public:
    enum class Mode {
        kCreate,   // a new file; refuses one that is there
        kReplace,  // a new file, in the place of one that may be there
        kAppend,   // after the paths of a set that is there; what is added to a set of sets,
                   // all.zqs, is in a new set file, all.zqs.d/added-N.zqp, that it then has
    };

    /// How paths are kept: to be opened at once, or as small as can be, to be inflated by whoever
    /// reads them first.
    enum class Form { kImage, kPacked };

    /// Throws Error: kExists, kNotFound, kNotASet, kDamaged, kHeld, kNoSpace, kSystem.
    explicit PathSetWriter(std::string file, Mode mode = Mode::kCreate, Form form = Form::kImage);
    PathSetWriter(PathSetWriter&&) noexcept;
    PathSetWriter& operator=(PathSetWriter&&) noexcept;
    ~PathSetWriter();

    /// Gives the path the next number. Throws Error kWrongUse for an empty path, one with NUL, and
    /// after a commit; the writer is then as it was. Throws kNoSpace, kSystem and std::bad_alloc
    /// for what went wrong with those before, and the writer then takes no more: every call says
    /// so. Amortised O(bytes).
    void add(std::string_view path);

    /// Gives all paths of a set the next numbers, those that are gone as gone ones, by copying its
    /// segments as they are; paths that were added before are coded first. What it remembers of
    /// directories is left out. Throws Error kDamaged, with the name of the file, for a segment
    /// whose sum does not hold, and the writer then takes no more; what is missing of a set that
    /// was opened by PathSet::openPartial, and the writer is as it was; else as add. O(bytes of the
    /// file).
    void addSet(const PathSet& set);

    /// The same for the paths of some neighbouring segments, the first of which is at a place from
    /// 0 on. Throws as addSet, kWrongUse if there are fewer, and the writer is then as it was.
    void addSegments(const PathSet& set, std::uint64_t firstSegment, std::uint64_t segmentCount);

    /// Marks the path with a number that the set has, or will have, as gone: the file that it leads
    /// to is there no more, and it keeps its number; or as one that is there again. The last mark
    /// of a number counts. Throws as add does, kWrongUse for other numbers; those that a set of
    /// sets had before are such. Amortised O(1).
    void markGone(std::uint64_t number);
    void markPresent(std::uint64_t number);

    /// Has `watcher` told from the next call on of the paths that are coded, those of small
    /// segments that are joined among them, of the bytes that are copied, and of the moment from
    /// which on commit waits for the device. It may be called until the writer is gone.
    void watch(WorkWatcher watcher);

    /// Paths that the set will have: those that were there and those added.
    std::uint64_t size() const noexcept;

    /// Throws Error kExists if another has made the file meanwhile, kNoSpace, kSystem, kDamaged if
    /// small segments that were there cannot be joined; the file is then as it was, and the writer
    /// takes no more. Without any path a new set is empty, and valid; one that is appended to is
    /// not touched without a path or a mark that changes it. O(bytes + runs of gone paths), and now
    /// and then those of small segments that were there.
    void commit();

private:
    friend ZQPATHS_EXPORT void recordScans(PathSetWriter& writer, std::vector<EncodedScan> scans);

    class Work;
    std::unique_ptr<Work> work_;
};

}  // namespace zqpaths
