#include "tools/zqpaths/sets/ChosenPaths.hpp"

#include <algorithm>
#include <random>
#include <vector>

#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "zqpaths/choosing/Permutation.hpp"

namespace zqpaths::program {

void printChosen(const PathSet& set, std::uint64_t count, const Choice& numberAt,
                 const std::string& work, const OutputOptions& outputOptions,
                 const MessageOptions& messages) {
    Output output(outputOptions, {.isQuiet = messages.quiet});
    Progress progress(work, messages, count, Progress::Prints::kPaths);
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t begin = 0; begin < count; begin += numbers.size()) {
        numbers.resize(std::min<std::uint64_t>(kPathsPerCall, count - begin));
        for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = numberAt(begin + i);
        set.paths(numbers, [&](std::uint64_t number, std::string_view path) {
            output.path(number, path);
            progress.advance();
        });
    }
    output.finish();
}

std::uint64_t seedFor(const std::optional<std::uint64_t>& given, const MessageOptions& messages) {
    if (given) return *given;
    // 32 bits are enough to differ from one time to the next, and few enough to be typed.
    const std::uint64_t drawn = std::random_device()();
    const std::string digits = std::to_string(drawn);
    if (!messages.quiet) tell("seed " + digits + ": --seed " + digits + " gives the same again");
    return drawn;
}

void printInRandomOrder(const WantedPaths& wanted, std::uint64_t count, std::uint64_t seed,
                        const std::string& work, const OutputOptions& outputOptions,
                        const MessageOptions& messages) {
    const Permutation order(wanted.size(), seed);
    printChosen(
        wanted.set(), std::min(count, order.size()),
        [&](std::uint64_t place) { return wanted.numberAt(order[place]); }, work, outputOptions,
        messages);
}

}  // namespace zqpaths::program
