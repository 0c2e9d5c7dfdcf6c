#include "tools/zqpaths/sets/ChosenPaths.hpp"

#include <algorithm>
#include <vector>

#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/Progress.hpp"
#include "zqpaths/choosing/Permutation.hpp"

namespace zqpaths::program {

void printChosen(const PathSet& set, std::uint64_t count, const Choice& numberAt,
                 const std::string& work, const OutputOptions& outputOptions,
                 const MessageOptions& messages) {
    Output output(outputOptions);
    Progress progress(work, messages, count, Progress::Prints::kPaths);
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t begin = 0; begin < count; begin += numbers.size()) {
        numbers.resize(std::min<std::uint64_t>(kPathsACall, count - begin));
        for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = numberAt(begin + i);
        set.paths(numbers, [&](std::uint64_t number, std::string_view path) {
            output.path(number, path);
            progress.advance();
        });
    }
    output.finish();
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
