// All paths whose file name holds a text, next to a plain search in the text of all paths.

#include <algorithm>
#include <cstring>

#include "bench/RealPaths.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace {

using bench::Order;
using compressedpaths::HuffmanPathTree;

/// Calls `visit(number)` for the paths whose file name holds `text`, which has no separator.
template <class Visit>
void forEachLineWith(const bench::TextBlob& blob, const std::string& text, Visit visit) {
    const char* const begin = blob.text.data();
    const char* const end = begin + blob.text.size();
    const char* from = begin;
    while (true) {
        const auto* const hit = static_cast<const char*>(
            memmem(from, static_cast<std::size_t>(end - from), text.data(), text.size()));
        if (hit == nullptr) return;
        const auto line = std::upper_bound(blob.begins.begin(), blob.begins.end(), hit - begin) - 1;
        const auto number = static_cast<std::size_t>(line - blob.begins.begin()) + 1;
        const std::string_view path = blob[number - 1];
        const bool isInName =
            path.substr(zqpaths::folderLength(path)).find(text) != std::string_view::npos;
        if (isInName) visit(number);
        from = begin + blob.begins[number];
    }
}

std::size_t countLinesWith(Order order, const std::string& text) {
    std::size_t count = 0;
    forEachLineWith(bench::blob(order), text, [&count](std::size_t) { ++count; });
    return count;
}

auto searchBlob(const std::string& text) {
    return [text](benchmark::State& state, Order order) {
        bench::blob(order);
        std::size_t count = 0;
        for (auto _ : state) count = countLinesWith(order, text);
        bench::countPaths(state);
        state.counters["hits"] = static_cast<double>(count);
    };
}

auto searchPathSet(const std::string& text) {
    return [text](benchmark::State& state, Order order) {
        const HuffmanPathTree& set = bench::filledSet(order);
        std::u16string wanted;
        zqpaths::appendUtf16(text, wanted);
        std::size_t count = 0;
        for (auto _ : state) {
            count = 0;
            set.forEachNameWith(wanted, {1, set.size()}, [&count](std::size_t) { ++count; });
        }
        if (count != countLinesWith(order, text))
            state.SkipWithError("not the paths that a plain search finds");
        bench::countPaths(state);
        state.counters["hits"] = static_cast<double>(count);
    };
}

[[maybe_unused]] const bool areRegistered = [] {
    for (const char* const text : {"libstdc++", "README", "ab"}) {
        for (const Order order : bench::kOrders) {
            const std::string topic = std::string("names with ") + text;
            bench::registerRun(topic, order, "text and offsets", searchBlob(text))
                ->Unit(benchmark::kMillisecond);
            bench::registerRun(topic, order, "path set, forEachNameWith", searchPathSet(text))
                ->Unit(benchmark::kMillisecond);
        }
    }
    return true;
}();

}  // namespace
