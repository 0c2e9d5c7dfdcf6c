#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compressedpaths/BPathTree.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

using testing::ThrowsMessage;

constexpr const char* kUnknownType = "Cannot determine the node type for the given value.";
constexpr const char* kIncomplete = "The structure bytes and keys end before the tree is complete.";

struct Flattened {
    Bytes structure;
    std::vector<Bytes> keys;
    std::size_t maxFanOut = 0;
};

Flattened flattened(BPathTree& tree) {
    Flattened form;
    form.maxFanOut = tree.serialize(form.structure, form.keys);
    return form;
}

TEST(SerializedPathTrie, hasAByteAndAKeyForEachNode) {
    BPathTree tree;
    for (const char* letters : {"ab", "ac", "d"}) addSingle(tree, path(letters));
    const Flattened form = flattened(tree);
    EXPECT_EQ(form.structure, (Bytes{3, 2, 0, 0}));
    EXPECT_EQ(form.keys, path("abcd"));
    EXPECT_EQ(form.maxFanOut, 2U);
}

TEST(SerializedPathTrie, ofASinglePath) {
    BPathTree tree;
    addSingle(tree, path("xy"));
    const Flattened form = flattened(tree);
    EXPECT_EQ(form.structure, (Bytes{1, 0}));
    EXPECT_EQ(form.keys, path("xy"));
    EXPECT_EQ(form.maxFanOut, 1U);
}

TEST(SerializedPathTrie, givesTheLargestFanOutOfAnyNode) {
    BPathTree tree;
    for (const char* letters : {"a", "bc", "bd", "be", "bf", "g"}) addSingle(tree, path(letters));
    EXPECT_EQ(flattened(tree).maxFanOut, 4U);
    for (const char* letters : {"h", "i"}) addSingle(tree, path(letters));
    EXPECT_EQ(flattened(tree).maxFanOut, 5U);
}

TEST(SerializedPathTrie, ofAnEmptyTrieIsNothing) {
    BPathTree tree;
    const Flattened form = flattened(tree);
    EXPECT_TRUE(form.structure.empty());
    EXPECT_TRUE(form.keys.empty());
    EXPECT_EQ(form.maxFanOut, 0U);
}

TEST(SerializedPathTrie, isAppendedAndLeavesTheTrieAlone) {
    BPathTree tree;
    addSingle(tree, path("xy"));
    Bytes structure{9};
    std::vector<Bytes> keys{key('-')};
    tree.serialize(structure, keys);
    EXPECT_EQ(structure, (Bytes{9, 1, 0}));
    EXPECT_EQ(keys, path("-xy"));
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("xy")}));
}

TEST(SerializedPathTrie, isRebuilt) {
    BPathTree tree;
    Bytes structure{3, 2, 0, 0};
    std::vector<Bytes> keys = path("abcd");
    EXPECT_EQ(tree.deserialize(structure, keys), 3U);
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("ab"), path("ac"), path("d")}));
    EXPECT_EQ(keys, (std::vector<Bytes>(4)));
    EXPECT_EQ(flattened(tree).structure, structure);

    structure = {1, 0};
    keys = path("xy");
    EXPECT_EQ(tree.deserialize(structure, keys), 1U);
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("xy")}));
}

TEST(SerializedPathTrie, isAnEmptyTrieWithoutStructure) {
    BPathTree tree;
    addSingle(tree, path("a"));
    Bytes structure;
    std::vector<Bytes> keys;
    EXPECT_EQ(tree.deserialize(structure, keys), 0U);
    EXPECT_TRUE(BPathTreePeer::root(tree)->children.empty());
    keys = path("abc");
    EXPECT_EQ(tree.deserialize(structure, keys), 0U);
}

TEST(SerializedPathTrie, refusesEveryTypeAboveThreeAndKeepsTheNodesBefore) {
    for (unsigned type = 4; type < 256; ++type) {
        BPathTree tree;
        Bytes structure{3, static_cast<std::uint8_t>(type), 0, 0};
        std::vector<Bytes> keys = path("abcd");
        EXPECT_THAT([&] { tree.deserialize(structure, keys); },
                    ThrowsMessage<UnknownNodeTypeException>(kUnknownType));
        EXPECT_EQ(walked(tree), (std::vector<Path>{path("ab")}));
    }
}

TEST(SerializedPathTrie, refusesStructureOrKeysThatEndEarly) {
    const Bytes structure{3, 3, 2, 0, 2, 0, 0};
    const std::vector<Bytes> keys = path("abcdefg");
    for (std::size_t length = 1; length < structure.size(); ++length) {
        BPathTree shortStructure;
        Bytes types(structure.begin(), structure.begin() + std::ptrdiff_t(length));
        std::vector<Bytes> names = keys;
        EXPECT_THAT([&] { shortStructure.deserialize(types, names); },
                    ThrowsMessage<IncompleteTrieException>(kIncomplete));

        BPathTree shortKeys;
        types = structure;
        names.assign(keys.begin(), keys.begin() + std::ptrdiff_t(length));
        EXPECT_THAT([&] { shortKeys.deserialize(types, names); },
                    ThrowsMessage<IncompleteTrieException>(kIncomplete));
        EXPECT_EQ(walked(shortKeys), walked(shortStructure));
    }
    BPathTree noKeys;
    Bytes types = structure;
    std::vector<Bytes> none;
    EXPECT_THROW(noKeys.deserialize(types, none), IncompleteTrieException);
    EXPECT_TRUE(walked(noKeys).empty());
}

TEST(SerializedPathTrie, ignoresWhatIsLeftOver) {
    BPathTree tree;
    Bytes structure{1, 0, 255, 3};
    std::vector<Bytes> keys = path("xyz");
    EXPECT_EQ(tree.deserialize(structure, keys), 1U);
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("xy")}));
    EXPECT_EQ(keys, (std::vector<Bytes>{{}, {}, key('z')}));
}

TEST(SerializedPathTrie, replacesTheTrieOfAPathSetAndItsPathCount) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b", u"c"}}});
    Bytes structure;
    std::vector<Bytes> keys;
    EXPECT_EQ(set.serializePathTree(structure, keys), 2U);

    HuffmanPathTree other;
    EXPECT_EQ(other.deserializePathTree(structure, keys), 2U);
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(other), 2U);
    Bytes none;
    EXPECT_EQ(other.deserializePathTree(none, keys), 0U);
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(other), 0U);
}

}  // namespace
}  // namespace compressedpaths
