#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/zqpaths-mpi/paths/RandomOrder.hpp"
#include "tools/zqpaths-mpi/paths/TeamSet.hpp"
#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"

namespace zqpaths::program::mpi {
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

ExitStatus sample(Team& team, const SampleOptions& options) {
    const PathSet set = openOnAll(team, options.set, options.partial);
    const std::uint64_t seed = commonSeed(team, options.seed, options.messages);
    printInRandomOrder(team, {set, options.gone}, options.count, seed, "sampling", options.output,
                       options.messages);
    return ExitStatus::kDone;
}

}  // namespace

Verb sampleVerb(Team& team) {
    const auto options = std::make_shared<SampleOptions>();
    return {.name = "sample",
            .synopsis = "SET -n K [--seed S]",
            .summary = "print paths chosen at random",
            .examples = {"mpiexec -n 4 zqpaths-mpi sample data.zqs -n 1000000 --seed 7",
                         "mpiexec -n 4 zqpaths-mpi sample data.zqs -n 1000 --seed 1 --csv"},
            .details = "The paths that 'zqpaths sample' prints for the same seed, in their order.",
            .options = rows(setArgument(options->set),
                            required(number("-n,--count", "K", options->count,
                                            "how many, each at most once; all if there are fewer")),
                            seedOption(options->seed), partialOption(options->partial),
                            goneOption(options->gone), outputOptions(options->output),
                            messageOptions(options->messages)),
            .run = [&team, options] { return sample(team, *options); }};
}

}  // namespace zqpaths::program::mpi
