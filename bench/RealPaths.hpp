#pragma once
// The paths that all benchmarks measure with: the text file named by ZQ_PATHS, one path a line, or
// what /usr holds; as they are listed, and shuffled, the same way in each run. They are read once.
//
// Threads: benchmarks run on one.

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace bench {

enum class Order { kListed, kShuffled };
inline constexpr std::array kOrders{Order::kListed, Order::kShuffled};

/// One batch as the set takes it, which leaves it as it is.
struct Batch {
    std::vector<std::vector<std::u16string>> folders;
    std::vector<std::vector<std::u16string>> files;
};

/// Paths as one text, a line each, and where each begins: the least that gives a path by its
/// number.
struct TextBlob {
    std::string text;
    std::vector<std::uint32_t> begins;  // one more than there are paths

    std::string_view operator[](std::size_t i) const noexcept {
        return {text.data() + begins[i], begins[i + 1] - begins[i] - 1};
    }
};

std::size_t pathCount();
const std::vector<std::string>& texts(Order order = Order::kListed);  // the bytes on disk
const TextBlob& blob(Order order = Order::kListed);
const std::vector<std::u16string>& paths(Order order = Order::kListed);

/// The paths as folder entries, in batches of 65,536 paths.
std::vector<Batch>& batches(Order order = Order::kListed);

/// How often each character occurs in the names of all batches.
const std::unordered_map<char16_t, double>& frequencies();

/// Builds the code of all characters and adds all batches, coded on all cores.
void fill(compressedpaths::HuffmanPathTree& set, Order order = Order::kListed);

/// A set with all paths. Benchmarks do not change it.
compressedpaths::HuffmanPathTree& filledSet(Order order);

TextBlob makeBlob(const std::vector<std::string>& paths);

/// The text of a path as the list has it: the component that stands for no folder is no part of it.
std::string_view withoutMarker(std::string_view text) noexcept;

/// Registers `run(state, order)` as "TOPIC ORDER/VARIANT". Call it for one order after the other,
/// so that what is compared stands together.
template <class Run>
benchmark::internal::Benchmark* registerRun(const std::string& topic, Order order,
                                            const std::string& variant, Run run) {
    const std::string name =
        topic + (order == Order::kListed ? " listed/" : " shuffled/") + variant;
    return benchmark::RegisterBenchmark(
        name.c_str(), [run, order](benchmark::State& state) { run(state, order); });
}

/// States that an iteration went through all paths.
void countPaths(benchmark::State& state);

/// Shows bytes as a counter, divided by the number of paths.
void countBytes(benchmark::State& state, const char* name, double bytes);

}  // namespace bench
