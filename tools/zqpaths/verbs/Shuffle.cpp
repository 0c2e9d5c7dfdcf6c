#include "tools/zqpaths/ChosenPaths.hpp"
#include "tools/zqpaths/Permutation.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runShuffle(const ShuffleOptions& options, const MessageOptions& messages) {
    PathSet set = openSet(options.set);
    const Permutation order(set.size(), options.seed);
    printChosen(
        set, order.size(), [&order](std::uint64_t place) { return order[place] + 1; }, "shuffling",
        options.output, messages);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
