// Building the coding tree from frequencies, its code words, and coding and decoding with them.

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

// Bits that all code words of a coding tree may have together: so many for each leaf, and so many
// more. The words of counted characters have 78 bits at most, each. Frequencies that are 64-bit
// floats, finite and not negative, at least double with every two levels, so that they have room
// for 3,100 levels; a leaf on each takes little more than half of the fixed part. What is refused
// would take memory out of proportion to what it was made from.
constexpr std::size_t kMaxBitsOfLeaf = 256;
constexpr std::size_t kMaxMoreBits = std::size_t{1} << 23;

}  // namespace

void HuffmanPathTree::deflateHuffman(const std::unordered_map<char16_t, double>& frequencyOf) {
    std::vector<double> characterFrequencies;
    std::u16string characters;
    characterFrequencies.reserve(frequencyOf.size());
    characters.reserve(frequencyOf.size());
    for (const auto& [character, frequency] : frequencyOf) {
        characterFrequencies.push_back(frequency);
        characters.push_back(character);
    }
    deflateHuffman(characterFrequencies.data(), characters);
}

void HuffmanPathTree::deflateHuffman(const double* characterFrequencies,
                                     const std::u16string& characters) {
    if (characters.size() < 2) throw AlphabetTooSmallException();
    requireNoCodingTree();

    HuffmanPathTree built;  // beside this set, so that a failure leaves no trace
    built.makeHeapAndTree(characterFrequencies, characters);
    built.generateCompressedTree();
    built.generateCode();

    boolTree.swap(built.boolTree);
    treeString.swap(built.treeString);
    frequencies.swap(built.frequencies);
    takeCodingTree(built);
    codeTables_ = std::move(built.codeTables_);
}

void HuffmanPathTree::requireNoCodingTree() const {
    if (!nodes.empty() || !boolTree.empty() || !treeString.empty())
        throw CodingTreeExistsException();
}

void HuffmanPathTree::makeHeapAndTree(const double* characterFrequencies,
                                      const std::u16string& characters) {
    frequencies.clear();
    frequencies.reserve(characters.size());
    HNodeHeap heap;
    for (std::size_t i = 0; i < characters.size(); ++i)
        heap.push({characterFrequencies[i], characters[i], kNone, kNone, kNone});
    generateTree(heap);
}

void HuffmanPathTree::generateTree(HNodeHeap& heap) {
    assert(heap.size() > 0);
    nodes.reserve(2 * heap.size() - 1);
    // A leaf enters the table when it leaves the heap, an internal node when it is made.
    const auto take = [this, &heap] {
        HNode node = heap.pop();
        if (node.index != kNone) return node;
        node.index = static_cast<std::uint32_t>(nodes.size());
        nodes.push_back(node);
        return node;
    };
    while (heap.size() >= 2) {
        const HNode left = take();
        const HNode right = take();
        const HNode parent{left.frequency + right.frequency, 0,
                           static_cast<std::uint32_t>(nodes.size()), left.index, right.index};
        nodes.push_back(parent);
        heap.push(parent);
    }
    rootIndex = heap.top().index;
}

void HuffmanPathTree::generateCode() {
    requireBoundedCodeWords(boolTree);
    parents.clear();
    traverse([](HuffmanPathTree* tree, HNode& node) {
        if (node.isLeaf()) return tree->addCode(node);
        if (node.left != kNone) tree->parents[node.left] = node.index;
        if (node.right != kNone) tree->parents[node.right] = node.index;
    });
    codeTables_ = CodeTables(boolTree, treeString);
}

/// Requires a shape that is complete; what stands after its end is ignored. O(shape).
void HuffmanPathTree::requireBoundedCodeWords(const std::vector<bool>& shape) {
    if (shape.empty()) return;
    std::size_t bitCount = 0;
    std::size_t leafCount = 0;
    std::vector<std::size_t> open{
        0};  // depths of the nodes that are still to come, the next one last
    for (std::size_t node = 0; !open.empty(); ++node) {
        const std::size_t depth = open.back();
        if (shape[node]) {
            open.pop_back();
            bitCount += depth;
            ++leafCount;
        } else {
            open.back() = depth + 1;
            open.push_back(depth + 1);
        }
    }
    if (bitCount > kMaxBitsOfLeaf * leafCount + kMaxMoreBits) throw CodeWordsTooLongException();
}

void HuffmanPathTree::addCode(const HNode& leaf) {
    std::vector<bool> word;  // the last step first
    std::uint32_t child = leaf.index;
    for (auto step = parents.find(child); step != parents.end(); step = parents.find(child)) {
        const std::uint32_t parent = step->second;
        word.push_back(nodes[parent].left != child);
        child = parent;
    }
    // Of a repeated character, the first leaf in pre-order has the code word.
    codes.try_emplace(leaf.character, word.rbegin(), word.rend());
}

std::vector<std::uint8_t> HuffmanPathTree::generateCodeFor(const std::u16string& text) {
    FlatArray<std::uint8_t> stored;
    codeTables_.appendCode(text, stored);
    Bytes code = keyOf(viewName(stored.data(), stored.end()));
    maxCodeBytes = std::max(maxCodeBytes, code.size());
    return code;
}

std::u16string HuffmanPathTree::generatePathFrom(const std::vector<std::uint8_t>& code) const {
    const bool isSingleLeaf = !codeTables_.canDecode();
    if (isSingleLeaf) {
        ensureCodingTree();
        if (rootIndex >= nodes.size() || !nodes[rootIndex].isLeaf())
            throw NoUsableCodingTreeException();
    }
    if (code.empty() || (code.size() > 1 && code.back() > 7)) throw InvalidCodeException();

    std::u16string text;
    if (code.size() == 1 || isSingleLeaf) {
        if (code.size() > 1 && code != Bytes{0, 0}) throw NoUsableCodingTreeException();
        if (isSingleLeaf) text.push_back(nodes[rootIndex].character);
        return text;
    }

    // Decoding loads whole words, to the end of the bits and beyond: the bytes go where it can.
    constexpr std::size_t kReadable = FlatArray<std::uint8_t>::kReadableBytes;
    const std::size_t bitCount = (code.size() - 2) * 8 + code.back();
    std::array<std::uint8_t, 64 + kReadable> shortCode{};
    if (code.size() + kReadable <= shortCode.size()) {
        std::copy(code.begin(), code.end(), shortCode.begin());
        codeTables_.appendText({shortCode.data(), bitCount, false}, text);
    } else {
        FlatArray<std::uint8_t> longCode;
        longCode.reserveFor(code.size());
        longCode.append(code.data(), code.size());
        codeTables_.appendText({longCode.data(), bitCount, false}, text);
    }
    return text;
}

bool HuffmanPathTree::appendToPathIfLeaf(std::int32_t& position, std::u16string& text) const {
    ensureCodingTree();
    if (position < 0 || static_cast<std::size_t>(position) >= nodes.size())
        throw InvalidCodeException();
    const HNode& node = nodes[static_cast<std::size_t>(position)];
    if (!node.isLeaf()) return false;
    text.push_back(node.character);
    position = static_cast<std::int32_t>(rootIndex);
    return true;
}

}  // namespace compressedpaths
