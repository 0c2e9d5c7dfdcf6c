#include <algorithm>
#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/ChosenPaths.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/choosing/PathParts.hpp"
#include "zqpaths/choosing/Share.hpp"

namespace zqpaths::program {
namespace {

constexpr const char* kWork = "splitting";

struct SplitOptions {
    std::string set;
    std::optional<std::uint64_t> rank;  // from 0
    std::optional<std::uint64_t> of;
    std::optional<std::uint64_t> epoch;
    std::uint64_t skip = 0;
    std::vector<double> fractions;
    std::optional<std::uint64_t> part;  // from 1
    std::optional<std::uint64_t> seed;
    bool partial = false;
    bool gone = false;
    OutputOptions output;
    MessageOptions messages;
};

double parseFraction(std::string_view text) {
    double fraction = 0;
    const char* const end = text.data() + text.size();
    const auto [parsed, error] = std::from_chars(text.data(), end, fraction);
    if (error != std::errc() || parsed != end)
        throw wrongUse("--fractions: " + std::string(text) + " is no number like 0.9");
    return fraction;
}

std::vector<double> parseFractions(std::string_view text) {
    std::vector<double> fractions;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        fractions.push_back(parseFraction(text.substr(begin, end - begin)));
        begin = end + 1;
    }
    return fractions;
}

Option fractionsOption(std::vector<double>& fractions) {
    Option option{"--fractions", "F,F...",
                  "cut the set by its paths into parts of these sizes, which add up to 1",
                  [&fractions](const std::string& text) { fractions = parseFractions(text); }};
    return excluding("--rank", std::move(option));
}

/// Throws Failure kFailed, with the usage, for options that do not go together.
void requireOneWay(const SplitOptions& options) {
    const bool isShare = options.rank || options.of;
    const bool isPart = !options.fractions.empty() || options.part;
    if (isShare == isPart)
        throw wrongUse("either --rank and --of are required or --fractions and --part");
    if (isShare && !(options.rank && options.of)) throw wrongUse("--rank and --of go together");
    if (isPart && (options.fractions.empty() || !options.part))
        throw wrongUse("--fractions and --part go together");
    if (isPart && (options.epoch || options.skip > 0))
        throw wrongUse("--epoch and --skip go with --rank");
}

/// Those who read other shares or parts must have the same seed. So one that nobody is told of is
/// none to split by.
std::uint64_t commonSeed(const SplitOptions& options) {
    if (!options.seed && options.messages.quiet)
        throw wrongUse("--quiet leaves a drawn seed untold: --seed is required with it");
    return seedFor(options.seed, options.messages);
}

template <class AnyShare>
void printShare(const WantedPaths& wanted, const AnyShare& share, const SplitOptions& options) {
    if (options.skip > share.size())
        throw Failure(ExitStatus::kFailed,
                      "--skip " + std::to_string(options.skip) +
                          ": so many paths are in this share: " + std::to_string(share.size()));
    printChosen(
        wanted.set(), share.size() - options.skip,
        [&](std::uint64_t place) { return wanted.numberAt(share[place + options.skip] - 1); },
        kWork, options.output, options.messages);
}

/// The library's words, with the option that they are about.
Share dealtShare(const WantedPaths& wanted, const SplitOptions& options) {
    try {
        return {wanted.size(), *options.rank, *options.of};
    } catch (const Error& error) {
        throw Failure(ExitStatus::kFailed,
                      (*options.of == 0 ? "--of 0: " : "--") + std::string(error.what()));
    }
}

void printShare(const WantedPaths& wanted, const SplitOptions& options) {
    const Share dealt = dealtShare(wanted, options);
    if (options.seed || options.epoch) {
        const ShuffledShare shuffled(wanted.size(), *options.rank, *options.of, commonSeed(options),
                                     options.epoch.value_or(0));
        printShare(wanted, shuffled, options);
    } else {
        printShare(wanted, dealt, options);
    }
}

PathParts partsOf(const SplitOptions& options) {
    try {
        return {options.fractions, commonSeed(options)};
    } catch (const Error& error) {
        throw Failure(ExitStatus::kFailed, "--" + std::string(error.what()));
    }
}

void printPart(const WantedPaths& wanted, const SplitOptions& options) {
    const std::size_t count = options.fractions.size();
    if (*options.part < 1 || *options.part > count)
        throw Failure(ExitStatus::kFailed, "--part " + std::to_string(*options.part) +
                                               ": the parts count from 1 to " +
                                               std::to_string(count));
    const PathParts parts = partsOf(options);
    Output output(options.output);
    Progress progress(kWork, options.messages, wanted.set().size(), Progress::Prints::kPaths);
    wanted.set().forEach([&](std::uint64_t number, std::string_view path) {
        if (wanted.has(number) && parts.partOf(path) == *options.part) output.path(number, path);
        progress.advance();
    });
    output.finish();
}

ExitStatus split(const SplitOptions& options) {
    requireOneWay(options);
    const PathSet set = openSet(options.set, options.partial);
    const WantedPaths wanted(set, options.gone);
    if (options.rank)
        printShare(wanted, options);
    else
        printPart(wanted, options);
    return ExitStatus::kDone;
}

}  // namespace

Verb splitVerb() {
    const auto options = std::make_shared<SplitOptions>();
    return {
        .name = "split",
        .synopsis =
            "SET --rank R --of N [--seed S [--epoch E]] [--skip K] | "
            "SET --fractions F,F... --part P [--seed S]",
        .summary = "print the share of one of several readers, or one of the parts of a set",
        .examples = {"zqpaths split data.zqp --rank 3 --of 4 --seed 7 --epoch 12 --skip 5000",
                     "zqpaths split data.zqp --fractions 0.9,0.1 --part 1 --seed 7 -0 | "
                     "zqpaths index training.zqp --list - -0"},
        .details =
            "Readers: number k of the set is for the reader of rank (k - 1) modulo N. With a seed "
            "or an epoch the paths are shuffled before, in each epoch otherwise and the same on "
            "every machine, and a reader that has K paths of its share goes on with --skip K. "
            "Parts: a path's part depends on seed, fractions and the path's bytes alone, so that "
            "it stays in its part when the set grows. The sizes of the parts are those of the "
            "fractions as chance has it; the last part takes what rounded fractions leave. "
            "All readers and all parts of a set need the same seed; to share a part "
            "among readers, make a set of it.",
        .options = rows(
            setArgument(options->set), number("--rank", "R", options->rank, "which reader, from 0"),
            number("--of", "N", options->of, "how many readers"),
            number("--epoch", "E", options->epoch, "the shuffle of this epoch, from 0"),
            number("--skip", "K", options->skip, "leave out the first K paths of the share"),
            fractionsOption(options->fractions),
            number("--part", "P", options->part, "which part, from 1"), seedOption(options->seed),
            partialOption(options->partial), goneOption(options->gone),
            outputOptions(options->output), messageOptions(options->messages)),
        .run = [options] { return split(*options); }};
}

}  // namespace zqpaths::program
