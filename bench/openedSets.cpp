// Paths by their numbers from a set file that is opened, as programs ask for them; the file stands
// in the system's cache.

#include <cstdlib>
#include <filesystem>
#include <new>
#include <optional>
#include <random>

#include "bench/RealPaths.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace {

using bench::Order;
using zqpaths::PathSet;

/// A set in a file that has no name any more once it is open.
PathSet makeSet(Order order) {
    std::string directory = std::filesystem::temp_directory_path() / "zq-XXXXXX";
    if (::mkdtemp(directory.data()) == nullptr) throw std::bad_alloc();
    const std::string file = directory + "/paths.zqp";
    zqpaths::PathSetWriter writer(file);
    for (const std::string& path : bench::texts(order)) writer.add(path);
    writer.commit();
    PathSet set = PathSet::open(file);
    std::filesystem::remove_all(directory);
    return set;
}

const PathSet& openedSet(Order order) {
    static std::array<std::optional<PathSet>, bench::kOrders.size()> sets;
    auto& set = sets.at(static_cast<std::size_t>(order));
    if (!set) set = makeSet(order);
    return *set;
}

/// Times requests for `size` numbers at a time, `fetch(numbers, text)` each, other numbers in each
/// request.
template <class Fetch>
void randomly(benchmark::State& state, Order order, std::size_t size, Fetch fetch) {
    const PathSet& set = openedSet(order);
    std::mt19937_64 random(3);
    std::vector<std::uint64_t> numbers(size);
    std::string text;
    for (auto _ : state) {
        state.PauseTiming();
        for (std::uint64_t& number : numbers) number = 1 + random() % set.size();
        text.clear();
        state.ResumeTiming();
        fetch(set, numbers, text);
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

auto randomlyOneByOne(std::size_t size) {
    return [size](benchmark::State& state, Order order) {
        randomly(state, order, size, [](const PathSet& set, const auto& numbers, auto& text) {
            for (const std::uint64_t number : numbers) set.appendPath(number, text);
        });
    };
}

auto randomlyTogether(std::size_t size) {
    return [size](benchmark::State& state, Order order) {
        randomly(state, order, size, [](const PathSet& set, const auto& numbers, auto& text) {
            set.paths(numbers, [&](std::uint64_t, std::string_view path) { text.append(path); });
        });
    };
}

[[maybe_unused]] const bool areRegistered = [] {
    for (const std::size_t size : {1U, 20U, 500U, 10'000U}) {
        for (const Order order : bench::kOrders) {
            const std::string topic = "opened set, random numbers: " + std::to_string(size);
            bench::registerRun(topic, order, "PathSet, appendPath", randomlyOneByOne(size))
                ->Unit(benchmark::kMicrosecond)
                ->UseRealTime();
            bench::registerRun(topic, order, "PathSet, paths", randomlyTogether(size))
                ->Unit(benchmark::kMicrosecond)
                ->UseRealTime();
        }
    }
    return true;
}();

}  // namespace
