#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runMerge(const MergeOptions& /*options*/, const MessageOptions& /*messages*/) {
    throw Failure(ExitStatus::kFailed, "not there yet");
}

}  // namespace zqpaths
