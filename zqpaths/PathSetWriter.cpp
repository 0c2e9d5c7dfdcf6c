#include "zqpaths/PathSetWriter.hpp"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "zqpaths/file/SetFileWriter.hpp"
#include "zqpaths/set/BackgroundWork.hpp"
#include "zqpaths/set/CollectedPaths.hpp"
#include "zqpaths/set/GonePaths.hpp"
#include "zqpaths/set/OpenedSet.hpp"
#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/set/Segment.hpp"
#include "zqpaths/set/SegmentBuilder.hpp"
#include "zqpaths/set/SegmentJoining.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths {
namespace {

SetFileWriter::Mode fileMode(PathSetWriter::Mode mode) noexcept {
    switch (mode) {
        case PathSetWriter::Mode::kCreate:
            return SetFileWriter::Mode::kCreate;
        case PathSetWriter::Mode::kReplace:
            return SetFileWriter::Mode::kReplace;
        case PathSetWriter::Mode::kAppend:
            break;
    }
    return SetFileWriter::Mode::kAppend;
}

SegmentForm segmentForm(PathSetWriter::Form form) noexcept {
    return form == PathSetWriter::Form::kPacked ? SegmentForm::kPacked : SegmentForm::kImage;
}

/// Calls `visit(path)` for all paths of a segment. Throws Error kDamaged and what `visit` throws.
template <class Visit>
void forEachPath(const Segment& segment, Visit visit) {
    segment.forEachPath(
        {1, segment.entry().pathCount}, [&](std::size_t position, std::string_view path) {
            if (path.empty() || path.find('\0') != std::string_view::npos)
                segment.refuse("path number " + std::to_string(position) + " of it is none");
            visit(path);
        });
}

}  // namespace

class PathSetWriter::Work {
public:
    Work(std::string file, Mode mode, Form form)
        : name_(std::move(file)),
          file_(name_, fileMode(mode)),
          form_(segmentForm(form)),
          pathCount_(file_.pathsBefore()) {
        for (const SegmentEntry& segment : file_.segments()) pathCount_ += segment.pathCount;
    }

    void add(std::string_view path) {
        if (failure_ || isCommitted_ || building_.hasFailed()) refuseMore();
        requirePath(path);
        if (!collected_.hasRoomFor(path)) doOrFail([this] { passOn(); });
        collected_.append(path);
        ++pathCount_;
    }

    void addSegments(const PathSet& set, std::uint64_t first, std::uint64_t count) {
        if (failure_ || isCommitted_ || building_.hasFailed()) refuseMore();
        openedSetOf(set).requireSegments(first, count);
        if (!set.missing().empty()) throw Error(set.missing().front().reason);
        doOrFail([&] {
            building_.finish();
            writeLast();
            collected_.clear();
            hasPassedOn_ = true;
            for (std::uint64_t place = first; place < first + count; ++place)
                copySegment(openedSetOf(set), place);
        });
    }

    void mark(std::uint64_t number, bool isGone) {
        if (failure_ || isCommitted_ || building_.hasFailed()) refuseMore();
        if (number == 0 || number > pathCount_)
            throw Error(ErrorKind::kWrongUse, name_,
                        "there is no path number " + std::to_string(number) + " to be marked");
        if (number <= file_.pathsBefore())
            throw Error(ErrorKind::kWrongUse, name_,
                        "is a set of sets, which cannot mark the paths of its files");
        if (isGone)
            marks_.markGone(numberInFile(number));
        else
            marks_.markPresent(numberInFile(number));
    }

    void recordScans(std::vector<EncodedScan> scans) { scans_ = std::move(scans); }

    std::uint64_t size() const noexcept { return pathCount_; }

    void watch(WorkWatcher watcher) {
        if (!failure_)
            doOrFail([this] { building_.finish(); });  // it may be telling the former one
        watcher_ = std::move(watcher);
    }

    void commit() {
        if (failure_ || isCommitted_) refuseMore();
        doOrFail([this] {
            building_.finish();
            writeLast();
            writeMarks();
            writeScans();
            if (watcher_) watcher_(WorkStep::kSyncing, 0);
            file_.commit();
        });
        isCommitted_ = true;
        collected_ = CollectedPaths();
        passedOn_ = CollectedPaths();
    }

private:
    /// Does something after whose failure the writer takes no more.
    template <class Step>
    void doOrFail(Step step) {
        try {
            step();
        } catch (...) {
            failure_ = std::current_exception();
            throw;
        }
    }

