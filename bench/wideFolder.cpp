// A million folders in one folder, each with a file: added in batches of 65,536, and what they
// take.

#include <algorithm>
#include <memory>

#include "bench/RealPaths.hpp"
#include "tests/support/HeapMeter.hpp"

namespace {

using bench::Batch;
using compressedpaths::HuffmanPathTree;

constexpr std::size_t kFolderCount = 1'000'000;
constexpr std::size_t kBatchSize = 65536;

std::u16string folderName(std::size_t i) {
    const std::string digits = std::to_string(kFolderCount + i);
    return {digits.begin(), digits.end()};
}

std::vector<Batch>& wideBatches() {
    static std::vector<Batch> all = [] {
        std::vector<Batch> made;
        for (std::size_t i = 0; i < kFolderCount; ++i) {
            if (i % kBatchSize == 0) made.emplace_back();
            made.back().folders.push_back({u"/", u"wide", folderName(i)});
            made.back().files.push_back({u"file"});
        }
        return made;
    }();
    return all;
}

void fillSet(HuffmanPathTree& set) {
    const std::u16string characters = u"/0123456789defilw";
    const std::vector<double> frequencies(characters.size(), 1.0);
    set.deflateHuffman(frequencies.data(), characters);
    for (Batch& batch : wideBatches()) set.generateCodeAsyncAndAddPaths(batch.folders, batch.files);
}

void fillStrings(std::vector<std::string>& strings) {
    strings.reserve(kFolderCount);
    for (std::size_t i = 0; i < kFolderCount; ++i)
        strings.push_back("/wide/" + std::to_string(kFolderCount + i) + "/file");
}

template <class Container>
void add(benchmark::State& state, void (*fill)(Container&)) {
    wideBatches();
    {
        const compressedpaths::HeapMeter use;
        Container container;
        fill(container);
        const auto folders = static_cast<double>(kFolderCount);
        state.counters["heap_bytes_a_folder"] = static_cast<double>(use.now()) / folders;
        state.counters["peak_bytes_a_folder"] = static_cast<double>(use.peak()) / folders;
    }
    for (auto _ : state) {
        state.PauseTiming();
        auto container = std::make_unique<Container>();
        state.ResumeTiming();
        fill(*container);
        state.PauseTiming();
        container.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kFolderCount));
}

BENCHMARK_CAPTURE(add, strings, fillStrings)
    ->Name("wide folder/vector of strings")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(add, set, fillSet)
    ->Name("wide folder/path set, all cores")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
