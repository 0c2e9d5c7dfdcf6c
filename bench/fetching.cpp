// Paths by number, as text, in the orders that readers ask in, next to copying them out of what a
// program would hold them in otherwise, which takes many times the memory.

#include <algorithm>
#include <numeric>
#include <random>

#include "bench/RealPaths.hpp"

namespace {

using bench::Order;
using compressedpaths::HuffmanPathTree;
using compressedpaths::Path;

constexpr std::size_t kRequestSize = 10000;

/// Takes texts as a program that prints them does, and forgets them.
class Sink {
public:
    void take(std::string_view text) {
        buffer_.append(text).push_back('\n');
        if (buffer_.size() < kSize) return;
        benchmark::DoNotOptimize(buffer_.data());
        buffer_.clear();
    }

private:
    static constexpr std::size_t kSize = std::size_t{1} << 16;

    std::string buffer_;
};

std::size_t requestSize() {
    return std::min(kRequestSize, bench::pathCount());
}

/// All path numbers, shuffled the same way in each run.
const std::vector<std::size_t>& randomNumbers() {
    static const std::vector<std::size_t> numbers = [] {
        std::vector<std::size_t> all(bench::pathCount());
        std::iota(all.begin(), all.end(), std::size_t{1});
        std::shuffle(all.begin(), all.end(), std::mt19937_64(2));
        return all;
    }();
    return numbers;
}

/// Decodes what getPath gives, folders once for all their files, and passes the joined texts on.
template <class Visit>
void forEachDecoded(const HuffmanPathTree& set, const std::vector<Path>& folders,
                    const std::vector<Path>& files, Visit visit) {
    std::u16string text;
    for (std::size_t group = 0; group < folders.size(); ++group) {
        text.clear();
        for (std::size_t level = 0; level < folders[group].size(); ++level) {
            text += set.generatePathFrom(folders[group][level]);
            if (level > 0) text += u'/';
        }
        const std::size_t folderSize = text.size();
        for (const auto& file : files[group]) {
            text.resize(folderSize);
            text += set.generatePathFrom(file);
            visit(text);
        }
    }
}

// --- One path.

/// Times `append(number, text)` for one path after the other, in a random order.
template <class Text, class Append>
void oneByOne(benchmark::State& state, Append append) {
    const std::vector<std::size_t>& numbers = randomNumbers();
    Text text;
    std::size_t next = 0;
    for (auto _ : state) {
        text.clear();
        append(numbers[next], text);
        benchmark::DoNotOptimize(text.data());
        if (++next == numbers.size()) next = 0;
    }
    state.SetItemsProcessed(state.iterations());
}

void oneFromStrings(benchmark::State& state, Order order) {
    const std::vector<std::string>& texts = bench::texts(order);
    oneByOne<std::string>(
        state, [&](std::size_t number, std::string& text) { text += texts[number - 1]; });
}

void oneFromBlob(benchmark::State& state, Order order) {
    const bench::TextBlob& blob = bench::blob(order);
    oneByOne<std::string>(state,
                          [&](std::size_t number, std::string& text) { text += blob[number - 1]; });
}

void oneByAppendText(benchmark::State& state, Order order) {
    const HuffmanPathTree& set = bench::filledSet(order);
    oneByOne<std::string>(
        state, [&](std::size_t number, std::string& text) { set.appendText(number, "/", text); });
}

void oneByAppendUtf16(benchmark::State& state, Order order) {
    const HuffmanPathTree& set = bench::filledSet(order);
    oneByOne<std::u16string>(state, [&](std::size_t number, std::u16string& text) {
        set.appendText(number, u"/", text);
    });
}

void oneByGetPath(benchmark::State& state, Order order) {
    HuffmanPathTree& set = bench::filledSet(order);
    std::vector<Path> folders;
    std::vector<Path> files;
    oneByOne<std::u16string>(state, [&](std::size_t number, std::u16string& text) {
        folders.clear();
        files.clear();
        set.getPath(folders, files, {static_cast<double>(number)});
        forEachDecoded(set, folders, files, [&](const std::u16string& path) { text = path; });
    });
}

// --- Many ascending paths in one request.

/// Times `fetch(first, last)` for one range after the other.
template <class Fetch>
void byRanges(benchmark::State& state, Fetch fetch) {
    const std::size_t size = requestSize();
    std::size_t first = 1;
    for (auto _ : state) {
        fetch(first, first + size - 1);
        first += size;
        if (first + size - 1 > bench::pathCount()) first = 1;
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

template <class Texts>
void rangesFrom(benchmark::State& state, const Texts& texts) {
    Sink sink;
    byRanges(state, [&](std::size_t first, std::size_t last) {
        for (std::size_t number = first; number <= last; ++number) sink.take(texts[number - 1]);
    });
}

void rangesByForEachText(benchmark::State& state, Order order) {
    const HuffmanPathTree& set = bench::filledSet(order);
    Sink sink;
    byRanges(state, [&](std::size_t first, std::size_t last) {
        set.forEachText(first, last, "/",
                        [&](std::size_t, std::string_view text) { sink.take(text); });
    });
}

void rangesByGetPath(benchmark::State& state, Order order) {
    HuffmanPathTree& set = bench::filledSet(order);
    std::vector<double> numbers(requestSize());
    byRanges(state, [&](std::size_t first, std::size_t) {
        std::iota(numbers.begin(), numbers.end(), static_cast<double>(first));
        std::vector<Path> folders;
        std::vector<Path> files;
        set.getPath(folders, files, numbers);
        forEachDecoded(set, folders, files,
                       [](const std::u16string& path) { benchmark::DoNotOptimize(path.data()); });
    });
}

// --- All paths in order.

template <class Texts>
void allFrom(benchmark::State& state, const Texts& texts) {
    Sink sink;
    for (auto _ : state)
        for (std::size_t i = 0; i < bench::pathCount(); ++i) sink.take(texts[i]);
    bench::countPaths(state);
}

void allByForEachText(benchmark::State& state, Order order) {
    const HuffmanPathTree& set = bench::filledSet(order);
    const std::vector<std::string>& texts = bench::texts(order);
    std::size_t wrong = 0;
    set.forEachText(1, set.size(), "/", [&](std::size_t number, std::string_view text) {
        if (bench::withoutMarker(text) != texts[number - 1]) ++wrong;
    });
    if (wrong > 0) state.SkipWithError("a path differs from what was added");
    Sink sink;
    for (auto _ : state)
        set.forEachText(1, set.size(), "/",
                        [&](std::size_t, std::string_view text) { sink.take(text); });
    bench::countPaths(state);
}

void walkWithText(benchmark::State& state, Order order) {
    HuffmanPathTree& set = bench::filledSet(order);
    Path path;
    std::u16string text;
    for (auto _ : state) {
        for (set.resetPathsToBTree(); set.hasNextPathFromBTree();) {
            set.getNextPathFromBTree(path);
            text.clear();
            for (std::size_t level = 0; level < path.size(); ++level) {
                if (level > 1) text += u'/';
                text += set.generatePathFrom(path[level]);
            }
            benchmark::DoNotOptimize(text.data());
        }
    }
    bench::countPaths(state);
}

void walkCoded(benchmark::State& state, Order order) {
    HuffmanPathTree& set = bench::filledSet(order);
    Path path;
    for (auto _ : state) {
        for (set.resetPathsToBTree(); set.hasNextPathFromBTree();) {
            set.getNextPathFromBTree(path);
            benchmark::DoNotOptimize(path);
        }
    }
    bench::countPaths(state);
}

[[maybe_unused]] const bool areRegistered = [] {
    using benchmark::State;
    for (const Order order : bench::kOrders) {
        const auto one = [order](const char* variant, auto run) {
            bench::registerRun("one path", order, variant, run);
        };
        one("vector of strings", oneFromStrings);
        one("text and offsets", oneFromBlob);
        one("path set, appendText", oneByAppendText);
        one("path set, appendText, UTF-16", oneByAppendUtf16);
        one("path set, getPath, decoded", oneByGetPath);
    }
    for (const Order order : bench::kOrders) {
        const auto ranges = [order](const char* variant, auto run) {
            bench::registerRun("10,000 ascending", order, variant, run)
                ->Unit(benchmark::kMicrosecond);
        };
        ranges("vector of strings",
               [](State& state, Order of) { rangesFrom(state, bench::texts(of)); });
        ranges("text and offsets",
               [](State& state, Order of) { rangesFrom(state, bench::blob(of)); });
        ranges("path set, forEachText", rangesByForEachText);
        ranges("path set, getPath, decoded", rangesByGetPath);
    }
    for (const Order order : bench::kOrders) {
        const auto all = [order](const char* variant, auto run) {
            bench::registerRun("all paths", order, variant, run)->Unit(benchmark::kMillisecond);
        };
        all("vector of strings", [](State& state, Order of) { allFrom(state, bench::texts(of)); });
        all("text and offsets", [](State& state, Order of) { allFrom(state, bench::blob(of)); });
        all("path set, forEachText", allByForEachText);
        all("path set, walk, decoded", walkWithText);
        all("path set, walk, coded", walkCoded);
    }
    return true;
}();

}  // namespace
