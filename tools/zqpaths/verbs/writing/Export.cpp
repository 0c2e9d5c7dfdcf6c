#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sources/FileBeside.hpp"
#include "tools/zqpaths/sources/WholeFiles.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/set/Pieces.hpp"

namespace zqpaths::program {
namespace {

struct ExportOptions {
    std::string set;
    PieceOptions pieces;
    bool force = false;
    MessageOptions messages;
};

struct ExportPhase {
    enum : std::size_t { kReading, kCoding, kPacking, kWriting };
};

/// Measured with the lists that bench/RESULTS.md names; packing cannot be counted.
std::vector<WorkPhase> exportPhases() {
    return {{"reading", WorkUnit::kPaths, 4},
            {"coding", WorkUnit::kPaths, 10},
            {"packing", WorkUnit::kPaths, 90},
            {"writing", WorkUnit::kPaths, 1}};
}

bool areOneFile(const std::string& a, const std::string& b) {
    using std::filesystem::absolute;
    using std::filesystem::weakly_canonical;
    std::error_code error;
    return a == b || weakly_canonical(absolute(a, error), error) ==
                         weakly_canonical(absolute(b, error), error);
}

ExitStatus exportSet(const ExportOptions& options) {
    const PieceOptions& files = options.pieces;
    if (areOneFile(files.treeString, files.pathTree))
        throw Failure(ExitStatus::kFailed, "the two pieces need two files");
    if (!options.force)
        for (const std::string& file : {files.treeString, files.pathTree}) requireFree(file);
    const PathSet set = openSet(options.set);
    Progress progress("exporting", exportPhases(), options.messages);
    progress.expect(set.size());
    const SavedPieces pieces = exportPieces(set, [&](WorkStep step, std::uint64_t items) {
        if (step == WorkStep::kPacking) progress.begin(ExportPhase::kPacking);
        if (step == WorkStep::kCoding) progress.begin(ExportPhase::kCoding, set.size());
        progress.advance(items);
    });
    progress.begin(ExportPhase::kWriting);
    writeWholeFiles({{files.treeString, pieces.treeString}, {files.pathTree, pieces.pathTree}},
                    options.force);
    if (set.goneCount() > 0 && !options.messages.quiet)
        tell(printablePath(options.set) + ": " + groupDigits(set.goneCount()) +
             (set.goneCount() == 1 ? " path that is gone is" : " paths that are gone are") +
             " among those exported");
    return ExitStatus::kDone;
}

}  // namespace

Verb exportVerb() {
    const auto options = std::make_shared<ExportOptions>();
    return {.name = "export",
            .synopsis = "SET --tree-string FILE --path-tree FILE",
            .summary = "write a set as the two pieces that other hosts load",
            .examples = {"zqpaths export usr.zqp --tree-string usr.chars --path-tree usr.paths",
                         "zqpaths export usr.zqp --tree-string chars --path-tree paths --force"},
            .options = rows(setArgument(options->set), pieceOptions(options->pieces),
                            flag("--force", options->force, "replace files that are there"),
                            messageOptions(options->messages)),
            .run = [options] { return exportSet(*options); }};
}

}  // namespace zqpaths::program
