#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/ChosenPaths.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct SampleOptions {
    std::string set;
    std::uint64_t count = 1;
    std::optional<std::uint64_t> seed;
    bool partial = false;
    bool gone = false;
    OutputOptions output;
    MessageOptions messages;
};

}  // namespace

Verb sampleVerb() {
    const auto options = std::make_shared<SampleOptions>();
    return {.name = "sample",
            .synopsis = "SET -n K [--seed S]",
            .summary = "print paths chosen at random",
            .examples = {"zqpaths sample usr.zqp -n 10 --seed 7",
                         "zqpaths sample data.zqp -n 1000 --seed 1 -0 | xargs -0 du -ch"},
            .options = rows(setArgument(options->set),
                            required(number("-n,--count", "K", options->count,
                                            "how many, each at most once; all if there are fewer")),
                            seedOption(options->seed), partialOption(options->partial),
                            goneOption(options->gone), outputOptions(options->output),
                            messageOptions(options->messages)),
            .run = [options] {
                const PathSet set = openSet(options->set, options->partial);
                printInRandomOrder({set, options->gone}, options->count,
                                   seedFor(options->seed, options->messages), "sampling",
                                   options->output, options->messages);
                return ExitStatus::kDone;
            }};
}

}  // namespace zqpaths::program
