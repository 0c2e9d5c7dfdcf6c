// Saving and loading the set, next to compressing the plain text of the paths at the same level.

#include <benchmark/benchmark.h>
#include <zlib.h>

#include <string>

#include "bench/RealPaths.hpp"

namespace {

using compressedpaths::Bytes;
using compressedpaths::HuffmanPathTree;

struct Saved {
    HuffmanPathTree set;
    Bytes bytes;

    Saved() {
        bench::fill(set);
        set.serialize(bytes, true);
    }
};

Saved& saved() {
    static Saved all;
    return all;
}

Bytes deflateText() {
    const std::string& text = bench::text();
    Bytes out(compressBound(text.size()));
    uLongf length = out.size();
    compress2(out.data(), &length, reinterpret_cast<const Bytef*>(text.data()), text.size(),
              Z_BEST_COMPRESSION);
    out.resize(length);
    return out;
}

void report(benchmark::State& state, std::size_t savedBytes) {
    const auto pathCount = static_cast<double>(bench::paths().size());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bench::paths().size()));
    state.counters["saved_bytes_a_path"] = static_cast<double>(savedBytes) / pathCount;
    state.counters["text_bytes_a_path"] = static_cast<double>(bench::text().size()) / pathCount;
}

void savePathSet(benchmark::State& state) {
    saved();
    for (auto _ : state) {
        Bytes bytes;
        saved().set.serialize(bytes, true);
        benchmark::DoNotOptimize(bytes);
    }
    report(state, saved().bytes.size());
}
BENCHMARK(savePathSet)->Name("saving/path set")->Unit(benchmark::kMillisecond);

void saveText(benchmark::State& state) {
    std::size_t size = 0;
    for (auto _ : state) size = deflateText().size();
    report(state, size);
}
BENCHMARK(saveText)->Name("saving/deflated text")->Unit(benchmark::kMillisecond);

void loadPathSet(benchmark::State& state) {
    Bytes bytes = saved().bytes;
    for (auto _ : state) {
        HuffmanPathTree loaded;
        loaded.deserialize(bytes, true);
        loaded.inflateHuffman(saved().set.getTreeString());
    }
    report(state, bytes.size());
}
BENCHMARK(loadPathSet)->Name("loading/path set")->Unit(benchmark::kMillisecond);

void loadText(benchmark::State& state) {
    const Bytes deflated = deflateText();
    for (auto _ : state) {
        std::string text(bench::text().size(), '\0');
        uLongf length = text.size();
        uncompress(reinterpret_cast<Bytef*>(text.data()), &length, deflated.data(),
                   deflated.size());
        std::vector<std::string> paths;
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = text.find('\n', begin);
            paths.push_back(text.substr(begin, end - begin));
            begin = end + 1;
        }
        benchmark::DoNotOptimize(paths);
    }
    report(state, deflated.size());
}
BENCHMARK(loadText)->Name("loading/deflated text")->Unit(benchmark::kMillisecond);

}  // namespace
