// The forms in which a coding tree is saved (shape, tree string, frequencies), and the way back.

#include <algorithm>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {

std::u16string HuffmanPathTree::getTreeString() const {
    return treeString;
}

void HuffmanPathTree::setTreeString(const std::u16string& characters) {
    treeString = characters;
}

std::vector<bool> HuffmanPathTree::getBoolTree() const {
    return boolTree;
}

std::vector<double> HuffmanPathTree::getFrequencies() const {
    return frequencies;
}

void HuffmanPathTree::setFrequencies(std::vector<double>& values) {
    frequencies = std::exchange(values, {});
}

void HuffmanPathTree::generateCompressedTree() {
    traverse([](HuffmanPathTree* tree, HNode& node) {
        tree->boolTree.push_back(node.isLeaf());
        if (!node.isLeaf()) return;
        tree->treeString.push_back(node.character);
        tree->frequencies.push_back(node.frequency);
    });
}

void HuffmanPathTree::inflate() {
    static_cast<void>(sizeOfSavedTree(treeString));

    HuffmanPathTree inflated;  // beside this set, so that a failure leaves no trace
    inflated.boolTree = boolTree;
    inflated.treeString = treeString;
    inflated.inflateFromBoolTree();
    inflated.inflateFromCompressedTree();
    CodeTables tables = CodeTables::forDecoding(boolTree, treeString);

    std::swap(rootIndex, inflated.rootIndex);
    nodes.swap(inflated.nodes);
    codeTables_ = std::move(tables);
}

void HuffmanPathTree::inflateHuffman(const std::u16string& characters) {
    static_cast<void>(sizeOfSavedTree(characters));

    HuffmanPathTree inflated;  // beside this set, so that a failure leaves no trace
    inflated.boolTree = boolTree;
    inflated.treeString = characters;
    inflated.inflateFromBoolTree();
    inflated.inflateFromCompressedTree();
    inflated.generateCode();

    treeString.swap(inflated.treeString);
    takeCodingTree(inflated);
    codeTables_ = std::move(inflated.codeTables_);
}

/// Takes nodes and codes over from a set that has made them.
void HuffmanPathTree::takeCodingTree(HuffmanPathTree& made) const noexcept {
    std::swap(rootIndex, made.rootIndex);
    nodes.swap(made.nodes);
    codes.swap(made.codes);
    parents.swap(made.parents);
}

/// Makes the coding tree of a set whose tables came without it.
void HuffmanPathTree::ensureCodingTree() const {
    if (!isCodingTreeDeferred_) return;
    // Not call_once, through which the C library cannot pass an exception without memory.
    static_cast<void>(isCodingTreeMade_.get([this] {
        HuffmanPathTree inflated;
        inflated.boolTree = boolTree;
        inflated.inflateHuffman(treeString);
        takeCodingTree(inflated);
        return true;
    }));
}

/// Makes the tables of a code whose shape and leaves came from an image.
void HuffmanPathTree::buildCodeTables() {
    if (boolTree.empty()) return;
    try {
        static_cast<void>(sizeOfSavedTree(treeString));
        requireBoundedCodeWords(boolTree);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        throw InvalidImageException();
    }
    codeTables_ = CodeTables(boolTree, treeString);
}

/// Throws InvalidImageException unless the tables are those of shape and leaves.
void HuffmanPathTree::verifyCode() const {
    HuffmanPathTree built;
    built.boolTree = boolTree;
    built.treeString = treeString;
    built.buildCodeTables();
    const CodeTables::Arrays& own = codeTables_.arrays();
    const CodeTables::Arrays& expected = built.codeTables_.arrays();
    const auto isSame = [](const auto& a, const auto& b) {
        return std::equal(a.values().begin(), a.values().end(), b.values().begin(),
                          b.values().end());
    };
    const bool holds = isSame(own.pageOf, expected.pageOf) && isSame(own.words, expected.words) &&
                       isSame(own.longWords, expected.longWords) &&
                       isSame(own.longBits, expected.longBits) &&
                       isSame(own.steps, expected.steps) && isSame(own.branches, expected.branches);
    if (!holds) throw InvalidImageException();
}

/// The number of entries of the shape that make up the coding tree, each leaf with a character of
/// its own. What stands after the end of shape or characters is ignored.
std::size_t HuffmanPathTree::sizeOfSavedTree(const std::u16string& characters) const {
    if (!nodes.empty() || isCodingTreeDeferred_) throw CodingTreeExistsException();
    if (boolTree.empty()) return 0;

    std::size_t announced = 1;  // nodes that the entries so far say there are
    std::size_t leafCount = 0;
    std::size_t size = 0;
    for (; size < announced; ++size) {
        if (size == boolTree.size()) throw IncompleteCodingTreeException();
        if (boolTree[size])
            ++leafCount;
        else
            announced += 2;
    }
    if (characters.size() < leafCount) throw IncompleteCodingTreeException();
    return size;
}

void HuffmanPathTree::inflateFromBoolTree() {
    const std::size_t size = sizeOfSavedTree(treeString);
    nodes.reserve(size);
    std::size_t nextCharacter = 0;
    for (std::uint32_t index = 0; index < size; ++index) {
        const char16_t character = boolTree[index] ? treeString[nextCharacter++] : u'\0';
        nodes.push_back({0.0, character, index, kNone, kNone});
    }
}

/// Links the nodes, which are in pre-order: each next one is the first free child of the deepest
/// node that still waits for children.
void HuffmanPathTree::inflateFromCompressedTree() {
    rootIndex = 0;
    if (nodes.empty()) return;

    std::vector<std::uint32_t> waiting;
    for (const HNode& node : nodes) {
        if (node.index > 0) {
            HNode& parent = nodes[waiting.back()];
            (parent.left == kNone ? parent.left : parent.right) = node.index;
            if (parent.right != kNone) waiting.pop_back();
        }
        if (!boolTree[node.index]) waiting.push_back(node.index);
    }
}

}  // namespace compressedpaths
