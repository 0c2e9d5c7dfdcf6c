#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathSetClass.hpp"
#include "tools/zqpaths/PrintablePath.hpp"
#include "tools/zqpaths/SetBuilding.hpp"
#include "tools/zqpaths/SetFile.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

std::string namesOf(const SourceOptions& source) {
    if (source.list) return *source.list == "-" ? "standard input" : printablePath(*source.list);
    std::string names;
    for (const std::string& directory : source.directories)
        names.append(names.empty() ? "" : ", ").append(printablePath(directory));
    return names;
}

}  // namespace

ExitStatus runIndex(const IndexOptions& options, const MessageOptions& messages) {
    requireRoomFor(options.set, options.force);
    const std::unique_ptr<PathSource> source = openSource(options.source);
    std::optional<PathSet> set = buildSet(*source, messages);
    if (!set) throw Failure(ExitStatus::kFailed, "no paths in " + namesOf(options.source));
    SetFile::save(options.set, kPathSetClass, set->fields(),
                  options.force ? SetFile::Existing::kReplace : SetFile::Existing::kRefuse);
    tellSize(options.set, *set, messages);
    return statusAfter(*source, options.source.ignoreUnreadable);
}

}  // namespace zqpaths
