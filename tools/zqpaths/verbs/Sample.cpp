#include <algorithm>

#include "tools/zqpaths/ChosenPaths.hpp"
#include "tools/zqpaths/Permutation.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runSample(const SampleOptions& options, const MessageOptions& messages) {
    PathSet set = openSet(options.set);
    const Permutation order(set.size(), options.seed);
    printChosen(
        set, std::min(options.count, order.size()),
        [&order](std::uint64_t place) { return order[place] + 1; }, "sampling", options.output,
        messages);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
