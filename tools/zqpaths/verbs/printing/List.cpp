#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/Pattern.hpp"
#include "zqpaths/search/PathScope.hpp"

namespace zqpaths::program {
namespace {

struct ListOptions {
    std::string set;
    bool walk = false;
    std::string under;  // only paths in this folder
    std::optional<std::string> glob;
    bool partial = false;
    bool gone = false;
    std::optional<std::uint64_t> depth;  // at most so many names below `under`
    OutputOptions output;
    MessageOptions messages;
};

/// Visits the paths that can be wanted, as few as the set can tell without looking at all.
void visitSome(const PathSet& set, const ListOptions& options,
               const std::optional<Pattern>& pattern, PathVisitor visit) {
    if (options.walk)
        set.walk(visit);
    else if (!options.under.empty())
        set.under(options.under, visit);
    else if (pattern)
        set.find(*pattern, visit);
    else
        set.forEach(visit);
}

/// The steps of a walk are not the numbers of paths.
OutputManner mannerOf(const ListOptions& options) {
    OutputManner manner{.isQuiet = options.messages.quiet};
    if (options.walk) {
        if (std::ranges::count(options.output.fields, PathField::kNumber) > 0)
            throw wrongUse("--fields: --walk gives no numbers");
        manner.forPrograms = {PathField::kPath};
    }
    return manner;
}

/// Prints what is wanted, and returns how many paths that is.
std::uint64_t printWanted(const PathSet& set, const ListOptions& options) {
    const PathScope scope(options.under, options.depth);
    std::optional<Pattern> pattern;
    if (options.glob) pattern = Pattern::glob(*options.glob);
    const bool isAll = options.under.empty() && !options.depth;

    Output output(options.output, mannerOf(options));
    Progress progress("listing", options.messages, set.size(), Progress::Prints::kPaths);
    std::uint64_t count = 0;
    const WantedPaths wanted(set, options.gone);
    visitSome(set, options, pattern, [&](std::uint64_t number, std::string_view path) {
        progress.advance();
        if (!wanted.areAll() && !wanted.has(options.walk ? set.numberOf(path).value() : number))
            return;
        if (!isAll && !scope.contains(path)) return;
        if (pattern && !pattern->matches(path)) return;
        ++count;
        if (options.walk)
            output.path(path);
        else
            output.path(number, path);
    });
    output.finish();
    return count;
}

bool hasFolder(const PathSet& set, const std::string& folder) {
    bool isThere = false;
    set.under(folder, [&isThere](std::uint64_t /*number*/, std::string_view /*path*/) {
        isThere = true;
        return false;
    });
    return isThere;
}

ExitStatus list(const ListOptions& options) {
    const PathSet set = openSet(options.set, options.partial);
    const bool isPart = !options.under.empty() || options.glob || options.depth;
    if (printWanted(set, options) > 0 || !isPart) return ExitStatus::kDone;
    if (!options.messages.quiet && !options.under.empty() && !hasFolder(set, options.under))
        tell(printablePath(options.set) + " has no folder " + printablePath(options.under));
    return ExitStatus::kNegative;
}

}  // namespace

Verb listVerb() {
    const auto options = std::make_shared<ListOptions>();
    return {
        .name = "list",
        .synopsis = "SET",
        .summary = "print all paths in the order of their numbers",
        .examples = {"zqpaths list usr.zqp --under /usr/lib --glob '*.so'",
                     "zqpaths list usr.zqp -0 | xargs -0 ls -ld"},
        .details =
            "FOLDER counts in whole names and in any number of separators. PATTERN is one "
            "as 'find' takes. The set's own walk goes folder by folder and leaves out a "
            "path that has others below it. Status 1 tells that there is none such path.",
        .options = rows(setArgument(options->set),
                        flag("--walk", options->walk, "in the order of the set's own walk"),
                        text("--under", "FOLDER", options->under, "only paths in this folder"),
                        text("--glob", "PATTERN", options->glob, "only paths that match"),
                        number("--depth", "N", options->depth, "at most N names below the folder"),
                        partialOption(options->partial), goneOption(options->gone),
                        outputOptions(options->output), messageOptions(options->messages)),
        .run = [options] { return list(*options); }};
}

}  // namespace zqpaths::program
