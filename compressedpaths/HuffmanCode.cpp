// Building the coding tree from frequencies, its code words, and coding and decoding with them.

#include <algorithm>
#include <cassert>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

/// Bits that all code words together may have, for each leaf. Frequencies that are finite and not
/// negative stay below: they at least double with every two levels of the coding tree, so that a
/// 64-bit float has room for 3,100 levels. What is refused would take memory without bound.
constexpr std::size_t kMaxMeanCodeLength = 4096;

/// Code words laid end to end, the first bit lowest, in bytes whose number is known before.
class BitWriter {
public:
    explicit BitWriter(std::uint8_t* out) noexcept : out_(out) {}

    /// Appends the low `length` bits of `bits`, which has no one above them; `length` is 32 or
    /// less.
    void append(std::uint64_t bits, unsigned length) noexcept {
        held_ |= bits << heldCount_;
        heldCount_ += length;
        for (; heldCount_ >= 8; heldCount_ -= 8, held_ >>= 8)
            *out_++ = static_cast<std::uint8_t>(held_);
    }

    void append(const std::deque<bool>& word) noexcept {
        for (const bool bit : word) append(static_cast<std::uint64_t>(bit), 1);
    }

    /// Writes the partial byte and the number of bits in it.
    void finish() noexcept {
        *out_++ = static_cast<std::uint8_t>(held_);
        *out_ = static_cast<std::uint8_t>(heldCount_);
    }

private:
    std::uint8_t* out_;
    std::uint64_t held_ = 0;
    unsigned heldCount_ = 0;  // bits in held_, below 8 between calls
};

/// The bits of code bytes, taken from the front.
class BitReader {
public:
    /// Requires a code of two bytes or more.
    explicit BitReader(const std::vector<std::uint8_t>& code) noexcept
        : next_(code.data()),
          end_(next_ + code.size() - 1),
          left_((code.size() - 2) * 8 + code.back()) {}

    std::size_t left() const noexcept { return left_; }

    /// The next bits, the first one lowest; at least 57 or as many as are left. What stands above
    /// those that are left means nothing.
    std::uint64_t peek() noexcept {
        for (; heldCount_ <= 56 && next_ != end_; heldCount_ += 8)
            held_ |= std::uint64_t{*next_++} << heldCount_;
        return held_;
    }

    /// Drops `count` bits, which were peeked at and are left.
    void skip(unsigned count) noexcept {
        assert(count <= left_ && count <= heldCount_);
        held_ >>= count;
        heldCount_ -= count;
        left_ -= count;
    }

private:
    const std::uint8_t* next_;
    const std::uint8_t* end_;  // the count byte
    std::size_t left_;
    std::uint64_t held_ = 0;
    unsigned heldCount_ = 0;
};

/// The leaf that the next bits lead to from the root, or null if they end before.
const HuffmanPathTree::HNode* walkToLeaf(const std::vector<HuffmanPathTree::HNode>& nodes,
                                         std::uint32_t root, BitReader& reader) noexcept {
    const HuffmanPathTree::HNode* node = &nodes[root];
    while (!node->isLeaf()) {
        if (reader.left() == 0) return nullptr;
        node = &nodes[(reader.peek() & 1) != 0 ? node->right : node->left];
        reader.skip(1);
    }
    return node;
}

}  // namespace

void HuffmanPathTree::deflateHuffman(const std::unordered_map<char16_t, double>& frequencyOf) {
    if (frequencyOf.size() < 2) throw AlphabetTooSmallException();
    requireNoCodingTree();
    makeHeapAndTree(frequencyOf);
    generateCompressedTree();
    generateCode();
}

void HuffmanPathTree::deflateHuffman(const double* characterFrequencies,
                                     const std::u16string& characters) {
    if (characters.size() < 2) throw AlphabetTooSmallException();
    requireNoCodingTree();
    makeHeapAndTree(characterFrequencies, characters);
    generateCompressedTree();
    generateCode();
}

void HuffmanPathTree::requireNoCodingTree() const {
    if (!nodes.empty() || !boolTree.empty() || !treeString.empty())
        throw CodingTreeExistsException();
}

void HuffmanPathTree::makeHeapAndTree(const std::unordered_map<char16_t, double>& frequencyOf) {
    frequencies.clear();
    frequencies.reserve(frequencyOf.size());
    HNodeHeap heap;
    for (const auto& [character, frequency] : frequencyOf)
        heap.push({frequency, character, kNone, kNone, kNone});
    generateTree(heap);
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
    buildDecodingTable();
}

void HuffmanPathTree::generateCode() {
    requireBearableCodeWords();
    parents.clear();
    traverse([](HuffmanPathTree* tree, HNode& node) {
        if (node.isLeaf()) return tree->addCode(node);
        if (node.left != kNone) tree->parents[node.left] = node.index;
        if (node.right != kNone) tree->parents[node.right] = node.index;
    });
}

