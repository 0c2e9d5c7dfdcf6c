#include "tools/zqpaths/ChosenPaths.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runShuffle(const ShuffleOptions& options, const MessageOptions& messages) {
    PathSet set = openSet(options.set);
    printInRandomOrder(set, set.size(), options.seed, "shuffling", options.output, messages);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
