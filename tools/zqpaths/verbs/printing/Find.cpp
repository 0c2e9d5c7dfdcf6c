#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tools/zqpaths/arguments/PatternOptions.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/Pattern.hpp"

namespace zqpaths::program {
namespace {

struct FindOptions {
    std::string set;
    PatternOptions pattern;
    bool numbered = false;
    bool countOnly = false;
    bool statusOnly = false;
    bool partial = false;
    bool gone = false;
    OutputOptions output;
    MessageOptions messages;
};

bool hasMatch(const WantedPaths& wanted, const Pattern& pattern) {
    bool isFound = false;
    wanted.set().findNumbers(pattern, [&](std::uint64_t first, std::uint64_t last) {
        isFound = wanted.count(first, last) > 0;
        return !isFound;
    });
    return isFound;
}

std::uint64_t printMatches(const WantedPaths& wanted, const Pattern& pattern,
                           const FindOptions& options) {
    OutputManner manner;
    if (options.numbered) manner.asText = {PathField::kNumber, PathField::kPath};
    Output output(options.output, std::move(manner));
    Progress progress("finding", options.messages, std::nullopt, Progress::Prints::kPaths);
    std::uint64_t count = 0;
    wanted.set().find(pattern, [&](std::uint64_t number, std::string_view path) {
        progress.advance();
        if (!wanted.has(number)) return;
        ++count;
        output.path(number, path);
    });
    output.finish();
    return count;
}

std::uint64_t printCount(const WantedPaths& wanted, const Pattern& pattern,
                         const FindOptions& options) {
    std::uint64_t count = 0;
    wanted.set().findNumbers(pattern, [&](std::uint64_t first, std::uint64_t last) {
        count += wanted.count(first, last);
        return true;
    });
    Output output(options.output);
    output.count(count);
    output.finish();
    return count;
}

ExitStatus find(const FindOptions& options) {
    const Pattern pattern = patternOf(options.pattern);
    const PathSet set = openSet(options.set, options.partial);
    const WantedPaths wanted(set, options.gone);
    const auto isAny = [&] {
        if (options.statusOnly) return hasMatch(wanted, pattern);
        if (options.countOnly) return printCount(wanted, pattern, options) > 0;
        return printMatches(wanted, pattern, options) > 0;
    };
    return isAny() ? ExitStatus::kDone : ExitStatus::kNegative;
}

}  // namespace

Verb findVerb() {
    const auto options = std::make_shared<FindOptions>();
    return {
        .name = "find",
        .synopsis = "SET PATTERN",
        .summary = "print the paths that match a glob",
        .examples = {"zqpaths find usr.zqp '*.hpp' -0 | xargs -0 wc -l",
                     "zqpaths find usr.zqp -c -r 'lib[^/]*\\.so(\\.[0-9]+)*$'"},
        .details = kPatternDetails,
        .options = rows(
            setArgument(options->set), patternOptions(options->pattern),
            flag("-c,--count", options->countOnly, "print only how many match"),
            flag("-q,--quiet", options->statusOnly, "print nothing; status 0 if something matches"),
            partialOption(options->partial), goneOption(options->gone),
            outputOptions(options->output),
            excluding("--fields", flag("-n,--number", options->numbered,
                                       "print the number and a tab before each path")),
            progressOptions(options->messages)),
        .run = [options] { return find(*options); }};
}

}  // namespace zqpaths::program
