// Tries far deeper than the call stack: freeing one must not recurse.

#include <gtest/gtest.h>

#include <memory>

#include "compressedpaths/BPathTree.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

constexpr std::size_t kDepth = 100'000;

using WeakNode = std::weak_ptr<BPathTree::BNode>;

Path deepPath(std::size_t depth, char letter = 'a') {
    Path components(depth, key(letter));
    return components;
}

WeakNode deepestOf(const BPathTree& tree) {
    auto node = BPathTreePeer::root(tree);
    while (!node->children.empty()) node = node->children.back();
    return node;
}

/// Each of `depth` folders holds `width` files and the next folder between them.
void addComb(BPathTree& tree, std::size_t depth, std::size_t width) {
    Bytes structure;
    std::vector<Bytes> keys;
    for (std::size_t level = 0; level < depth; ++level) {
        structure.insert(structure.end(), width, 2);
        structure.push_back(level + 1 < depth ? 3 : 2);
    }
    structure.insert(structure.end(), depth, 0);
    keys.resize(structure.size());
    tree.deserialize(structure, keys);
}

TEST(TrieDestruction, freesADeepTrie) {
    WeakNode deepest;
    {
        BPathTree tree;
        addSingle(tree, deepPath(kDepth));
        deepest = deepestOf(tree);
        EXPECT_FALSE(deepest.expired());
    }
    EXPECT_TRUE(deepest.expired());
}

TEST(TrieDestruction, freesADeepTrieInTheMiddleOfAWalk) {
    WeakNode deepest;
    {
        BPathTree tree;
        addSingle(tree, deepPath(kDepth));
        Path sibling = deepPath(kDepth - 1);
        sibling.push_back(key('b'));
        addSingle(tree, sibling);
        deepest = deepestOf(tree);
        Path next;
        tree.reset();
        tree.getNextPath(next);
        EXPECT_EQ(next.size(), kDepth);
        EXPECT_TRUE(tree.hasNextPath());
    }
    EXPECT_TRUE(deepest.expired());
}

TEST(TrieDestruction, freesADeepTrieThatWasReadBack) {
    WeakNode deepest;
    {
        BPathTree tree;
        Bytes structure(kDepth, 1);
        structure.back() = 0;
        std::vector<Bytes> keys(kDepth, key('a'));
        EXPECT_EQ(tree.deserialize(structure, keys), 1U);
        deepest = deepestOf(tree);
        EXPECT_EQ(walked(tree), (std::vector<Path>{deepPath(kDepth)}));
    }
    EXPECT_TRUE(deepest.expired());
}

TEST(TrieDestruction, freesADeepTrieThatWasReadBackInPart) {
    WeakNode deepest;
    {
        BPathTree tree;
        Bytes structure(kDepth, 1);
        std::vector<Bytes> keys(kDepth, key('a'));
        EXPECT_THROW(tree.deserialize(structure, keys), IncompleteTrieException);
        deepest = deepestOf(tree);
    }
    EXPECT_TRUE(deepest.expired());
}

TEST(TrieDestruction, replacesADeepTrieByTheOneReadBack) {
    BPathTree tree;
    addSingle(tree, deepPath(kDepth));
    const WeakNode deepest = deepestOf(tree);
    Bytes structure{0};
    std::vector<Bytes> keys{key('b')};
    tree.deserialize(structure, keys);
    EXPECT_TRUE(deepest.expired());
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("b")}));
}

TEST(TrieDestruction, leavesADeepTrieToItsCopy) {
    auto tree = std::make_unique<BPathTree>();
    addSingle(*tree, deepPath(kDepth));
    WeakNode deepest;
    {
        BPathTree copy(*tree);
        deepest = deepestOf(copy);
        tree.reset();
        EXPECT_FALSE(deepest.expired());
        EXPECT_EQ(walked(copy), (std::vector<Path>{deepPath(kDepth)}));
    }
    EXPECT_TRUE(deepest.expired());
}

TEST(TrieDestruction, leavesANodeThatIsHeldAndWhatIsBelowIt) {
    std::shared_ptr<BPathTree::BNode> middle;
    WeakNode above;
    WeakNode deepest;
    {
        BPathTree tree;
        addSingle(tree, deepPath(kDepth));
        deepest = deepestOf(tree);
        middle = BPathTreePeer::root(tree);
        for (std::size_t level = 0; level < kDepth / 2; ++level) {
            above = middle;
            middle = middle->children[0];
        }
    }
    EXPECT_TRUE(above.expired());
    EXPECT_FALSE(deepest.expired());
    EXPECT_EQ(middle->children.size(), 1U);
    middle.reset();
    EXPECT_TRUE(deepest.expired());
}

TEST(TrieDestruction, freesAWideAndDeepComb) {
    std::vector<WeakNode> nodes;
    {
        BPathTree tree;
        addComb(tree, 20'000, 8);
        auto node = BPathTreePeer::root(tree);
        for (; node->children.size() > 1; node = node->children[8]) {
            ASSERT_EQ(node->children.size(), 10U);
            nodes.emplace_back(node->children.front());
            nodes.emplace_back(node->children.back());
            if (node->children[8]->children.empty()) break;
        }
        EXPECT_EQ(nodes.size(), 40'000U);
    }
    for (const WeakNode& node : nodes) ASSERT_TRUE(node.expired());
}

TEST(TrieDestruction, freesAWideTrie) {
    WeakNode last;
    {
        BPathTree tree;
        Bytes structure(200'000, 2);
        structure.back() = 0;
        std::vector<Bytes> keys(structure.size(), key('a'));
        EXPECT_EQ(tree.deserialize(structure, keys), 200'000U);
        last = deepestOf(tree);
    }
    EXPECT_TRUE(last.expired());
}

}  // namespace
}  // namespace compressedpaths
