#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/PathPattern.hpp"
#include "tools/zqpaths/PathScan.hpp"
#include "tools/zqpaths/Progress.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runFind(const FindOptions& options, const MessageOptions& messages) {
    const PathPattern pattern(
        options.kind, options.pattern,
        options.ignoreCase ? PathPattern::Case::kIgnore : PathPattern::Case::kRespect);
    const bool printsPaths = !options.countOnly && !options.statusOnly;

    PathSet set = openSet(options.set);
    Output output(options.output);
    Progress progress("searching", messages, set.size(),
                      printsPaths ? Progress::Prints::kPaths : Progress::Prints::kNothing);
    std::uint64_t matchCount = 0;
    scanPaths(
        set,
        [&](std::uint64_t number, std::string_view path) {
            progress.advance();
            if (!pattern.matches(path)) return;
            ++matchCount;
            if (printsPaths) output.numberedPath(number, path);
        },
        [&] { return options.statusOnly && matchCount > 0; });

    if (options.countOnly && !options.statusOnly) output.count(matchCount);
    output.finish();
    return matchCount > 0 ? ExitStatus::kDone : ExitStatus::kNegative;
}

}  // namespace zqpaths
