#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/SeenPaths.hpp"
#include "tools/zqpaths/sets/SetRoots.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "tools/zqpaths/sources/DirectorySource.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/update/SetScans.hpp"
#include "zqpaths/update/SetUpdate.hpp"

namespace zqpaths::program {
namespace {

struct DiffOptions {
    std::string first;
    std::string second;
    bool partial = false;
    OutputOptions output;
    MessageOptions messages;
};

/// Prints the paths of `set` that `other` has not, each once; whether there are any. Holds the
/// hashes of the other's paths and of those printed.
bool printMissing(const PathSet& set, const PathSet& other, Side side, Output& output,
                  Progress& progress) {
    const WantedPaths wanted(set, false);
    const WantedPaths wantedOfOther(other, false);
    SeenPaths seen;
    other.forEach([&](std::uint64_t number, std::string_view path) {
        if (wantedOfOther.has(number)) seen.insert(path);
        progress.advance();
    });
    bool isAny = false;
    set.forEach([&](std::uint64_t number, std::string_view path) {
        progress.advance();
        if (!wanted.has(number) || !seen.insert(path)) return;
        output.pathIn(side, number, path);
        isAny = true;
    });
    return isAny;
}

/// Prints what differs between a set and a directory, as far as that goes, folder by folder.
ExitStatus diffWithDisk(const DiffOptions& options) {
    const PathSet set = openSet(options.first, options.partial);
    const std::vector<Scan> scans = scansOf(set);
    SourceOptions source;
    source.directories.push_back(options.second);
    const std::vector<SetRoot> roots = rootsOf(options.first, scans, source);
    Output output(options.output, {.markKey = kSideKey, .isQuiet = options.messages.quiet});
    Progress progress("comparing", options.messages, std::nullopt, Progress::Prints::kPaths);
    bool isAny = false;
    std::uint64_t unreadableCount = 0;
    SetUpdate comparison(set, {},
                         {.onChange =
                              [&](PathChange change, std::uint64_t number, std::string_view path) {
                                  isAny = true;
                                  if (change == PathChange::kGone)
                                      output.pathIn(Side::kFirst, number, path);
                                  else
                                      output.pathIn(Side::kSecond, std::nullopt, path);
                              },
                          .onError =
                              [&](std::string_view path, std::string_view reason) {
                                  ++unreadableCount;
                                  tell(printablePath(path).append(": ").append(reason));
                              },
                          .onStep = [&] { progress.advance(); }});
    for (const SetRoot& root : roots) comparison.run(root.path, root.options, nullptr);
    output.finish();
    if (unreadableCount > 0) return ExitStatus::kFailed;
    return isAny ? ExitStatus::kNegative : ExitStatus::kDone;
}

ExitStatus diff(const DiffOptions& options) {
    if (isDirectory(options.second)) return diffWithDisk(options);
    const PathSet first = openSet(options.first, options.partial);
    const PathSet second = openSet(options.second, options.partial);
    nameWhatIsRead(printablePath(options.first) + " or " + printablePath(options.second));
    Output output(options.output, {.markKey = kSideKey, .isQuiet = options.messages.quiet});
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
    return {
        .name = "diff",
        .synopsis = "A B | A DIR",
        .summary = "print the paths that only one of two sets has, or a set or its directory",
        .examples = {"zqpaths diff monday.zqp tuesday.zqp", "zqpaths diff --json usr.zqp /usr/lib"},
        .details =
            "Paths only in A follow '< ', then paths only in B follow '> ', each once "
            "and in the order of numbers; order does not make sets differ. Status 1 "
            "tells that there are any. With a directory, what the set has of it is compared "
            "with what is there, folder by folder, as the set has read it.",
        .options = rows(argument("A", options->first, "a saved set"),
                        argument("B", options->second, "another, or a directory"),
                        partialOption(options->partial), outputOptions(options->output),
                        messageOptions(options->messages)),
        .run = [options] { return diff(*options); }};
}

}  // namespace zqpaths::program
