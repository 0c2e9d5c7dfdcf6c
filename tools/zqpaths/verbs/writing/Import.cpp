#include <memory>
#include <string>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/GrowingSet.hpp"
#include "tools/zqpaths/sources/WholeFiles.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/set/Pieces.hpp"

namespace zqpaths::program {
namespace {

struct ImportOptions {
    std::string set;
    PieceOptions pieces;
    bool force = false;
    MessageOptions messages;
};

ExitStatus importSet(const ImportOptions& options) {
    GrowingSet set(options.set, modeOfNew(options.force), "importing", options.messages);
    importPieces({.treeString = readWholeFile(options.pieces.treeString),
                  .pathTree = readWholeFile(options.pieces.pathTree),
                  .treeStringName = options.pieces.treeString,
                  .pathTreeName = options.pieces.pathTree},
                 set.writer());
    set.save();
    return ExitStatus::kDone;
}

}  // namespace

Verb importVerb() {
    const auto options = std::make_shared<ImportOptions>();
    return {.name = "import",
            .synopsis = "SET --tree-string FILE --path-tree FILE",
            .summary = "make a set of two pieces that another host saved",
            .examples = {"zqpaths import usr.zqp --tree-string usr.chars --path-tree usr.paths",
                         "zqpaths import usr.zqp --tree-string chars --path-tree paths --force"},
            .options = rows(setArgument(options->set), pieceOptions(options->pieces),
                            forceOption(options->force), messageOptions(options->messages)),
            .run = [options] { return importSet(*options); }};
}

}  // namespace zqpaths::program
