// The trie as two parallel lists in pre-order: a structure byte and a key for each node below the
// root. docs/format.md draws them.

#include <algorithm>
#include <stack>
#include <utility>

#include "compressedpaths/BPathTree.hpp"
#include "compressedpaths/WideFolders.hpp"

namespace compressedpaths {
namespace {

// These numbers live in saved bytes.
constexpr std::uint8_t kHasChildren = 1;
constexpr std::uint8_t kHasNextSibling = 2;
constexpr std::uint8_t kLargestNodeType = kHasChildren | kHasNextSibling;

/// A node whose children are being written, and the next of them.
struct OpenNode {
    const BPathTree::BNode* node;
    std::size_t nextChild;
};

}  // namespace

std::size_t BPathTree::serialize(Bytes& structure, std::vector<Bytes>& codes) {
    std::size_t maxFanOut = root->children.size();
    std::stack<OpenNode> open;
    open.push({root.get(), 0});
    while (!open.empty()) {
        OpenNode& top = open.top();
        if (top.nextChild == top.node->children.size()) {
            open.pop();
            continue;
        }
        const BNode* node = top.node->children[top.nextChild++].get();
        const bool isLast = top.nextChild == top.node->children.size();
        codes.push_back(node->key);
        structure.push_back(static_cast<std::uint8_t>((isLast ? 0 : kHasNextSibling) +
                                                      (node->children.empty() ? 0 : kHasChildren)));
        if (node->children.empty()) continue;
        maxFanOut = std::max(maxFanOut, node->children.size());
        open.push({node, 0});
    }
    return maxFanOut;
}

std::size_t BPathTree::deserialize(Bytes& structure, std::vector<Bytes>& codes) {
    root = std::make_shared<BNode>();
    wideFolders_.reset();
    if (structure.empty()) return 0;

    std::size_t leafCount = 0;
    std::stack<BNode*, std::vector<BNode*>> open;
    open.push(root.get());
    for (std::size_t i = 0; !open.empty(); ++i) {
        if (i == structure.size() || i == codes.size()) throw IncompleteTrieException();
        BNode* const parent = open.top();
        parent->children.push_back(std::make_shared<BNode>());
        BNode* const node = parent->children.back().get();
        node->key = std::exchange(codes[i], {});

        const std::uint8_t type = structure[i];
        if ((type & kHasNextSibling) == 0 && type <= kLargestNodeType) {
            parent->children.shrink_to_fit();
            open.pop();
        }
        if (type > kLargestNodeType) throw UnknownNodeTypeException();
        if ((type & kHasChildren) != 0)
            open.push(node);
        else
            ++leafCount;
    }
    return leafCount;
}

}  // namespace compressedpaths