void HuffmanPathTree::requireBearableCodeWords() const {
    if (rootIndex >= nodes.size()) return;

    std::size_t bitsLeft = kMaxMeanCodeLength * nodes.size();
    std::vector<std::pair<std::uint32_t, std::size_t>> open{{rootIndex, 0}};  // node, depth
    while (!open.empty()) {
        const auto [index, depth] = open.back();
        open.pop_back();
        const HNode& node = nodes[index];
        if (node.left != kNone) open.emplace_back(node.left, depth + 1);
        if (node.right != kNone) open.emplace_back(node.right, depth + 1);
        if (!node.isLeaf()) continue;
        if (depth > bitsLeft) throw CodeWordsTooLongException();
        bitsLeft -= depth;
    }
}

void HuffmanPathTree::addCode(const HNode& leaf) {
    const auto [entry, isNew] = codes.try_emplace(leaf.character);
    if (!isNew) return;  // of a repeated character, the first leaf in pre-order has the code word

    std::uint32_t child = leaf.index;
    for (auto step = parents.find(child); step != parents.end(); step = parents.find(child)) {
        const std::uint32_t parent = step->second;
        entry->second.push_front(nodes[parent].left != child);
        child = parent;
    }
    codeWords_.set(leaf.character, entry->second);
}

void HuffmanPathTree::buildDecodingTable() {
    struct Place {
        std::uint32_t node;
        std::uint64_t prefix;
        unsigned length;
    };
    std::vector<Place> leaves;
    std::vector<Place> open{{rootIndex, 0, 0}};
    unsigned width = 0;
    while (!open.empty()) {
        const Place place = open.back();
        open.pop_back();
        const HNode& node = nodes[place.node];
        width = std::max(width, place.length);
        if (node.isLeaf()) {
            leaves.push_back(place);
        } else if (place.length < DecodingTable::kMaxWidth) {
            const std::uint64_t one = std::uint64_t{1} << place.length;
            open.push_back({node.left, place.prefix, place.length + 1});
            open.push_back({node.right, place.prefix | one, place.length + 1});
        }
    }

    decodingTable_ = DecodingTable(width);
    for (const Place& leaf : leaves)
        decodingTable_.fill(leaf.prefix,
                            {nodes[leaf.node].character, static_cast<std::uint16_t>(leaf.length)});
}

std::vector<std::uint8_t> HuffmanPathTree::generateCodeFor(const std::u16string& text) {
    Bytes code = codeOf(text);
    maxCodeBytes = std::max(maxCodeBytes, code.size());
    return code;
}

Bytes HuffmanPathTree::codeOf(const std::u16string& text) const {
    if (text.empty()) throw NoCodeForEmptyString();

    std::size_t bitCount = 0;
    for (const char16_t character : text) {
        const CodeWordTable::Word word = codeWords_.find(character);
        if (word.length == CodeWordTable::Word::kAbsent) throw CodeNotFoundException();
        bitCount += word.length != CodeWordTable::Word::kLong ? std::size_t{word.length}
                                                              : codes.at(character).size();
    }
    if (bitCount == 0) return {};  // the only character of a single leaf

    Bytes code(bitCount / 8 + 2);
    BitWriter writer(code.data());
    for (const char16_t character : text) {
        const CodeWordTable::Word word = codeWords_.find(character);
        if (word.length == CodeWordTable::Word::kLong) {
            writer.append(codes.at(character));
        } else {
            const unsigned length = word.length;
            const unsigned first = std::min(length, 32U);
            writer.append(word.bits & 0xFFFFFFFF, first);
            writer.append(word.bits >> first, length - first);
        }
    }
    writer.finish();
    return code;
}

std::u16string HuffmanPathTree::generatePathFrom(const std::vector<std::uint8_t>& code) const {
    if (rootIndex >= nodes.size()) throw NoUsableCodingTreeException();
    if (code.empty() || (code.size() > 1 && code.back() > 7)) throw InvalidCodeException();

    std::u16string text;
    if (code.size() == 1 || nodes[rootIndex].isLeaf()) {
        if (code.size() > 1 && code != Bytes{0, 0}) throw NoUsableCodingTreeException();
        auto root = static_cast<std::int32_t>(rootIndex);
        appendToPathIfLeaf(root, text);
        return text;
    }

    BitReader reader(code);
    text.reserve(reader.left() / 4);  // a character of a name takes somewhat more bits
    while (true) {
        const DecodingTable::Step step = decodingTable_.find(reader.peek());
        if (step.length == 0) {
            const HNode* leaf = walkToLeaf(nodes, rootIndex, reader);
            if (leaf == nullptr) return text;
            text.push_back(leaf->character);
        } else {
            if (reader.left() < step.length) return text;
            reader.skip(step.length);
            text.push_back(step.character);
        }
    }
}

bool HuffmanPathTree::appendToPathIfLeaf(std::int32_t& position, std::u16string& text) const {
    if (position < 0 || static_cast<std::size_t>(position) >= nodes.size())
        throw InvalidCodeException();
    const HNode& node = nodes[static_cast<std::size_t>(position)];
    if (!node.isLeaf()) return false;
    text.push_back(node.character);
    position = static_cast<std::int32_t>(rootIndex);
    return true;
}

}  // namespace compressedpaths
