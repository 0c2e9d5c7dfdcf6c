#pragma once
// GrowingSet is a set file that a verb makes or adds to, path by path, with what the person at the
// terminal sees of it: progress, how many paths it holds in the end, and that a signal takes
// everything back.
//
//     GrowingSet set("usr.zqp", PathSetWriter::Mode::kCreate, "indexing", messages);
//     source->visit([&set](std::string_view path) { set.add(path); });
//     set.save();  // tells "usr.zqp holds 2 paths"
//
// SIGINT, SIGTERM and SIGHUP end the program when what was not saved is gone, or when all is saved.
//
// Threads: one set at a time, on one thread.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths::program {

/// A new file, which may take the place of one that is there with --force.
inline PathSetWriter::Mode modeOfNew(bool force) {
    return force ? PathSetWriter::Mode::kReplace : PathSetWriter::Mode::kCreate;
}

/// Tells "usr.zqp holds 2 paths".
void tellSizeOfSet(const std::string& file, std::uint64_t size);

class GrowingSet {
public:
    /// `work` names it for the progress, `total` is how many paths come, if that is known. Throws
    /// Error as PathSetWriter does.
    GrowingSet(const std::string& file, PathSetWriter::Mode mode, std::string work,
               const MessageOptions& messages, std::optional<std::uint64_t> total = std::nullopt,
               PathSetWriter::Form form = PathSetWriter::Form::kImage);

    /// The same for sets that are added as they are, with so many bytes of segments.
    struct Copies {
        std::uint64_t byteCount;
    };
    GrowingSet(const std::string& file, PathSetWriter::Mode mode, std::string work,
               const MessageOptions& messages, Copies copies);

    /// Throws Error as PathSetWriter does, and Failure if a signal has come.
    void add(std::string_view path) {
        DeferredSignals::throwIfOneCame();
        writer_->add(path);
        ++addedCount_;
        progress_.advance();
    }

    /// Adds all paths of a set by copying its segments. Throws as add does.
    void addSet(const PathSet& set) {
        for (std::uint64_t segment = 0; segment < set.segmentCount(); ++segment) {
            DeferredSignals::throwIfOneCame();
            writer_->addSegments(set, segment, 1);
        }
    }

    /// For a step of work that adds nothing, such as a path that was read and is not wanted. Throws
    /// Failure if a signal has come.
    void step() {
        DeferredSignals::throwIfOneCame();
        progress_.advance();
    }

    /// Asks `part` how much of what is to be added has been read, for who cannot tell how many
    /// paths come; on any thread, until the set is saved or gone.
    void expectBy(std::function<std::optional<double>()> part) {
        progress_.expectBy(std::move(part));
    }

    /// For who adds paths otherwise; they are not counted, and no signal ends it.
    PathSetWriter& writer() noexcept { return *writer_; }

    std::uint64_t addedCount() const noexcept { return addedCount_; }

    /// Makes the paths those of the file, and tells how many there are; or does not tell.
    void save();
    void saveQuietly();

    /// Tells how many paths the file has; for who adds none.
    void tellSize() const;

private:
    GrowingSet(const std::string& file, PathSetWriter::Mode mode, std::string work,
               const MessageOptions& messages, PathSetWriter::Form form,
               std::vector<WorkPhase> phases);

    const std::string file_;
    const MessageOptions messages_;
    std::uint64_t addedCount_ = 0;
    std::uint64_t sizeBefore_ = 0;
    const std::size_t lastPhase_;
    // In this order: a signal that came takes effect when the writer has discarded what it has, and
    // the writer tells of its progress until it is gone.
    const DeferredSignals signals_;
    Progress progress_;
    std::optional<PathSetWriter> writer_;
};

}  // namespace zqpaths::program
