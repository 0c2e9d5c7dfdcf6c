#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runFind(const FindOptions& /*options*/, const MessageOptions& /*messages*/) {
    throw Failure(ExitStatus::kFailed, "not there yet");
}

}  // namespace zqpaths
