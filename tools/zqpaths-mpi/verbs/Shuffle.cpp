#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/zqpaths-mpi/paths/RandomOrder.hpp"
#include "tools/zqpaths-mpi/paths/ShareFile.hpp"
#include "tools/zqpaths-mpi/paths/TeamSet.hpp"
#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"

namespace zqpaths::program::mpi {
namespace {

struct ShuffleOptions {
    std::string set;
    std::optional<std::uint64_t> seed;
    std::optional<std::string> out;
    bool force = false;
    bool partial = false;
    bool gone = false;
    OutputOptions output;
    MessageOptions messages;
};

ExitStatus shuffle(Team& team, const ShuffleOptions& options) {
    const PathSet set = openOnAll(team, options.set, options.partial);
    const WantedPaths wanted(set, options.gone);
    const std::uint64_t seed = commonSeed(team, options.seed, options.messages);
    if (options.out)
        writeShares(team, wanted, seed, {*options.out, options.force}, options.output,
                    options.messages);
    else
        printInRandomOrder(team, wanted, wanted.size(), seed, "shuffling", options.output,
                           options.messages);
    return ExitStatus::kDone;
}

}  // namespace

Verb shuffleVerb(Team& team) {
    const auto options = std::make_shared<ShuffleOptions>();
    Option force = flag("--force", options->force, "replace files that are there");
    force.needed = "--out";
    return {
        .name = "shuffle",
        .synopsis = "SET [--seed S] [--out FILE]",
        .summary = "print all paths in a random order, or write a share of them for each rank",
        .examples = {"mpiexec -n 4 zqpaths-mpi shuffle data.zqs --seed 7 | head",
                     "mpiexec -n 64 zqpaths-mpi shuffle data.zqs --seed 7 --out epoch.txt"},
        .details =
            "The order in which 'zqpaths shuffle' prints them for the same seed. With --out rank R "
            "of N writes what 'zqpaths split --rank R --of N' prints for this seed, every N-th "
            "path "
            "of that order, to FILE with -R before its extension, in as many digits as the last "
            "rank needs: epoch-00.txt to epoch-63.txt. The files appear when all are whole.",
        .options =
            rows(setArgument(options->set), seedOption(options->seed),
                 text("--out", kFileValue, options->out, "each rank writes a file of its own"),
                 std::move(force), partialOption(options->partial), goneOption(options->gone),
                 outputOptions(options->output), messageOptions(options->messages)),
        .run = [&team, options] { return shuffle(team, *options); }};
}

}  // namespace zqpaths::program::mpi
