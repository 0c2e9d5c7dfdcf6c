#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathSetClass.hpp"
#include "tools/zqpaths/SetBuilding.hpp"
#include "tools/zqpaths/SetFile.hpp"
#include "tools/zqpaths/SetSources.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runMerge(const MergeOptions& options, const MessageOptions& messages) {
    requireRoomFor(options.out, options.force);
    MergedSource source(options.sets);
    std::optional<PathSet> set = buildSet(source, messages);
    if (!set) throw Failure(ExitStatus::kFailed, "no paths in these sets");
    SetFile::save(options.out, kPathSetClass, set->fields(),
                  options.force ? SetFile::Existing::kReplace : SetFile::Existing::kRefuse);
    tellSize(options.out, *set, messages);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
