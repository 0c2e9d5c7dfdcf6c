#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathSet.hpp"
#include "tools/zqpaths/RawPiece.hpp"
#include "tools/zqpaths/SetFile.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

void writeField(const SetFile::Content& content, const char* field, const std::string& file,
                const std::string& set) {
    const kxArray* const structure = content.fields.get();
    if (kxGetFieldNumber(structure, field) < 0)
        throw Failure(ExitStatus::kDamaged, set + ": has no field " + field);
    writeRawPiece(file, kxGetField(structure, 0, field));
}

}  // namespace

ExitStatus runExport(const ExportOptions& options, const MessageOptions& /*messages*/) {
    if (options.treeString == options.pathTree)
        throw Failure(ExitStatus::kFailed, "the two pieces need two files");
    const SetFile::Content content = SetFile::load(options.set);
    writeField(content, kTreeStringField, options.treeString, options.set);
    writeField(content, kPathTreeField, options.pathTree, options.set);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