    [[noreturn]] void refuseMore() {
        if (isCommitted_)
            throw Error(ErrorKind::kWrongUse, name_, "the writer has committed its paths already");
        if (!failure_) doOrFail([this] { building_.finish(); });
        std::rethrow_exception(failure_);
    }

    void requirePath(std::string_view path) const {
        if (path.empty()) throw Error(ErrorKind::kWrongUse, name_, "an empty path");
        const std::size_t nul = path.find('\0');
        if (nul != std::string_view::npos)
            throw Error(ErrorKind::kWrongUse, name_,
                        "a path with NUL at byte " + std::to_string(nul));
    }

    /// Has the paths that were collected written while others are collected.
    void passOn() {
        building_.finish();
        hasPassedOn_ = true;
        std::swap(collected_, passedOn_);
        collected_.clear();
        building_.start([this] { write(passedOn_); });
    }

    void write(const CollectedPaths& paths) {
        try {
            file_.append(buildSegment(paths, form_, threadCount(), watcher_).view());
        } catch (const compressedpaths::SetTooLargeException&) {
            throw Error(ErrorKind::kWrongUse, name_, "a path is too long");
        }
    }

    /// Writes what is still collected, as one with small segments before it where there are many.
    /// Those that this writer has passed on are full, or nearly so; they are left to a later one,
    /// and so are those that it has copied.
    void writeLast() {
        if (collected_.isEmpty()) return;
        if (hasPassedOn_) return write(collected_);
        std::vector<SegmentSize> sizes;
        for (const SegmentEntry& segment : file_.segments())
            sizes.push_back({segment.pathCount, segment.textSize});
        sizes.push_back({collected_.size(), collected_.textSize()});
        const std::size_t first = firstToJoin(sizes);
        if (first + 1 < sizes.size()) return join(first);
        write(collected_);
    }

    /// Writes the paths of the segments from `first` on, which were all committed before, and those
    /// collected, anew.
    void join(std::size_t first) {
        const std::vector<SegmentEntry> joined(
            file_.segments().begin() + static_cast<std::ptrdiff_t>(first), file_.segments().end());
        file_.dropFrom(first);
        CollectedPaths paths;
        const auto collect = [&](std::string_view path) {
            if (!paths.hasRoomFor(path)) {
                write(paths);
                paths.clear();
            }
            paths.append(path);
        };
        for (const SegmentEntry& entry : joined)
            forEachPath(Segment(file_.committed(), entry, 1), collect);
        for (std::size_t i = 0; i < collected_.size(); ++i) collect(collected_[i]);
        write(paths);
    }

    void copySegment(const OpenedSet& set, std::uint64_t place) {
        const PinnedSegment segment = set.segment(place);
        const SetFile& from = segment.part().file();
        from.requireWhole();
        requireWholeMarks(from);
        const SetPart& part = set.parts()[set.parts().ofSegment(place)];
        const SegmentEntry& entry = segment->entry();
        file_.append({entry.form, entry.pathCount, entry.textSize, entry.treeStringSize,
                      from.wholeBytesOf(part.row.firstSegment + (place - part.segmentsBefore))});
        copyMarks(set, segment->firstNumber(), segment->lastNumber());
        pathCount_ += entry.pathCount;
        if (watcher_) watcher_(WorkStep::kSumming, entry.size);
    }

    /// Marks the paths that are gone of the next ones, which had these numbers.
    void copyMarks(const OpenedSet& set, std::uint64_t first, std::uint64_t last) {
        const std::uint64_t end = set.goneBelow(last + 1);
        for (std::uint64_t gone = set.goneBelow(first); gone < end; ++gone)
            marks_.appendGone(numberInFile(pathCount_ + 1 + (set.goneNumber(gone) - first)));
    }

    /// Looked at once for the segments of a file, one after the other.
    void requireWholeMarks(const SetFile& from) {
        const std::uint64_t directorySum = from.state().superblock.directorySum;
        if (wholeMarksOf_ == directorySum) return;
        from.wholeBytesOf(kGonePathsText, from.state().directory.gone);
        from.naming([&] { gonePathsOf(from).verify(); });
        wholeMarksOf_ = directorySum;
    }

