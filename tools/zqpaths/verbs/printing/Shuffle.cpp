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

struct ShuffleOptions {
    std::string set;
    std::optional<std::uint64_t> seed;
    bool partial = false;
    bool gone = false;
    OutputOptions output;
    MessageOptions messages;
};

}  // namespace

Verb shuffleVerb() {
    const auto options = std::make_shared<ShuffleOptions>();
    return {.name = "shuffle",
            .synopsis = "SET [--seed S]",
            .summary = "print all paths in a random order",
            .examples = {"zqpaths shuffle usr.zqp --seed 7",
                         "zqpaths shuffle data.zqp --seed 7 | head"},
            .options = rows(setArgument(options->set), seedOption(options->seed),
                            partialOption(options->partial), goneOption(options->gone),
                            outputOptions(options->output), messageOptions(options->messages)),
            .run = [options] {
                const PathSet set = openSet(options->set, options->partial);
                printInRandomOrder({set, options->gone}, set.size(),
                                   seedFor(options->seed, options->messages), "shuffling",
                                   options->output, options->messages);
                return ExitStatus::kDone;
            }};
}

}  // namespace zqpaths::program
