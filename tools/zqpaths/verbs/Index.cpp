#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/NewSet.hpp"
#include "tools/zqpaths/PrintablePath.hpp"
#include "tools/zqpaths/SetBuilding.hpp"
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
    saveNewSet(options.set, *set, options.force, messages);
    return statusAfter(*source, options.source.ignoreUnreadable);
}

}  // namespace zqpaths
