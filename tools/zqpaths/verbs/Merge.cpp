#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/NewSet.hpp"
#include "tools/zqpaths/SetBuilding.hpp"
#include "tools/zqpaths/SetSources.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runMerge(const MergeOptions& options, const MessageOptions& messages) {
    requireRoomFor(options.out, options.force);
    MergedSource source(options.sets);
    std::optional<PathSet> set = buildSet(source, messages);
    if (!set) throw Failure(ExitStatus::kFailed, "no paths in these sets");
    saveNewSet(options.out, *set, options.force, messages);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
