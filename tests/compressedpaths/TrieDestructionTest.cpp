// Tries far deeper than the call stack: nothing that is done with one, or with linked nodes, down
// to freeing them, may recurse. All of it runs where recursion would show itself.

#include <gtest/gtest.h>

#include <memory>

#include "compressedpaths/BPathTree.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/SmallStack.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

constexpr std::size_t kDepth = 100'000;

using Node = BPathTree::BNode;
using WeakNode = std::weak_ptr<Node>;

Path deepPath(std::size_t depth, char letter = 'a') {
    Path components(depth, key(letter));
    return components;
}

/// A chain of nodes, `depth` of them below the first.
std::shared_ptr<Node> chainOf(std::size_t depth) {
    auto first = std::make_shared<Node>();
    std::shared_ptr<Node> node = first;
    for (; depth > 0; --depth) {
        node->children.push_back(std::make_shared<Node>());
        node = node->children.back();
    }
    return first;
}

WeakNode deepestOf(std::shared_ptr<Node> node) {
    while (!node->children.empty()) node = node->children.back();
    return node;
}

// --- Tries.

TEST(TrieDestruction, freesADeepTrie) {
    auto tree = std::make_unique<BPathTree>();
    onSmallStack([&] {
        addSingle(*tree, deepPath(kDepth));
        EXPECT_EQ(walked(*tree), (std::vector<Path>{deepPath(kDepth)}));
        tree.reset();
    });
    EXPECT_EQ(tree, nullptr);
}

TEST(TrieDestruction, freesADeepTrieInTheMiddleOfAWalk) {
    auto tree = std::make_unique<BPathTree>();
    onSmallStack([&] {
        addSingle(*tree, deepPath(kDepth));
        Path sibling = deepPath(kDepth - 1);
        sibling.push_back(key('b'));
        addSingle(*tree, sibling);
        Path next;
        tree->reset();
        tree->getNextPath(next);
        EXPECT_EQ(next.size(), kDepth);
        EXPECT_TRUE(tree->hasNextPath());
        tree.reset();
    });
    EXPECT_EQ(tree, nullptr);
}

TEST(TrieDestruction, freesADeepTrieThatWasReadBack) {
    auto tree = std::make_unique<BPathTree>();
    onSmallStack([&] {
        Bytes structure(kDepth, 1);
        structure.back() = 0;
        std::vector<Bytes> keys(kDepth, key('a'));
        EXPECT_EQ(tree->deserialize(structure, keys), 1U);
        EXPECT_EQ(walked(*tree), (std::vector<Path>{deepPath(kDepth)}));
        Bytes again;
        keys.clear();
        EXPECT_EQ(tree->serialize(again, keys), 1U);
        EXPECT_EQ(again, structure);
        tree.reset();
    });
    EXPECT_EQ(tree, nullptr);
}

TEST(TrieDestruction, freesADeepTrieThatWasReadBackInPart) {
    auto tree = std::make_unique<BPathTree>();
    onSmallStack([&] {
        Bytes structure(kDepth, 1);
        std::vector<Bytes> keys(kDepth, key('a'));
        EXPECT_THROW(tree->deserialize(structure, keys), IncompleteTrieException);
        EXPECT_EQ(walked(*tree), (std::vector<Path>{deepPath(kDepth)}));
        tree.reset();
    });
    EXPECT_EQ(tree, nullptr);
}

TEST(TrieDestruction, replacesADeepTrieByTheOneReadBack) {
    BPathTree tree;
    onSmallStack([&] {
        addSingle(tree, deepPath(kDepth));
        Bytes structure{0};
        std::vector<Bytes> keys{key('b')};
        tree.deserialize(structure, keys);
    });
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("b")}));
}

TEST(TrieDestruction, leavesADeepTrieToItsCopy) {
    auto tree = std::make_unique<BPathTree>();
    onSmallStack([&] {
        addSingle(*tree, deepPath(kDepth));
        BPathTree copy(*tree);
        tree.reset();
        EXPECT_EQ(walked(copy), (std::vector<Path>{deepPath(kDepth)}));
    });
    EXPECT_EQ(tree, nullptr);
}

/// Each of many folders in one another holds files and the next folder between them.
TEST(TrieDestruction, freesAWideAndDeepComb) {
    constexpr std::size_t kCombDepth = 20'000;
    auto tree = std::make_unique<BPathTree>();
    onSmallStack([&] {
        Bytes structure;
        for (std::size_t level = 0; level < kCombDepth; ++level) {
            structure.insert(structure.end(), 8, 2);
            structure.push_back(level + 1 < kCombDepth ? 3 : 2);
        }
        structure.insert(structure.end(), kCombDepth, 0);
        std::vector<Bytes> keys(structure.size(), key('a'));
        const std::vector<Bytes> given = keys;
        EXPECT_EQ(tree->deserialize(structure, keys), 9 * kCombDepth + 1);
        Bytes again;
        keys.clear();
        EXPECT_EQ(tree->serialize(again, keys), 10U);
        EXPECT_EQ(again, structure);
        EXPECT_EQ(keys, given);
        tree.reset();
    });
    EXPECT_EQ(tree, nullptr);
}

// --- Linked nodes.

TEST(LinkedNodes, areFreedHoweverDeepTheyAre) {
    auto first = chainOf(kDepth);
    const WeakNode deepest = deepestOf(first);
    onSmallStack([&] { first.reset(); });
    EXPECT_TRUE(deepest.expired());
}

TEST(LinkedNodes, areMadeAndFreedForADeepTrie) {
    BPathTree tree;
    addSingle(tree, deepPath(kDepth));
    tree.reset();
    WeakNode deepest;
    onSmallStack([&] {
        const auto walk = BPathTreePeer::linkedWalk(tree);
        EXPECT_EQ(walk.nodeStack.size(), 1U);
        deepest = deepestOf(walk.root);
        EXPECT_FALSE(deepest.expired());
    });
    EXPECT_TRUE(deepest.expired());
}

TEST(LinkedNodes, stayIfTheyAreHeldAndSoDoesWhatIsBelowThem) {
    auto first = chainOf(kDepth);
    const WeakNode deepest = deepestOf(first);
    WeakNode above;
    std::shared_ptr<Node> middle = first;
    for (std::size_t level = 0; level < kDepth / 2; ++level) {
        above = middle;
        middle = middle->children[0];
    }
    onSmallStack([&] { first.reset(); });
    EXPECT_TRUE(above.expired());
    EXPECT_FALSE(deepest.expired());
    EXPECT_EQ(middle->children.size(), 1U);
    onSmallStack([&] { middle.reset(); });
    EXPECT_TRUE(deepest.expired());
}

TEST(LinkedNodes, areFreedInAWideAndDeepComb) {
    std::vector<WeakNode> nodes;
    auto first = std::make_shared<Node>();
    for (std::shared_ptr<Node> node = first; nodes.size() < 200'000;) {
        for (int child = 0; child < 10; ++child) {
            node->children.push_back(std::make_shared<Node>());
            nodes.emplace_back(node->children.back());
        }
        node = node->children[8];
    }
    onSmallStack([&] { first.reset(); });
    for (const WeakNode& node : nodes) ASSERT_TRUE(node.expired());
}

TEST(LinkedNodes, areFreedInAWideFolder) {
    auto folder = std::make_shared<Node>();
    for (int child = 0; child < 200'000; ++child)
        folder->children.push_back(std::make_shared<Node>());
    const WeakNode last = deepestOf(folder);
    onSmallStack([&] { folder.reset(); });
    EXPECT_TRUE(last.expired());
}

}  // namespace
}  // namespace compressedpaths
