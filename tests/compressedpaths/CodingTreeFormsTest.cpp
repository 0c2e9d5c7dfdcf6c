#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/compressedpaths/CodingTexts.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/SavedBodies.hpp"

namespace compressedpaths {
namespace {

using testing::Each;
using testing::Field;
using testing::ThrowsMessage;

constexpr const char* kIncomplete =
    "The shape or the characters of the coding tree end before the tree is complete.";
void loadShape(HuffmanPathTree& tree, const std::vector<bool>& shape) {
    SavedBody body;
    body.shape(shape).emptyTrie();
    Bytes bytes = body.form();
    tree.deserialize(bytes, false);
}

TEST(CodingTreeForms, listTheTreeInPreOrder) {
    HuffmanPathTree tree;
    const std::vector<double> frequencies{8, 1, 2, 4};
    tree.deflateHuffman(frequencies.data(), u"abcd");  // (((b c) d) a)
    EXPECT_EQ(tree.getBoolTree(), (std::vector<bool>{false, false, false, true, true, true, true}));
    EXPECT_EQ(tree.getTreeString(), u"bcda");
    EXPECT_EQ(tree.getFrequencies(), (std::vector<double>{1, 2, 4, 8}));
}

TEST(CodingTreeForms, haveALeafForEachCharacterAndOneNodeFewerBetween) {
    for (std::size_t count = 2; count <= 60; ++count) {
        HuffmanPathTree tree;
        std::u16string characters;
        for (std::size_t i = 0; i < count; ++i) characters.push_back(static_cast<char16_t>(i));
        makeCode(tree, characters);
        const std::vector<bool> shape = tree.getBoolTree();
        ASSERT_EQ(shape.size(), 2 * count - 1);
        EXPECT_FALSE(shape[0]);
        EXPECT_EQ(std::count(shape.begin(), shape.end(), true), static_cast<int>(count));
        EXPECT_EQ(tree.getTreeString().size(), count);
        EXPECT_EQ(tree.getFrequencies().size(), count);
    }
}

TEST(CodingTreeForms, inflateToTheSameCode) {
    HuffmanPathTree tree;
    makeCode(tree);
    HuffmanPathTree inflated;
    loadShape(inflated, tree.getBoolTree());
    inflated.inflateHuffman(tree.getTreeString());
    EXPECT_EQ(HuffmanPathTreePeer::codes(inflated), HuffmanPathTreePeer::codes(tree));
    EXPECT_EQ(inflated.generatePathFrom(tree.generateCodeFor(kAlphabet)), kAlphabet);
    EXPECT_EQ(inflated.getTreeString(), tree.getTreeString());
}

TEST(CodingTreeForms, inflateToNodesInPreOrderWithoutFrequencies) {
    HuffmanPathTree tree;
    makeCode(tree);
    HuffmanPathTree inflated;
    loadShape(inflated, tree.getBoolTree());
    inflated.inflateHuffman(tree.getTreeString());
    const auto& nodes = HuffmanPathTreePeer::nodes(inflated);
    ASSERT_EQ(nodes.size(), 2 * kAlphabet.size() - 1);
    EXPECT_THAT(nodes, Each(Field(&HuffmanPathTree::HNode::frequency, 0.0)));
    for (std::size_t i = 0; i < nodes.size(); ++i) EXPECT_EQ(nodes[i].index, i);
    EXPECT_EQ(HuffmanPathTreePeer::rootIndex(inflated), 0U);
    EXPECT_TRUE(inflated.getFrequencies().empty());
}

TEST(CodingTreeForms, takeFrequenciesOverAndLeaveNone) {
    HuffmanPathTree tree;
    std::vector<double> values{1, 2.5};
    tree.setFrequencies(values);
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(tree.getFrequencies(), (std::vector<double>{1, 2.5}));
    tree.setFrequencies(values);
    EXPECT_TRUE(tree.getFrequencies().empty());
}

TEST(CodingTreeForms, giveOnlyTheFrequenciesThatWereSetAfterInflating) {
    HuffmanPathTree inflated;
    std::vector<double> values{3, 4};
    inflated.setFrequencies(values);
    loadShape(inflated, {false, true, true});
    inflated.inflateHuffman(u"xy");
    EXPECT_EQ(inflated.getFrequencies(), (std::vector<double>{3, 4}));
}

TEST(CodingTreeForms, ofASingleLeafCodeToNothingAndCannotBeDecoded) {
    HuffmanPathTree tree;
    loadShape(tree, {true});
    tree.inflateHuffman(u"x");
    EXPECT_EQ(tree.generateCodeFor(u"xxx"), Bytes{});
    EXPECT_THAT([&] { tree.generatePathFrom({}); },
                ThrowsMessage<InvalidCodeException>(
                    "The code bytes lead to no character of the coding tree."));
    for (const Bytes& code : {Bytes{0, 1}, Bytes{1, 0}, Bytes{255, 0, 0}}) {
        EXPECT_THAT([&] { tree.generatePathFrom(code); },
                    ThrowsMessage<NoUsableCodingTreeException>(kNoTree));
    }
}

TEST(CodingTreeForms, withoutAShapeInflateToNoTree) {
    HuffmanPathTree tree;
    tree.inflateHuffman(u"abc");
    EXPECT_TRUE(HuffmanPathTreePeer::nodes(tree).empty());
    EXPECT_EQ(HuffmanPathTreePeer::rootIndex(tree), 0U);
    EXPECT_EQ(tree.getTreeString(), u"abc");
    EXPECT_THROW(tree.generateCodeFor(u"a"), CodeNotFoundException);
    EXPECT_THROW(tree.generatePathFrom({0, 1}), NoUsableCodingTreeException);

    HuffmanPathTree other;
    other.inflate();
    EXPECT_TRUE(HuffmanPathTreePeer::nodes(other).empty());
}

TEST(CodingTreeForms, canBeDecodedButNotCodedWhenOnlyInflated) {
    HuffmanPathTree tree;
    loadShape(tree, {false, true, true});
    tree.setTreeString(u"xy");
    tree.inflate();
    EXPECT_EQ(tree.generatePathFrom({0b10, 2}), u"xy");
    EXPECT_THROW(tree.generateCodeFor(u"x"), CodeNotFoundException);
}

TEST(CodingTreeForms, refuseFewerCharactersThanLeaves) {
    HuffmanPathTree tree;
    loadShape(tree, {false, true, true});
    tree.setTreeString(u"q");
    EXPECT_THAT([&] { tree.inflateHuffman(u"x"); },
                ThrowsMessage<IncompleteCodingTreeException>(kIncomplete));
    EXPECT_THAT([&] { tree.inflate(); }, ThrowsMessage<IncompleteCodingTreeException>(kIncomplete));
    EXPECT_EQ(tree.getTreeString(), u"q");
    EXPECT_TRUE(HuffmanPathTreePeer::nodes(tree).empty());

    tree.inflateHuffman(u"xy");
    EXPECT_EQ(tree.generateCodeFor(u"xy"), (Bytes{0b10, 2}));
}

TEST(CodingTreeForms, refuseAShapeThatEndsEarly) {
    const std::vector<std::vector<bool>> shapes{
        {false}, {false, true}, {false, false, true, true}, {false, true, false, true}};
    for (const auto& shape : shapes) {
        HuffmanPathTree tree;
        loadShape(tree, shape);
        EXPECT_THAT([&] { tree.inflateHuffman(u"abcdefgh"); },
                    ThrowsMessage<IncompleteCodingTreeException>(kIncomplete));
        EXPECT_TRUE(HuffmanPathTreePeer::nodes(tree).empty());
        EXPECT_EQ(tree.getTreeString(), u"");
    }
}

TEST(CodingTreeForms, ignoreWhatIsLeftOver) {
    HuffmanPathTree tree;
    loadShape(tree, {false, true, true, false, true, true});
    tree.inflateHuffman(u"xyz");
    EXPECT_EQ(HuffmanPathTreePeer::nodes(tree).size(), 3U);
    EXPECT_EQ(tree.generateCodeFor(u"xy"), (Bytes{0b10, 2}));
    EXPECT_THROW(tree.generateCodeFor(u"z"), CodeNotFoundException);
}

TEST(CodingTreeForms, areInflatedOnlyOnce) {
    HuffmanPathTree tree;
    loadShape(tree, {false, true, true});
    tree.inflateHuffman(u"xy");
    EXPECT_THAT([&] { tree.inflateHuffman(u"ab"); },
                ThrowsMessage<CodingTreeExistsException>(kBuiltAlready));
    EXPECT_THAT([&] { tree.inflate(); }, ThrowsMessage<CodingTreeExistsException>(kBuiltAlready));
    EXPECT_EQ(tree.getTreeString(), u"xy");
    EXPECT_EQ(tree.generatePathFrom({0b10, 2}), u"xy");
}

/// A leaf on each level but two on the last: n * (n + 1) / 2 - 1 bits of n leaves.
void loadComb(HuffmanPathTree& tree, std::size_t leafCount) {
    std::vector<bool> shape;
    for (std::size_t i = 0; i + 1 < leafCount; ++i) {
        shape.push_back(false);
        shape.push_back(true);
    }
    shape.push_back(true);
    loadShape(tree, shape);
}

std::u16string charactersFor(std::size_t leafCount) {
    std::u16string characters;
    for (std::size_t i = 0; i < leafCount; ++i) characters.push_back(static_cast<char16_t>(i));
    return characters;
}

// The bound is 256 bits for each leaf and 2^23 more, which lies between these two.
TEST(CodingTreeForms, refuseCodeWordsWithoutBound) {
    HuffmanPathTree tree;
    loadComb(tree, 4359);
    tree.inflateHuffman(charactersFor(4359));
    EXPECT_EQ(HuffmanPathTreePeer::codes(tree).at(4358).size(), 4358U);

    HuffmanPathTree other;
    loadComb(other, 4360);
    EXPECT_THAT([&] { other.inflateHuffman(charactersFor(4360)); },
                ThrowsMessage<CodeWordsTooLongException>(kTooLong));
}

TEST(CodingTreeForms, areAsTheyWereAfterARefusal) {
    HuffmanPathTree tree;
    loadComb(tree, 20'000);
    tree.setTreeString(u"before");
    EXPECT_THROW(tree.inflateHuffman(charactersFor(20'000)), CodeWordsTooLongException);
    EXPECT_EQ(tree.getTreeString(), u"before");
    EXPECT_TRUE(HuffmanPathTreePeer::nodes(tree).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::codes(tree).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::parents(tree).empty());
    EXPECT_THROW(tree.generateCodeFor(u"b"), CodeNotFoundException);
    EXPECT_THROW(tree.generatePathFrom({0, 1}), NoUsableCodingTreeException);

    tree.setTreeString(charactersFor(20'000));
    tree.inflate();  // takes no code words
    EXPECT_EQ(tree.generatePathFrom({0b01, 2}), std::u16string(1, u'\x1'));
}

}  // namespace
}  // namespace compressedpaths
