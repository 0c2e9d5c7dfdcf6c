#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/zqpaths-mpi/input/InputPlan.hpp"
#include "tools/zqpaths-mpi/input/PieceFolder.hpp"
#include "tools/zqpaths-mpi/input/PieceMaking.hpp"
#include "tools/zqpaths-mpi/input/PlanText.hpp"
#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"
#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/GrowingSet.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"
#include "zqpaths/directory/FileIdentity.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"

namespace zqpaths::program::mpi {
namespace {

struct IndexOptions {
    std::string set;
    SourceOptions source;
    std::optional<std::uint64_t> pieceSize;
    bool resume = false;
    bool force = false;
    MessageOptions messages;
};

enum Phase : std::size_t { kPaths, kWeight };

/// What rank 0 has of the work: the plan, what the pieces have become, and in the end the set.
class Index {
public:
    /// Plans the work, or takes up the plan of a run that did not end. Throws Failure kFailed and
    /// Error as SetManifestWriter.
    explicit Index(const IndexOptions& options)
        : options_(options),
          folder_(options.set),
          begun_(options.resume ? folder_.plan() : std::nullopt),
          writer_(options.set, mode()) {
        SourceOptions source = options.source;
        if (std::optional<FileIdentity> own = fileAt(folder_.path()))
            source.notTaken.push_back(*std::move(own));
        plan_ = planInput(source, options.pieceSize, options.set);
        reports_.resize(plan_.pieces.size());
        if (begun_)
            takeUp(*begun_);
        else
            begin();
        for (const InputPiece& piece : plan_.pieces) weight_ += piece.weight;
    }

    /// The next piece that is still to be made.
    std::optional<std::string> nextPiece() {
        while (next_ < reports_.size() && reports_[next_]) ++next_;
        if (next_ == reports_.size()) return std::nullopt;
        const InputPiece& piece = plan_.pieces[next_];
        DealtPiece dealt{.setFile = folder_.setFile(next_),
                         .reportFile = folder_.reportFile(next_),
                         .weight = piece.weight,
                         .parts = piece.parts};
        for (const SourcePart& part : piece.parts)
            dealt.stamps.push_back(plan_.sources[part.source].stamp);
        dealt_.push_back(next_++);
        return encodePiece(dealt);
    }

    void take(const ResultPart& part) {
        result_ += part.bytes;
        if (!part.isLast) return;
        reports_[dealt_.at(part.piece)] = decodeReport(std::exchange(result_, {}));
    }

    /// How much of the work is done, from 0 to 1; on any thread.
    void addWeight(std::uint64_t weight) noexcept { weightDone_ += weight; }
    double partDone() const noexcept {
        return weight_ == 0 ? 1 : static_cast<double>(weightDone_) / static_cast<double>(weight_);
    }

    /// Makes the set of what the pieces have become. Throws Failure kFailed if they have no path.
    SourceReport finish() {
        SourceReport all;
        for (std::size_t piece = 0; piece < reports_.size(); ++piece) {
            const PieceReport& report = reports_[piece].value();
            all += report.source;
            if (report.pathCount > 0) writer_.addSet(folder_.setFile(piece));
        }
        if (writer_.size() == 0) {
            folder_.remove();
            throw Failure(ExitStatus::kFailed, "no paths in " + printableNames(options_.source));
        }
        writer_.commit();
        folder_.keepSetFilesAlone();
        if (!options_.messages.quiet) tellSizeOfSet(options_.set, writer_.size());
        return all;
    }

private:
    /// A run that was killed just when it had made the set is resumed, too.
    SetManifestWriter::Mode mode() const {
        bool mayReplace = options_.force;
        if (begun_) {
            const std::optional<PlanSummary> summary = summaryOfPlan(*begun_);
            mayReplace = (summary && summary->mayReplace) || folder_.hasFilesOfSet();
        }
        return mayReplace ? SetManifestWriter::Mode::kReplace : SetManifestWriter::Mode::kCreate;
    }

    void begin() {
        if (!options_.force) folder_.requireEmpty();
        folder_.clear();
        folder_.make();
        folder_.writePlan(encodePlan(plan_, options_.source,
                                     {folder_.generation(), options_.force, plan_.pieces.size()}));
    }

