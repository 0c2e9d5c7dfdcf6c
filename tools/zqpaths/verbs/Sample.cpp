#include "tools/zqpaths/ChosenPaths.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runSample(const SampleOptions& options, const MessageOptions& messages) {
    PathSet set = openSet(options.set);
    printInRandomOrder(set, options.count, options.seed, "sampling", options.output, messages);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
