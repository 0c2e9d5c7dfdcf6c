// Adding all paths, next to what a program would hold them in otherwise; and what each then takes.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <set>

#include "bench/RealPaths.hpp"

namespace {

void report(benchmark::State& state, std::size_t heapBytes) {
    const auto pathCount = static_cast<double>(bench::paths().size());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bench::paths().size()));
    state.counters["heap_bytes_a_path"] = static_cast<double>(heapBytes) / pathCount;
}

/// Runs `fill` on a new Container and measures what that takes; destruction is not timed.
template <class Container, class Fill>
void measure(benchmark::State& state, Fill fill) {
    std::size_t heapBytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto container = std::make_unique<Container>();
        const std::size_t before = bench::heapBytes();
        state.ResumeTiming();
        fill(*container);
        state.PauseTiming();
        heapBytes = bench::heapBytes() - before;
        container.reset();
        state.ResumeTiming();
    }
    report(state, heapBytes);
}

void addingToPathSet(benchmark::State& state) {
    bench::batches();
    measure<compressedpaths::HuffmanPathTree>(state, bench::fill);
}
BENCHMARK(addingToPathSet)
    ->Name("adding/path set")
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

void addingToStdSet(benchmark::State& state) {
    bench::paths();
    measure<std::set<std::u16string>>(state, [](std::set<std::u16string>& set) {
        for (const std::u16string& path : bench::paths()) set.insert(path);
    });
}
BENCHMARK(addingToStdSet)
    ->Name("adding/std::set of UTF-16")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void addingToSortedText(benchmark::State& state) {
    bench::paths();
    measure<std::vector<std::u16string>>(state, [](std::vector<std::u16string>& texts) {
        texts = bench::paths();
        std::sort(texts.begin(), texts.end());
    });
}
BENCHMARK(addingToSortedText)
    ->Name("adding/sorted UTF-16 text")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
