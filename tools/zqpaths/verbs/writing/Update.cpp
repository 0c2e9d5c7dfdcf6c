#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sets/GrowingSet.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/SetRoots.hpp"
#include "tools/zqpaths/sources/SourceReport.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/update/SetScans.hpp"
#include "zqpaths/update/SetUpdate.hpp"

namespace zqpaths::program {
namespace {

struct UpdateOptions {
    std::string set;
    SourceOptions source;
    bool dryRun = false;
    OutputOptions output;
    MessageOptions messages;
};

/// Makes the changes that an update finds, tells them and counts them.
class Changes {
public:
    /// `set` is null if nothing is to be changed.
    Changes(GrowingSet* set, const UpdateOptions& options)
        : set_(set),
          isQuiet_(options.messages.quiet),
          onUnreadable_(options.source.verbose ? UnreadableVisitor(tell) : nullptr),
          output_(options.output, {.markKey = kChangeKey, .isQuiet = isQuiet_}) {}

    void take(PathChange change, std::uint64_t number, std::string_view path) {
        if (!isQuiet_) output_.changed(change, number, path);
        switch (change) {
            case PathChange::kAdded:
                ++addedCount_;
                if (set_ != nullptr) set_->add(path);
                break;
            case PathChange::kGone:
                ++goneCount_;
                if (set_ != nullptr) set_->writer().markGone(number);
                break;
            case PathChange::kBack:
                ++backCount_;
                if (set_ != nullptr) set_->writer().markPresent(number);
        }
    }

    void takeError(std::string_view path, std::string_view reason) {
        report_.addUnreadable(path, reason, onUnreadable_);
    }

    void finish(const std::string& file) {
        output_.finish();
        if (!isQuiet_) tell(printablePath(file) + ": " + summary());
    }

    ExitStatus status(const UpdateOptions& options) const {
        const ExitStatus status = statusAfter(report_, options.source, options.messages);
        if (report_.unreadableCount > 0) tell("what the set has of them stays as it was");
        return status;
    }

private:
    /// "12 paths added, 5 gone, 1 back".
    std::string summary() const {
        if (addedCount_ + goneCount_ + backCount_ == 0) return "nothing has changed";
        std::string text = groupDigits(addedCount_) +
                           (addedCount_ == 1 ? " path added, " : " paths added, ") +
                           groupDigits(goneCount_) + " gone";
        if (backCount_ > 0) text += ", " + groupDigits(backCount_) + " back";
        return text;
    }

    GrowingSet* set_;
    bool isQuiet_;
    UnreadableVisitor onUnreadable_;
    Output output_;
    std::uint64_t addedCount_ = 0;
    std::uint64_t goneCount_ = 0;
    std::uint64_t backCount_ = 0;
    SourceReport report_;
};

/// Goes through the roots. Returns what is to be remembered of them.
std::vector<EncodedScan> updateRoots(const PathSet& set, const std::vector<SetRoot>& roots,
                                     const std::vector<Scan>& scans, GrowingSet* growing,
                                     Changes& changes) {
    SetUpdate update(
        set, allRoots(scans, roots),
        {.onChange = [&](PathChange change, std::uint64_t number,
                         std::string_view path) { changes.take(change, number, path); },
         .onError = [&](std::string_view path,
                        std::string_view reason) { changes.takeError(path, reason); },
         .onStep =
             [growing] {
                 if (growing != nullptr) growing->step();
             }});
    std::vector<EncodedScan> updated;
    for (const SetRoot& root : roots) {
        EncodedScan scan = update.run(root.path, root.options, root.scan);
        if (!root.isPart) updated.push_back(std::move(scan));
    }
    return updated;
}

ExitStatus update(const UpdateOptions& options) {
    requireSetFile(openSet(options.set),
                   "cannot be updated; make one set file of it with 'zqpaths merge --into'");
    std::optional<GrowingSet> growing;
    if (!options.dryRun)
        growing.emplace(options.set, PathSetWriter::Mode::kAppend, "updating", options.messages);
    // Opened when the writer holds the file: what others have added up to then is there.
    const PathSet set = openSet(options.set);
    const std::vector<Scan> scans = scansOf(set);
    const std::vector<SetRoot> roots = rootsOf(options.set, scans, options.source);
    GrowingSet* const changed = growing ? &*growing : nullptr;
    Changes changes(changed, options);
    std::vector<EncodedScan> updated = updateRoots(set, roots, scans, changed, changes);
    if (growing) {
        recordScans(growing->writer(), std::move(updated));
        growing->saveQuietly();
    }
    changes.finish(options.set);
    return changes.status(options);
}

}  // namespace

Verb updateVerb() {
    const auto options = std::make_shared<UpdateOptions>();
    return {
        .name = "update",
        .synopsis = "SET [DIR...]",
        .summary = "bring a set up to date with its directories",
        .examples = {"zqpaths update usr.zqp", "zqpaths update --dry-run usr.zqp /usr"},
        .details =
            "Only directories whose times have changed are read. A path that is there is added "
            "after those of the set and printed after '+ ', one that is not is marked as gone "
            "and printed after '- '. It keeps its number, which is its own again if it comes "
            "back. Without DIR all directories that the set was made of are looked at, each as it "
            "was read then; another DIR is read whole. What cannot be read stays as it was.",
        .options = rows(setArgument(options->set),
                        directoriesArgument(
                            options->source,
                            "directories to be compared; all that the set was made of without any"),
                        flag("-n,--dry-run", options->dryRun, "tell what would change"),
                        walkOptions(options->source), outputOptions(options->output),
                        messageOptions(options->messages)),
        .run = [options] { return update(*options); }};
}

}  // namespace zqpaths::program
