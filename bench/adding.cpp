// Adding all paths in batches of 65,536, next to what a program would hold them in otherwise; what
// each takes of the heap then and at most on the way; and freeing it.

#include <algorithm>
#include <memory>
#include <set>

#include "bench/RealPaths.hpp"
#include "tests/support/HeapMeter.hpp"

namespace {

using bench::Batch;
using bench::Order;
using compressedpaths::CodedBatch;
using compressedpaths::HuffmanPathTree;

/// Codes a batch on this thread and adds it.
void addOnThisThread(HuffmanPathTree& set, const Batch& batch) {
    CodedBatch coded(set);
    const std::vector<std::u16string> none;
    const std::vector<std::u16string>* before = &none;
    for (std::size_t i = 0; i < batch.folders.size(); ++i) {
        const std::vector<std::u16string>& folder = batch.folders[i];
        const auto end =
            std::mismatch(before->begin(), before->end(), folder.begin(), folder.end()).second;
        coded.beginEntry(static_cast<std::size_t>(end - folder.begin()));
        for (auto component = end; component != folder.end(); ++component)
            coded.appendFolder(*component);
        for (const std::u16string& file : batch.files[i]) coded.appendFile(file);
        before = &folder;
    }
    set.addCodedBatch(coded);
}

void fillOnThisThread(HuffmanPathTree& set, Order order) {
    set.deflateHuffman(bench::frequencies());
    for (const Batch& batch : bench::batches(order)) addOnThisThread(set, batch);
}

void fillStrings(std::vector<std::string>& strings, Order order) {
    strings.reserve(bench::pathCount());
    for (const std::string& text : bench::texts(order)) strings.push_back(text);
}

void fillBlob(bench::TextBlob& blob, Order order) {
    blob = bench::makeBlob(bench::texts(order));
}

void fillStdSet(std::set<std::u16string>& set, Order order) {
    for (const std::u16string& path : bench::paths(order)) set.insert(path);
}

void fillSorted(std::vector<std::u16string>& sorted, Order order) {
    sorted.reserve(bench::pathCount());
    for (const std::u16string& path : bench::paths(order)) sorted.push_back(path);
    std::sort(sorted.begin(), sorted.end());
}

/// Makes all that is read while a container is filled.
void prepare(Order order) {
    bench::batches(order);
    bench::frequencies();
    bench::paths(order);
    HuffmanPathTree warm;  // the threads of the first use, which stay, are nobody's memory
    warm.deflateHuffman(bench::frequencies());
    Batch& batch = bench::batches(order).front();
    warm.generateCodeAsyncAndAddPaths(batch.folders, batch.files);
}

template <class Container>
using Fill = void (*)(Container&, Order);

/// Fills a new container; freeing it is not timed.
template <class Container>
auto adding(Fill<Container> fill) {
    return [fill](benchmark::State& state, Order order) {
        prepare(order);
        {
            compressedpaths::HeapMeter use;
            Container container;
            fill(container, order);
            bench::countBytes(state, "heap_bytes_a_path", static_cast<double>(use.now()));
            bench::countBytes(state, "peak_bytes_a_path", static_cast<double>(use.peak()));
        }
        for (auto _ : state) {
            state.PauseTiming();
            auto container = std::make_unique<Container>();
            state.ResumeTiming();
            fill(*container, order);
            state.PauseTiming();
            container.reset();
            state.ResumeTiming();
        }
        bench::countPaths(state);
    };
}

/// Frees a full container; filling it is not timed.
template <class Container>
auto freeing(Fill<Container> fill) {
    return [fill](benchmark::State& state, Order order) {
        prepare(order);
        for (auto _ : state) {
            state.PauseTiming();
            auto container = std::make_unique<Container>();
            fill(*container, order);
            state.ResumeTiming();
            container.reset();
        }
        bench::countPaths(state);
    };
}

template <class Container>
void registerAdding(Order order, const char* variant, Fill<Container> fill) {
    bench::registerRun("adding", order, variant, adding(fill))
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
}

template <class Container>
void registerFreeing(Order order, const char* variant, Fill<Container> fill) {
    bench::registerRun("freeing", order, variant, freeing(fill))
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(3);  // filling takes most of the time
}

[[maybe_unused]] const bool areRegistered = [] {
    for (const Order order : bench::kOrders) {
        registerAdding(order, "vector of strings", fillStrings);
        registerAdding(order, "text and offsets", fillBlob);
        registerAdding(order, "set of UTF-16", fillStdSet);
        registerAdding(order, "sorted UTF-16", fillSorted);
        registerAdding(order, "path set, one core", fillOnThisThread);
        registerAdding(order, "path set, all cores", &bench::fill);
    }
    for (const Order order : bench::kOrders) {
        registerFreeing(order, "vector of strings", fillStrings);
        registerFreeing(order, "text and offsets", fillBlob);
        registerFreeing(order, "path set", &bench::fill);
    }
    return true;
}();

}  // namespace
