#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
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
    const SavedPieces pieces = exportPieces(openSet(options.set));
    writeWholeFiles({{files.treeString, pieces.treeString}, {files.pathTree, pieces.pathTree}},
                    options.force);
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
