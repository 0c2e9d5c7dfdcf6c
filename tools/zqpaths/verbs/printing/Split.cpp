#include <cstdint>
#include <memory>
#include <string>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/ChosenPaths.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/choosing/Share.hpp"

namespace zqpaths::program {
namespace {

struct SplitOptions {
    std::string set;
    std::uint64_t rank = 0;  // from 0
    std::uint64_t of = 1;
    bool gone = false;
    OutputOptions output;
    MessageOptions messages;
};

/// The library's words, with the option that they are about.
Share shareOf(const WantedPaths& wanted, const SplitOptions& options) {
    try {
        return {wanted.size(), options.rank, options.of};
    } catch (const Error& error) {
        throw Failure(ExitStatus::kFailed,
                      (options.of == 0 ? "--of 0: " : "--") + std::string(error.what()));
    }
}

ExitStatus split(const SplitOptions& options) {
    const PathSet set = openSet(options.set);
    const WantedPaths wanted(set, options.gone);
    const Share share = shareOf(wanted, options);
    printChosen(
        set, share.size(), [&](std::uint64_t place) { return wanted.numberAt(share[place] - 1); },
        "splitting", options.output, options.messages);
    return ExitStatus::kDone;
}

}  // namespace

Verb splitVerb() {
    const auto options = std::make_shared<SplitOptions>();
    return {
        .name = "split",
        .synopsis = "SET --rank R --of N",
        .summary = "print the share of one of several readers",
        .examples = {"zqpaths split usr.zqp --rank 0 --of 4",
                     "zqpaths split data.zqp --rank 3 --of 4 -0 > fourth.list"},
        .options = rows(setArgument(options->set),
                        required(number("--rank", "R", options->rank,
                                        "which reader, from 0: number k is for k - 1 modulo N")),
                        required(number("--of", "N", options->of, "how many readers")),
                        goneOption(options->gone), outputOptions(options->output),
                        messageOptions(options->messages)),
        .run = [options] { return split(*options); }};
}

}  // namespace zqpaths::program
