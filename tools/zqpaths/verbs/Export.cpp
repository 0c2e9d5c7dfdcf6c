#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathSet.hpp"
#include "tools/zqpaths/RawPiece.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

void writeField(const kxArray* structure, const char* field, const std::string& file,
                const std::string& set) {
    if (kxGetFieldNumber(structure, field) < 0)
        throw failureAt(set, std::string("has no field ") + field, ExitStatus::kDamaged);
    writeRawPiece(file, kxGetField(structure, 0, field));
}

}  // namespace

ExitStatus runExport(const ExportOptions& options, const MessageOptions& /*messages*/) {
    if (options.treeString == options.pathTree)
        throw Failure(ExitStatus::kFailed, "the two pieces need two files");
    const korvex::Array fields = loadFields(options.set);
    writeField(fields.get(), kTreeStringField, options.treeString, options.set);
    writeField(fields.get(), kPathTreeField, options.pathTree, options.set);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
