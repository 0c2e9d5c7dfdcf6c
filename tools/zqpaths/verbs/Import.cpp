#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/NewSet.hpp"
#include "tools/zqpaths/PathCheck.hpp"
#include "tools/zqpaths/PathSet.hpp"
#include "tools/zqpaths/RawPiece.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

/// The set of two pieces. How often each character occurs is in neither.
PathSet restore(const ImportOptions& options) {
    korvex::Array characters = readRawCharacters(options.treeString);
    if (kxGetNumberOfElements(characters.get()) == 0)
        throw failureAt(options.treeString, "is empty", ExitStatus::kDamaged);
    korvex::Array structure(kxCreateStructure({1, 1}, {kTreeStringField, kPathTreeField}));
    kxReplaceField(structure.get(), 0, kTreeStringField, characters.release());
    kxReplaceField(structure.get(), 0, kPathTreeField, readRawBytes(options.pathTree).release());
    return restoreSet(options.pathTree, std::move(structure));
}

}  // namespace

ExitStatus runImport(const ImportOptions& options, const MessageOptions& messages) {
    requireRoomFor(options.set, options.force);
    PathSet set = restore(options);
    requireWholePaths(set, options.pathTree, messages);
    saveNewSet(options.set, set, options.force, messages);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