    /// The file of a set of sets counts from 1 on.
    std::uint64_t numberInFile(std::uint64_t number) const noexcept {
        return number - file_.pathsBefore();
    }

    /// What there was in a file that is appended to.
    const Directory& directoryBefore() const {
        static const Directory kNothing;
        return file_.committed() ? file_.committed()->state().directory : kNothing;
    }
    std::span<const std::byte> bytesBefore(const char* what,
                                           const std::optional<BlockEntry>& block) const {
        if (!block) return {};
        return file_.committed()->wholeBytesOf(what, block);
    }

    void writeMarks() {
        if (marks_.isEmpty()) return;
        const std::optional<BlockEntry>& block = directoryBefore().gone;
        const auto before = bytesBefore(kGonePathsText, block);
        const std::uint64_t count = block ? block->count : 0;
        const GonePaths gone(before, count, numberInFile(pathCount_));
        if (block) file_.committed()->naming([&] { gone.verify(); });
        const GoneMarks::Runs runs = marks_.appliedTo(gone);
        // The length of the last run is in the count alone.
        if (runs.goneCount != count || !std::ranges::equal(runs.bytes, before))
            file_.putGone({runs.goneCount, runs.bytes});
    }

    /// Scans take the place of those of the same root.
    void writeScans() {
        if (scans_.empty()) return;
        std::vector<EncodedScan> all = splitScans(bytesBefore(kScansText, directoryBefore().scans));
        bool isChanged = false;
        for (EncodedScan& scan : scans_) {
            const auto there = std::ranges::find_if(
                all, [&](const EncodedScan& one) { return one.head.root == scan.head.root; });
            if (there != all.end() && there->saysTheSameAs(scan)) continue;
            isChanged = true;
            if (there != all.end())
                *there = std::move(scan);
            else
                all.push_back(std::move(scan));
        }
        if (!isChanged) return;
        std::uint64_t count = 0;
        for (const EncodedScan& scan : all) count += scan.directoryCount;
        file_.putScans({count, joinScans(all)});
    }

    std::string name_;
    SetFileWriter file_;
    SegmentForm form_;
    CollectedPaths collected_;
    CollectedPaths passedOn_;  // belongs to building_ while it works
    GoneMarks marks_;
    std::optional<std::uint64_t> wholeMarksOf_;  // the sum of a directory
    std::vector<EncodedScan> scans_;
    std::uint64_t pathCount_;  // of the set
    bool hasPassedOn_ = false;
    bool isCommitted_ = false;
    std::exception_ptr failure_;
    WorkWatcher watcher_;
    BackgroundWork building_;  // the last: it is waited for before the others go
};

PathSetWriter::PathSetWriter(std::string file, Mode mode, Form form)
    : work_(std::make_unique<Work>(std::move(file), mode, form)) {}

PathSetWriter::PathSetWriter(PathSetWriter&&) noexcept = default;
PathSetWriter& PathSetWriter::operator=(PathSetWriter&&) noexcept = default;
PathSetWriter::~PathSetWriter() = default;

void PathSetWriter::add(std::string_view path) {
    assert(work_);  // a writer that was moved from takes nothing
    work_->add(path);
}

void PathSetWriter::addSet(const PathSet& set) {
    addSegments(set, 0, set.segmentCount());
}

void PathSetWriter::addSegments(const PathSet& set, std::uint64_t firstSegment,
                                std::uint64_t segmentCount) {
    assert(work_);
    work_->addSegments(set, firstSegment, segmentCount);
}

void PathSetWriter::watch(WorkWatcher watcher) {
    assert(work_);
    work_->watch(std::move(watcher));
}

void PathSetWriter::markGone(std::uint64_t number) {
    assert(work_);
    work_->mark(number, true);
}

void PathSetWriter::markPresent(std::uint64_t number) {
    assert(work_);
    work_->mark(number, false);
}

std::uint64_t PathSetWriter::size() const noexcept {
    return work_ ? work_->size() : 0;
}

void PathSetWriter::commit() {
    assert(work_);
    work_->commit();
}

void recordScans(PathSetWriter& writer, std::vector<EncodedScan> scans) {
    assert(writer.work_);
    writer.work_->recordScans(std::move(scans));
}

}  // namespace zqpaths
