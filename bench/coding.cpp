// Coding and decoding of components, next to doing so by the code words and the coding tree alone.

#include <benchmark/benchmark.h>

#include "bench/RealPaths.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace {

using compressedpaths::Bytes;
using compressedpaths::HuffmanPathTree;

const std::vector<std::u16string>& fileNames() {
    static const std::vector<std::u16string> names = [] {
        std::vector<std::u16string> some;
        for (const auto& list : bench::batches().front().files)
            some.insert(some.end(), list.begin(), list.end());
        return some;
    }();
    return names;
}

struct CodedNames {
    HuffmanPathTree set;
    std::vector<HuffmanPathTree::HNode> nodes;
    std::uint32_t root = 0;
    std::vector<std::vector<bool>> words;  // by character
    std::vector<Bytes> codes;

    CodedNames() : words(0x10000) {
        bench::fill(set);
        set.traverse([this](HuffmanPathTree*, HuffmanPathTree::HNode& node) {
            if (nodes.empty()) root = node.index;
            if (node.index >= nodes.size()) nodes.resize(node.index + 1);
            nodes[node.index] = node;
        });
        collectWords(root, {});
        for (const std::u16string& name : fileNames()) codes.push_back(set.generateCodeFor(name));
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

void coding(benchmark::State& state) {
    HuffmanPathTree& set = codedNames().set;
    for (auto _ : state)
        for (const std::u16string& name : fileNames())
            benchmark::DoNotOptimize(set.generateCodeFor(name));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(fileNames().size()));
}
BENCHMARK(coding)->Name("coding/table")->Unit(benchmark::kMillisecond);

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
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(fileNames().size()));
}
BENCHMARK(codingBitByBit)->Name("coding/bit by bit")->Unit(benchmark::kMillisecond);

void decoding(benchmark::State& state) {
    const CodedNames& coded = codedNames();
    for (auto _ : state)
        for (const Bytes& code : coded.codes)
            benchmark::DoNotOptimize(coded.set.generatePathFrom(code));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(coded.codes.size()));
}
BENCHMARK(decoding)->Name("decoding/table")->Unit(benchmark::kMillisecond);

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
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(coded.codes.size()));
}
BENCHMARK(decodingByTree)->Name("decoding/tree walk")->Unit(benchmark::kMillisecond);

}  // namespace
