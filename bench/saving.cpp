// Saving and loading the set, next to what zlib alone takes for the same bytes and for the plain
// text of the paths, all at the same level.

#include <zlib.h>

#include <memory>
#include <string>

#include "bench/RealPaths.hpp"
#include "tests/support/HeapMeter.hpp"

namespace {

using bench::Order;
using compressedpaths::Bytes;
using compressedpaths::HuffmanPathTree;

constexpr std::size_t kBodySize = 8;  // of the number that the saved form begins with

Bytes saved(Order order, bool compress) {
    Bytes bytes;
    bench::filledSet(order).serialize(bytes, compress);
    return bytes;
}

Bytes deflated(const std::uint8_t* begin, std::size_t size) {
    Bytes out(compressBound(size));
    uLongf length = out.size();
    compress2(out.data(), &length, begin, size, Z_BEST_COMPRESSION);
    out.resize(length);
    return out;
}

Bytes deflatedText(Order order) {
    const std::string& text = bench::blob(order).text;
    return deflated(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

/// Times `run()`, whose result is dropped, and tells the heap that it takes; sizeOf(result) are the
/// bytes that it saved or loaded from.
template <class Run>
void measure(benchmark::State& state, Run run) {
    {
        compressedpaths::HeapMeter use;
        const auto result = run();
        bench::countBytes(state, "heap_bytes_a_path", static_cast<double>(use.now()));
        bench::countBytes(state, "peak_bytes_a_path", static_cast<double>(use.peak()));
    }
    for (auto _ : state) {
        auto result = run();
        benchmark::DoNotOptimize(&result);
        state.PauseTiming();
        { const auto freed = std::move(result); }
        state.ResumeTiming();
    }
    bench::countPaths(state);
}

void countSaved(benchmark::State& state, std::size_t savedBytes) {
    bench::countBytes(state, "saved_bytes_a_path", static_cast<double>(savedBytes));
}

void savePathSet(benchmark::State& state, Order order) {
    HuffmanPathTree& set = bench::filledSet(order);
    measure(state, [&set] {
        Bytes bytes;
        set.serialize(bytes, true);
        return bytes;
    });
    countSaved(state, saved(order, true).size());
}

void savePlain(benchmark::State& state, Order order) {
    HuffmanPathTree& set = bench::filledSet(order);
    measure(state, [&set] {
        Bytes bytes;
        set.serialize(bytes, false);
        return bytes;
    });
    countSaved(state, saved(order, false).size());
}

void deflateBody(benchmark::State& state, Order order) {
    const Bytes plain = saved(order, false);
    measure(state,
            [&plain] { return deflated(plain.data() + kBodySize, plain.size() - kBodySize); });
}

void deflateText(benchmark::State& state, Order order) {
    bench::blob(order);
    measure(state, [order] { return deflatedText(order); });
    countSaved(state, deflatedText(order).size());
}

void loadPathSet(benchmark::State& state, Order order) {
    Bytes bytes = saved(order, true);
    const std::u16string characters = bench::filledSet(order).getTreeString();
    measure(state, [&] {
        auto loaded = std::make_unique<HuffmanPathTree>();
        loaded->deserialize(bytes, true);
        loaded->inflateHuffman(characters);
        return loaded;
    });
}

void inflateBody(benchmark::State& state, Order order) {
    const Bytes bytes = saved(order, true);
    const std::size_t size = saved(order, false).size() - kBodySize;
    measure(state, [&bytes, size] {
        Bytes body(size);
        uLongf length = size;
        uncompress(body.data(), &length, bytes.data() + kBodySize, bytes.size() - kBodySize);
        return body;
    });
}

void loadText(benchmark::State& state, Order order) {
    const Bytes bytes = deflatedText(order);
    measure(state, [&bytes, order] {
        std::string text(bench::blob(order).text.size(), '\0');
        uLongf length = text.size();
        uncompress(reinterpret_cast<Bytef*>(text.data()), &length, bytes.data(), bytes.size());
        std::vector<std::string> paths;
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = text.find('\n', begin);
            paths.push_back(text.substr(begin, end - begin));
            begin = end + 1;
        }
        return paths;
    });
}

[[maybe_unused]] const bool areRegistered = [] {
    for (const Order order : bench::kOrders) {
        const auto add = [order](const char* topic, const char* variant, auto run) {
            bench::registerRun(topic, order, variant, run)->Unit(benchmark::kMillisecond);
        };
        add("saving", "zlib alone, on the body", deflateBody);
        add("saving", "path set, compressed", savePathSet);
        add("saving", "path set, plain", savePlain);
        add("saving", "text, deflated", deflateText);
        add("loading", "zlib alone, to the body", inflateBody);
        add("loading", "path set, compressed", loadPathSet);
        add("loading", "text, inflated and split", loadText);
    }
    return true;
}();

}  // namespace
