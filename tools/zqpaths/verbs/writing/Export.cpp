#include <memory>
#include <string>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sources/WholeFiles.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/set/Pieces.hpp"

namespace zqpaths::program {
namespace {

struct ExportOptions {
    std::string set;
    PieceOptions pieces;
    MessageOptions messages;
};

ExitStatus exportSet(const ExportOptions& options) {
    if (options.pieces.treeString == options.pieces.pathTree)
        throw Failure(ExitStatus::kFailed, "the two pieces need two files");
    const PathSet set = openSet(options.set);
    const SavedPieces pieces = exportPieces(set);
    writeWholeFile(options.pieces.treeString, pieces.treeString);
    writeWholeFile(options.pieces.pathTree, pieces.pathTree);
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
                         "zqpaths export old.zqp --tree-string chars --path-tree paths"},
            .options = rows(setArgument(options->set), pieceOptions(options->pieces),
                            messageOptions(options->messages)),
            .run = [options] { return exportSet(*options); }};
}

}  // namespace zqpaths::program
