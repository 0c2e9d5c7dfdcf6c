#include <optional>

#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/PathPattern.hpp"
#include "tools/zqpaths/PathScope.hpp"
#include "tools/zqpaths/Progress.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {

ExitStatus runList(const ListOptions& options, const MessageOptions& messages) {
    const PathScope scope(options.under, options.depth);
    std::optional<PathPattern> pattern;
    if (options.glob)
        pattern.emplace(PatternKind::kGlob, *options.glob, PathPattern::Case::kRespect);
    const auto isWanted = [&](std::string_view path) {
        return scope.contains(path) && (!pattern || pattern->matches(path));
    };

    PathSet set = openSet(options.set);
    Output output(options.output);
    Progress progress("listing", messages, set.size(), Progress::Prints::kPaths);
    if (options.walk) {
        set.walk([&](std::string_view path) {
            if (isWanted(path)) output.path(path);
            progress.advance();
        });
    } else {
        set.get(1, set.size(), [&](std::uint64_t number, std::string_view path) {
            if (isWanted(path)) output.path(number, path);
            progress.advance();
        });
    }
    output.finish();
    return ExitStatus::kDone;
}

}  // namespace zqpaths
