// Fetching paths by number and decoding them, in the orders that readers ask in, next to copying
// them out of a list of plain text, which takes many times the memory.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "bench/RealPaths.hpp"

namespace {

using compressedpaths::HuffmanPathTree;
using compressedpaths::Path;

constexpr std::size_t kRequestSize = 10000;

HuffmanPathTree& filledSet() {
    static HuffmanPathTree set;
    static const bool isFilled = (bench::fill(set), true);
    benchmark::DoNotOptimize(isFilled);
    return set;
}

/// All path numbers, shuffled the same way in each run, or in order.
std::vector<double> numbers(bool isShuffled) {
    std::vector<double> all(bench::paths().size());
    std::iota(all.begin(), all.end(), 1.0);
    if (isShuffled) std::shuffle(all.begin(), all.end(), std::mt19937_64(1));
    return all;
}

void fetch(benchmark::State& state, bool isShuffled, std::size_t requestSize) {
    HuffmanPathTree& set = filledSet();
    const std::vector<double> all = numbers(isShuffled);
    std::vector<double> request;
    std::vector<Path> folders;
    std::vector<Path> files;
    std::size_t position = 0;
    std::size_t fetched = 0;
    for (auto _ : state) {
        if (position + requestSize > all.size()) position = 0;
        const std::size_t end = std::min(position + requestSize, all.size());
        request.assign(all.begin() + static_cast<std::ptrdiff_t>(position),
                       all.begin() + static_cast<std::ptrdiff_t>(end));
        folders.clear();
        files.clear();
        set.getPath(folders, files, request);
        for (const auto* paths : {&folders, &files})
            for (const Path& path : *paths)
                for (const auto& code : path) benchmark::DoNotOptimize(set.generatePathFrom(code));
        fetched += end - position;
        position = end;
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(fetched));
}

void copyText(benchmark::State& state, bool isShuffled) {
    const std::vector<double> all = numbers(isShuffled);
    std::size_t position = 0;
    for (auto _ : state) {
        const auto number = static_cast<std::size_t>(all[position]);
        benchmark::DoNotOptimize(std::u16string(bench::paths()[number - 1]));
        if (++position == all.size()) position = 0;
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK_CAPTURE(copyText, text, false)->Name("fetching in order/plain text");
BENCHMARK_CAPTURE(fetch, ranges, false, kRequestSize)->Name("fetching in order/10,000 a request");
BENCHMARK_CAPTURE(fetch, single, false, 1)->Name("fetching in order/1 a request");
BENCHMARK_CAPTURE(copyText, text, true)->Name("fetching shuffled/plain text");
BENCHMARK_CAPTURE(fetch, ranges, true, kRequestSize)->Name("fetching shuffled/10,000 a request");
BENCHMARK_CAPTURE(fetch, single, true, 1)->Name("fetching shuffled/1 a request");

void walk(benchmark::State& state) {
    HuffmanPathTree& set = filledSet();
    Path path;
    for (auto _ : state)
        for (set.resetPathsToBTree(); set.hasNextPathFromBTree();) {
            set.getNextPathFromBTree(path);
            benchmark::DoNotOptimize(path);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bench::paths().size()));
}
BENCHMARK(walk)->Name("fetching in order/walk, coded")->Unit(benchmark::kMillisecond);

}  // namespace
