#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/output/Progress.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/SeenPaths.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct DiffOptions {
    std::string first;
    std::string second;
    OutputOptions output;
    MessageOptions messages;
};

/// Prints the paths of `set` that `other` has not, each once; whether there are any. Holds the
/// hashes of the other's paths and of those printed.
bool printMissing(const PathSet& set, const PathSet& other, Side side, Output& output,
                  Progress& progress) {
    SeenPaths seen;
    other.forEach([&](std::uint64_t /*number*/, std::string_view path) {
        seen.insert(path);
        progress.advance();
    });
    bool isAny = false;
    set.forEach([&](std::uint64_t number, std::string_view path) {
        progress.advance();
        if (!seen.insert(path)) return;
        output.pathIn(side, number, path);
        isAny = true;
    });
    return isAny;
}

ExitStatus diff(const DiffOptions& options) {
    const PathSet first = openSet(options.first);
    const PathSet second = openSet(options.second);
    nameWhatIsRead(printablePath(options.first) + " or " + printablePath(options.second));
    Output output(options.output, {.hasSides = true, .isQuiet = options.messages.quiet});
    Progress progress("comparing", options.messages, 2 * (first.size() + second.size()),
                      Progress::Prints::kPaths);
    const bool isAnyInFirst = printMissing(first, second, Side::kFirst, output, progress);
    const bool isAnyInSecond = printMissing(second, first, Side::kSecond, output, progress);
    output.finish();
    return isAnyInFirst || isAnyInSecond ? ExitStatus::kNegative : ExitStatus::kDone;
}

}  // namespace

Verb diffVerb() {
    const auto options = std::make_shared<DiffOptions>();
    return {.name = "diff",
            .synopsis = "A B",
            .summary = "print the paths that only one of two sets has",
            .examples = {"zqpaths diff monday.zqp tuesday.zqp",
                         "zqpaths diff --json monday.zqp tuesday.zqp"},
            .details =
                "Paths only in A follow '< ', then paths only in B follow '> ', each once "
                "and in the order of numbers; order does not make sets differ. Status 1 "
                "tells that there are any.",
            .options = rows(argument("A", options->first, "a saved set"),
                            argument("B", options->second, "another"),
                            outputOptions(options->output), messageOptions(options->messages)),
            .run = [options] { return diff(*options); }};
}

}  // namespace zqpaths::program
