#include "tools/zqpaths/ChosenPaths.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

void requireReader(const SplitOptions& options) {
    if (options.of == 0) throw Failure(ExitStatus::kFailed, "--of 0: there is no reader");
    if (options.rank >= options.of)
        throw Failure(ExitStatus::kFailed, "--rank " + std::to_string(options.rank) + ": of " +
                                               std::to_string(options.of) +
                                               " readers the last has rank " +
                                               std::to_string(options.of - 1));
}

}  // namespace

/// Paths are dealt like cards: number k goes to the reader of rank (k - 1) mod N, so that the
/// shares differ by one path at most and each is spread over the whole set.
ExitStatus runSplit(const SplitOptions& options, const MessageOptions& messages) {
    requireReader(options);
    PathSet set = openSet(options.set);
    const std::uint64_t rest = set.size() % options.of;
    const std::uint64_t count = set.size() / options.of + (options.rank < rest ? 1 : 0);
    printChosen(
        set, count,
        [&options](std::uint64_t place) { return options.rank + 1 + place * options.of; },
        "splitting", options.output, messages);
    return ExitStatus::kDone;
}

}  // namespace zqpaths