    void takeUp(const std::string& begun) {
        const std::optional<PlanSummary> summary = summaryOfPlan(begun);
        if (!summary)
            throw failureAt(folder_.path(),
                            "holds a plan that cannot be read; --force begins anew");
        folder_.takeGeneration(summary->generation);
        requireSamePlan(begun, encodePlan(plan_, options_.source, *summary), folder_.path());
        for (std::size_t piece = 0; piece < reports_.size(); ++piece) {
            reports_[piece] = folder_.reportOfWhole(piece);
            if (reports_[piece]) addWeight(plan_.pieces[piece].weight);
        }
    }

    const IndexOptions& options_;
    PieceFolder folder_;
    std::optional<std::string> begun_;  // the plan of the run that is resumed
    SetManifestWriter writer_;  // from the beginning, so that nobody else makes the set meanwhile
    InputPlan plan_;
    std::vector<std::optional<PieceReport>> reports_;  // of the pieces that are done
    std::vector<std::size_t> dealt_;                   // which piece each dealt one is
    std::size_t next_ = 0;                             // that may be dealt
    std::string result_;                               // of the piece at hand
    std::uint64_t weight_ = 0;
    std::atomic<std::uint64_t> weightDone_{0};
};

/// What each rank does: the pieces that it is dealt.
void makePieces(Member& member, const IndexOptions& options) {
    PieceMaking making(
        options.source, options.set, PieceFolder(options.set).path(),
        {.onPaths =
             [&member](std::uint64_t paths) {
                 member.throwIfStopped();
                 member.advance(paths, kPaths);
             },
         .onWeight = [&member](std::uint64_t weight) { member.advance(weight, kWeight); },
         .onUnreadable = [&member](std::string_view text) { member.tell(text); }});
    forEachPiece(member, [&](const Piece& piece) {
        const PieceReport report = making.make(decodePiece(piece.description));
        member.give(piece.number, encodeReport(report));
    });
}

ExitStatus index(Team& team, IndexOptions options) {
    requireSources(options.source);
    if (options.pieceSize == 0) throw wrongUse("--piece-size 0 would never end");
    // Once, so that files of patterns may change meanwhile.
    options.source.exclude = walkOptionsOf(options.source).exclude;
    options.source.excludeFrom.clear();

    const DeferredSignals signals;
    const auto work = [&options](Member& member) { makePieces(member, options); };
    if (!team.isFirst()) {
        team.run({.work = work});
        return ExitStatus::kDone;
    }
    Index index(options);
    {
        Progress progress("indexing", options.messages);
        progress.expectBy([&index] { return std::optional(index.partDone()); });
        team.run({.work = work,
                  .nextPiece = [&index] { return index.nextPiece(); },
                  .take = [&index](const ResultPart& part) { index.take(part); },
                  .advance =
                      [&](std::size_t phase, std::uint64_t items) {
                          if (phase == kPaths)
                              progress.advance(items);
                          else
                              index.addWeight(items);
                      }});
    }
    return statusAfter(index.finish(), options.source, options.messages);
}

}  // namespace

Verb indexVerb(Team& team) {
    const auto options = std::make_shared<IndexOptions>();
    return {
        .name = "index",
        .synopsis = "SET DIR... | SET --from FORMAT FILE... | SET --list FILE...",
        .summary = "make a set of sets of directories, archives, listings or lists",
        .examples = {"mpiexec -n 16 zqpaths-mpi index data.zqs /data --exclude '*.tmp'",
                     "mpiexec -n 4 zqpaths-mpi index all.zqs --list one.txt two.txt --resume"},
        .details =
            std::string(
                "The input is cut into pieces, which are dealt to the ranks as they become "
                "free: files, ranges of large files that are read line by line, directories. "
                "How it is cut depends on the input alone, so that any number of ranks makes "
                "the same set, with the paths in the order in which one process would have "
                "them. Each piece becomes a set file in the folder SET.d, and SET appears when "
                "all are whole. What a run that did not end has left there is kept: --resume "
                "goes on with it if options and input are the same. ") +
            kSourceDetails,
        .options = rows(
            setArgument(options->set), sourceOptions(options->source, SourceReaders::kMany),
            number("--piece-size", "BYTES", options->pieceSize,
                   "cut the input into pieces of at most so many bytes (a thousandth of "
                   "it, 64 MiB to 2 GiB)"),
            flag("--resume", options->resume,
                 "keep what a run that did not end has made, and make the rest"),
            excluding("--resume", forceOption(options->force)), messageOptions(options->messages)),
        .run = [options, &team] { return index(team, *options); }};
}

}  // namespace zqpaths::program::mpi
