#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/Progress.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/SeenPaths.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

/// Prints the paths of `set` that `other` has not, each once; whether there are any. Holds the
/// hashes of the other's paths and of those printed.
bool printMissing(PathSet& set, PathSet& other, Side side, Output& output, Progress& progress) {
    SeenPaths seen;
    other.get(1, other.size(), [&](std::uint64_t /*number*/, std::string_view path) {
        seen.insert(path);
        progress.advance();
    });
    bool isAny = false;
    set.get(1, set.size(), [&](std::uint64_t number, std::string_view path) {
        progress.advance();
        if (!seen.insert(path)) return;
        output.pathIn(side, number, path);
        isAny = true;
    });
    return isAny;
}

}  // namespace

ExitStatus runDiff(const DiffOptions& options, const MessageOptions& messages) {
    PathSet first = openSet(options.first);
    PathSet second = openSet(options.second);
    Output output(options.output);
    Progress progress("comparing", messages, 2 * (first.size() + second.size()),
                      Progress::Prints::kPaths);
    const bool isAnyInFirst = printMissing(first, second, Side::kFirst, output, progress);
    const bool isAnyInSecond = printMissing(second, first, Side::kSecond, output, progress);
    output.finish();
    return isAnyInFirst || isAnyInSecond ? ExitStatus::kNegative : ExitStatus::kDone;
}

}  // namespace zqpaths
