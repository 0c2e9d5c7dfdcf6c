// What the boundary to a host costs: all paths added and fetched through host arrays, next to the
// core alone. Making the input arrays is the host program's work and measured apart.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <optional>

#include "bench/RealPaths.hpp"
#include "host/runtime/Session.hpp"

namespace {

using compressedpaths::HuffmanPathTree;
using compressedpaths::Path;
using Lists = std::vector<std::vector<std::u16string>>;

constexpr const char* kClassName = "korvex.io.datastore.internal.fileset.HuffmanPaths";
constexpr std::size_t kRequestSize = 10000;

korvex::Session& session() {
    static korvex::Session loaded;
    static const bool isLoaded = (loaded.loadLibrary(ZQ_LIBRARY), true);
    benchmark::DoNotOptimize(isLoaded);
    return loaded;
}

/// The lists as the host passes them: a cell of cells of character rows.
korvex::Array cellsOf(const Lists& lists) {
    korvex::Array outer(kxCreateCell({lists.size(), 1}));
    for (std::size_t i = 0; i < lists.size(); ++i) {
        korvex::Array inner(kxCreateCell({lists[i].size(), 1}));
        for (std::size_t k = 0; k < lists[i].size(); ++k)
            kxReplaceCell(inner.get(), k, kxCreateCharacters(lists[i][k]));
        kxReplaceCell(outer.get(), i, inner.release());
    }
    return outer;
}

/// A batch in host arrays.
struct HostBatch {
    korvex::Array folders;
    korvex::Array files;

    explicit HostBatch(const bench::Batch& batch)
        : folders(cellsOf(batch.folders)), files(cellsOf(batch.files)) {}
};

/// An object with the code of all characters and no paths.
korvex::Object codingObject() {
    std::u16string characters;
    std::vector<double> frequencies;
    for (const auto& [character, frequency] : bench::frequencies()) {
        characters.push_back(character);
        frequencies.push_back(frequency);
    }
    return session().construct(kClassName, korvex::text(u"frequencies"), korvex::text(characters),
                               korvex::numbers(frequencies));
}

void addThroughHost(korvex::Object& object, const HostBatch& batch) {
    object.call("addPaths", 0, batch.folders, batch.files);
}

void countPaths(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bench::paths().size()));
}

void addByCore(benchmark::State& state) {
    bench::batches();
    for (auto _ : state) {
        state.PauseTiming();
        auto set = std::make_unique<HuffmanPathTree>();
        set->deflateHuffman(bench::frequencies());
        state.ResumeTiming();
        for (const bench::Batch& batch : bench::batches()) {
            Lists folders = batch.folders;
            Lists files = batch.files;
            set->generateCodeAsyncAndAddPaths(folders, files);
        }
        state.PauseTiming();
        set.reset();
        state.ResumeTiming();
    }
    countPaths(state);
}

void addByHost(benchmark::State& state) {
    bench::batches();
    for (auto _ : state) {
        state.PauseTiming();
        std::optional<korvex::Object> object = codingObject();
        for (const bench::Batch& batch : bench::batches()) {
            std::optional<HostBatch> arrays(batch);
            state.ResumeTiming();
            addThroughHost(*object, *arrays);
            state.PauseTiming();
            arrays.reset();
        }
        object.reset();
        state.ResumeTiming();
    }
    countPaths(state);
}

void makeInputArrays(benchmark::State& state) {
    bench::batches();
    for (auto _ : state) {
        for (const bench::Batch& batch : bench::batches()) {
            std::optional<HostBatch> arrays(batch);
            state.PauseTiming();
            arrays.reset();
            state.ResumeTiming();
        }
    }
    countPaths(state);
}

/// All paths of folder groups, joined as the host gets them.
std::vector<std::u16string> joined(const std::vector<Path>& folders, const std::vector<Path>& files,
                                   const HuffmanPathTree& set) {
    std::vector<std::u16string> paths;
    for (std::size_t group = 0; group < folders.size(); ++group) {
        std::u16string prefix = set.generatePathFrom(folders[group].front());
        for (std::size_t i = 1; i < folders[group].size(); ++i)
            prefix.append(set.generatePathFrom(folders[group][i])).push_back(u'/');
        for (const auto& file : files[group]) paths.push_back(prefix + set.generatePathFrom(file));
    }
    return paths;
}

/// True if this is the path with that number, without the marker of paths that have no folder.
bool isPath(std::u16string_view fetched, std::size_t number) {
    if (fetched.starts_with(u'\0')) fetched.remove_prefix(1);
    return fetched == bench::paths()[number - 1];
}

/// Runs `fetch(numbers)` for all paths in ranges, and compares what `pathAt(result, i)` gives.
template <class Fetch, class PathAt>
void fetchAll(benchmark::State& state, Fetch fetch, PathAt pathAt) {
    const std::size_t pathCount = bench::paths().size();
    for (auto _ : state) {
        for (std::size_t begin = 0; begin < pathCount; begin += kRequestSize) {
            state.PauseTiming();
            std::vector<double> numbers(std::min(kRequestSize, pathCount - begin));
            std::iota(numbers.begin(), numbers.end(), static_cast<double>(begin + 1));
            state.ResumeTiming();
            auto result = fetch(numbers);
            state.PauseTiming();
            for (std::size_t i = 0; i < numbers.size(); ++i)
                if (!isPath(pathAt(result, i), begin + i + 1))
                    state.SkipWithError("a path differs from what was added");
            result.clear();
            state.ResumeTiming();
        }
    }
    countPaths(state);
}

void fetchByCore(benchmark::State& state) {
    HuffmanPathTree set;
    bench::fill(set);
    fetchAll(
        state,
        [&](const std::vector<double>& numbers) {
            std::vector<Path> folders;
            std::vector<Path> files;
            set.getPath(folders, files, numbers);
            return joined(folders, files, set);
        },
        [](const std::vector<std::u16string>& paths, std::size_t i) -> std::u16string_view {
            return paths[i];
        });
}

void fetchByHost(benchmark::State& state) {
    korvex::Object object = codingObject();
    for (const bench::Batch& batch : bench::batches()) addThroughHost(object, HostBatch(batch));
    fetchAll(
        state,
        [&](const std::vector<double>& numbers) {
            return object.call("getPaths", 1, korvex::numbers(numbers), korvex::text(u"/"));
        },
        [](const std::vector<korvex::Array>& outputs, std::size_t i) {
            return kxGetCharacters(kxGetCell(outputs.front().get(), i));
        });
}

BENCHMARK(addByCore)
    ->Name("adding at the boundary/core alone")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(addByHost)
    ->Name("adding at the boundary/through the host")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(makeInputArrays)
    ->Name("adding at the boundary/making the input arrays")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(fetchByCore)
    ->Name("fetching at the boundary/core alone")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(fetchByHost)
    ->Name("fetching at the boundary/through the host")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
