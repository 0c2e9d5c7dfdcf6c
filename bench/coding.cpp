// Coding and decoding of components, next to doing so by the code words and the coding tree alone.
// The rate is that of names; that of characters is a counter.

#include <benchmark/benchmark.h>

#include "bench/RealPaths.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace {

using compressedpaths::Bytes;
using compressedpaths::CodeTables;
using compressedpaths::FlatArray;
using compressedpaths::HuffmanPathTree;
using compressedpaths::NameView;

const std::vector<std::u16string>& fileNames() {
    static const std::vector<std::u16string> names = [] {
        std::vector<std::u16string> some;
        for (const auto& list : bench::batches().front().files)
            some.insert(some.end(), list.begin(), list.end());
        return some;
    }();
    return names;
}

/// Tells how many names and characters an iteration has coded or decoded.
void countNames(benchmark::State& state) {
    static const std::size_t characters = [] {
        std::size_t sum = 0;
        for (const std::u16string& name : fileNames()) sum += name.size();
        return sum;
    }();
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(fileNames().size()));
    state.counters["time a character"] = benchmark::Counter(
        static_cast<double>(characters),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

struct CodedNames {
    HuffmanPathTree set;
    std::vector<HuffmanPathTree::HNode> nodes;
    std::uint32_t root = 0;
    std::vector<std::vector<bool>> words;  // by character
    std::vector<Bytes> codes;
    FlatArray<std::uint8_t> stored;

    CodedNames() : words(0x10000) {
        bench::fill(set);
        set.traverse([this](HuffmanPathTree*, HuffmanPathTree::HNode& node) {
            if (nodes.empty()) root = node.index;
            if (node.index >= nodes.size()) nodes.resize(node.index + 1);
            nodes[node.index] = node;
        });
        collectWords(root, {});
        for (const std::u16string& name : fileNames()) {
            codes.push_back(set.generateCodeFor(name));
            set.codeTables().appendCode(name, stored);
        }
    }

    void collectWords(std::uint32_t index, std::vector<bool> word) {
        const HuffmanPathTree::HNode& node = nodes[index];
        if (node.isLeaf()) {
            words[node.character] = word;
            return;
        }
        word.push_back(false);
        collectWords(node.left, word);
        word.back() = true;
        collectWords(node.right, word);
    }
};

CodedNames& codedNames() {
    static CodedNames coded;
    return coded;
}

void codingToStored(benchmark::State& state) {
    const CodeTables& tables = codedNames().set.codeTables();
    FlatArray<std::uint8_t> names;
    for (auto _ : state) {
        names.truncate(0);
        for (const std::u16string& name : fileNames()) tables.appendCode(name, names);
        benchmark::DoNotOptimize(names.data());
    }
    countNames(state);
}
BENCHMARK(codingToStored)->Name("coding/stored form")->Unit(benchmark::kMillisecond);

void coding(benchmark::State& state) {
    HuffmanPathTree& set = codedNames().set;
    for (auto _ : state)
        for (const std::u16string& name : fileNames())
            benchmark::DoNotOptimize(set.generateCodeFor(name));
    countNames(state);
}
BENCHMARK(coding)->Name("coding/code bytes")->Unit(benchmark::kMillisecond);

void codingBitByBit(benchmark::State& state) {
    const CodedNames& coded = codedNames();
    for (auto _ : state) {
        for (const std::u16string& name : fileNames()) {
            std::vector<bool> bits;
            for (const char16_t character : name) {
                const std::vector<bool>& word = coded.words[character];
                bits.insert(bits.end(), word.begin(), word.end());
            }
            Bytes code;
            compressedpaths::sixpacks::boolVecToBytes(code, bits);
            benchmark::DoNotOptimize(code);
        }
    }
    countNames(state);
}
BENCHMARK(codingBitByBit)->Name("coding/bit by bit")->Unit(benchmark::kMillisecond);

/// Decodes the stored names, each in the place of the one before.
template <class Text>
void decodingStored(benchmark::State& state) {
    const CodedNames& coded = codedNames();
    const CodeTables& tables = coded.set.codeTables();
    Text text;
    for (auto _ : state) {
        for (const std::uint8_t* next = coded.stored.data(); next < coded.stored.end();) {
            const NameView name = compressedpaths::viewName(next, coded.stored.end());
            next = name.end();
            text.clear();
            tables.appendText(name, text);
            benchmark::DoNotOptimize(text.data());
        }
    }
    countNames(state);
}
BENCHMARK(decodingStored<std::string>)
    ->Name("decoding/stored form, bytes")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(decodingStored<std::u16string>)
    ->Name("decoding/stored form, UTF-16")
    ->Unit(benchmark::kMillisecond);

void decoding(benchmark::State& state) {
    const CodedNames& coded = codedNames();
    for (auto _ : state)
        for (const Bytes& code : coded.codes)
            benchmark::DoNotOptimize(coded.set.generatePathFrom(code));
    countNames(state);
}
BENCHMARK(decoding)->Name("decoding/code bytes")->Unit(benchmark::kMillisecond);

void decodingByTree(benchmark::State& state) {
    const CodedNames& coded = codedNames();
    for (auto _ : state) {
        for (const Bytes& code : coded.codes) {
            std::u16string text;
            const HuffmanPathTree::HNode* node = &coded.nodes[coded.root];
            const std::size_t bitCount = (code.size() - 2) * 8 + code.back();
            for (std::size_t bit = 0; bit < bitCount; ++bit) {
                const bool isOne = (code[bit / 8] >> bit % 8 & 1) != 0;
                node = &coded.nodes[isOne ? node->right : node->left];
                if (!node->isLeaf()) continue;
                text.push_back(node->character);
                node = &coded.nodes[coded.root];
            }
            benchmark::DoNotOptimize(text);
        }
    }
    countNames(state);
}
BENCHMARK(decodingByTree)->Name("decoding/tree walk")->Unit(benchmark::kMillisecond);

}  // namespace
