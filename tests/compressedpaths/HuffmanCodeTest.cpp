#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "tests/compressedpaths/CodingTexts.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

using testing::ThrowsMessage;

std::deque<bool> wordOf(const HuffmanPathTree& tree, char16_t character) {
    return HuffmanPathTreePeer::codes(tree).at(character);
}

void makeEqualCode(HuffmanPathTree& tree, const std::u16string& characters) {
    const std::vector<double> frequencies(characters.size(), 1.0);
    tree.deflateHuffman(frequencies.data(), characters);
}

/// Everything that a failed operation must leave alone.
void expectNoCodingTree(HuffmanPathTree& tree) {
    EXPECT_TRUE(HuffmanPathTreePeer::nodes(tree).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::codes(tree).empty());
    EXPECT_TRUE(tree.getBoolTree().empty());
    EXPECT_TRUE(tree.getTreeString().empty());
    EXPECT_TRUE(tree.getFrequencies().empty());
}

TEST(HuffmanCode, putsTheFirstPoppedOfTwoEqualCharactersLeft) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");

    const auto& nodes = HuffmanPathTreePeer::nodes(tree);
    ASSERT_EQ(nodes.size(), 3U);
    EXPECT_EQ(nodes[0].character, u'x');
    EXPECT_EQ(nodes[1].character, u'y');
    EXPECT_EQ(nodes[2].left, 0U);
    EXPECT_EQ(nodes[2].right, 1U);
    EXPECT_EQ(HuffmanPathTreePeer::rootIndex(tree), 2U);
    EXPECT_EQ(wordOf(tree, u'x'), (std::deque<bool>{false}));
    EXPECT_EQ(wordOf(tree, u'y'), (std::deque<bool>{true}));
}

TEST(HuffmanCode, putsTheBitOfTheFirstCharacterLowest) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");
    EXPECT_EQ(tree.generateCodeFor(u"xy"), (Bytes{0b10, 2}));
    EXPECT_EQ(tree.generateCodeFor(u"yx"), (Bytes{0b01, 2}));
}

TEST(HuffmanCode, endsWholeBytesWithAnEmptyPartialByte) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");
    EXPECT_EQ(tree.generateCodeFor(u"yxxxxxxy"), (Bytes{0x81, 0, 0}));
    EXPECT_EQ(tree.generateCodeFor(u"xxxxxxxx"), (Bytes{0, 0, 0}));
}

// Popping a leaves the heap b d c, popping b leaves d c; so d goes before c from there on.
TEST(HuffmanCode, breaksTiesBetweenFourEqualCharactersByTheStepsOfTheHeap) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"abcd");

    EXPECT_EQ(wordOf(tree, u'a'), (std::deque<bool>{false, false}));
    EXPECT_EQ(wordOf(tree, u'b'), (std::deque<bool>{false, true}));
    EXPECT_EQ(wordOf(tree, u'd'), (std::deque<bool>{true, false}));
    EXPECT_EQ(wordOf(tree, u'c'), (std::deque<bool>{true, true}));
    EXPECT_EQ(tree.getTreeString(), u"abdc");
    EXPECT_EQ(HuffmanPathTreePeer::rootIndex(tree), 6U);
}

TEST(HuffmanCode, isTheSameForTheSameInputInTheSameOrder) {
    std::u16string characters;
    for (char16_t character = 0; character < 300; ++character) characters.push_back(character);
    HuffmanPathTree one;
    HuffmanPathTree other;
    makeEqualCode(one, characters);
    makeEqualCode(other, characters);
    EXPECT_EQ(HuffmanPathTreePeer::codes(one), HuffmanPathTreePeer::codes(other));
}

TEST(HuffmanCode, ofAMapIsThatOfTheArrayWhereNothingTies) {
    HuffmanPathTree fromMap;
    fromMap.deflateHuffman({{u'a', 1.0}, {u'b', 2.0}, {u'c', 4.0}, {u'd', 8.0}});
    HuffmanPathTree fromArray;
    const std::vector<double> frequencies{1, 2, 4, 8};
    fromArray.deflateHuffman(frequencies.data(), u"abcd");
    EXPECT_EQ(HuffmanPathTreePeer::codes(fromMap), HuffmanPathTreePeer::codes(fromArray));
    EXPECT_EQ(wordOf(fromMap, u'd'), (std::deque<bool>{true}));
}

TEST(HuffmanCode, refusesAnAlphabetOfFewerThanTwoCharacters) {
    HuffmanPathTree tree;
    const double frequency = 1;
    const auto fromArray = [&](const std::u16string& characters) {
        return [&, characters] { tree.deflateHuffman(&frequency, characters); };
    };
    const auto fromMap = [&](const std::unordered_map<char16_t, double>& map) {
        return [&, map] { tree.deflateHuffman(map); };
    };
    EXPECT_THAT(fromArray(u""), ThrowsMessage<AlphabetTooSmallException>(kTooSmall));
    EXPECT_THAT(fromArray(u"a"), ThrowsMessage<AlphabetTooSmallException>(kTooSmall));
    EXPECT_THAT(fromMap({}), ThrowsMessage<AlphabetTooSmallException>(kTooSmall));
    EXPECT_THAT(fromMap({{u'a', 1.0}}), ThrowsMessage<AlphabetTooSmallException>(kTooSmall));
    expectNoCodingTree(tree);

    makeEqualCode(tree, u"xy");
    EXPECT_EQ(tree.generatePathFrom(tree.generateCodeFor(u"xyy")), u"xyy");
}

TEST(HuffmanCode, isBuiltOnlyOnce) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");
    EXPECT_THAT([&] { makeEqualCode(tree, u"abc"); },
                ThrowsMessage<CodingTreeExistsException>(kBuiltAlready));
    EXPECT_THAT(
        [&] {
            tree.deflateHuffman({{u'a', 1.0}, {u'b', 2.0}});
        },
        ThrowsMessage<CodingTreeExistsException>(kBuiltAlready));
    EXPECT_EQ(tree.getTreeString(), u"xy");
    EXPECT_EQ(tree.getFrequencies(), (std::vector<double>{1, 1}));
    EXPECT_EQ(tree.generateCodeFor(u"xy"), (Bytes{0b10, 2}));
}

TEST(HuffmanCode, hasNoneForAnEmptyString) {
    HuffmanPathTree tree;
    EXPECT_THAT([&] { tree.generateCodeFor(u""); },
                ThrowsMessage<NoCodeForEmptyString>(kEmptyString));
    makeEqualCode(tree, u"xy");
    EXPECT_THAT([&] { tree.generateCodeFor(u""); },
                ThrowsMessage<NoCodeForEmptyString>(kEmptyString));
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(tree), 0U);
}

TEST(HuffmanCode, hasNoneForACharacterOutsideTheAlphabet) {
    HuffmanPathTree tree;
    EXPECT_THAT([&] { tree.generateCodeFor(u"x"); }, ThrowsMessage<CodeNotFoundException>(kNoCode));
    makeEqualCode(tree, u"xy");
    tree.generateCodeFor(u"x");
    const std::u16string longAndUnknown = std::u16string(100, u'x') + u"z";
    EXPECT_THAT([&] { tree.generateCodeFor(longAndUnknown); },
                ThrowsMessage<CodeNotFoundException>(kNoCode));
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(tree), 2U);
}

TEST(HuffmanCode, remembersTheLongestCode) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");
    tree.generateCodeFor(u"x");
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(tree), 2U);
    tree.generateCodeFor(std::u16string(80, u'x'));
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(tree), 12U);
    tree.generateCodeFor(u"x");
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(tree), 12U);
}

TEST(HuffmanCode, givesARepeatedCharacterTheCodeWordOfItsFirstLeaf) {
    HuffmanPathTree tree;
    const std::vector<double> frequencies{1, 2, 4};
    tree.deflateHuffman(frequencies.data(), u"aba");  // leaves in pre-order: a b a
    EXPECT_EQ(tree.getTreeString(), u"aba");
    EXPECT_EQ(wordOf(tree, u'a'), (std::deque<bool>{false, false}));
    EXPECT_EQ(tree.generatePathFrom(tree.generateCodeFor(u"ab")), u"ab");
}

TEST(HuffmanCode, codesSurrogatesNulAndTheLastUnitLikeAnyCharacter) {
    HuffmanPathTree tree;
    const std::u16string units{u'\0', char16_t{0xD83D}, char16_t{0xDE00}, char16_t{0xFFFF}};
    makeCode(tree, units);
    for (const std::u16string& text :
         {units, units.substr(2) + units, units.substr(0, 1), units.substr(1, 1)})
        EXPECT_EQ(tree.generatePathFrom(tree.generateCodeFor(text)), text);
}

TEST(HuffmanCode, takesAnyFrequenciesThatAreNumbersOrNot) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<std::vector<double>> rows{{0, 0, 0, 0},
                                                {nan, 1, nan, 2},
                                                {infinity, infinity, 1, 0},
                                                {-1, -infinity, 0, infinity},
                                                {5e-324, 1e308, 1e308, 1e308}};
    for (const auto& frequencies : rows) {
        HuffmanPathTree tree;
        tree.deflateHuffman(frequencies.data(), u"abcd");
        EXPECT_EQ(tree.generatePathFrom(tree.generateCodeFor(u"abcddcba")), u"abcddcba");
    }
}

TEST(HuffmanCode, refusesCodeWordsWithoutBoundAndCanBeBuiltThen) {
    std::u16string characters;
    for (unsigned unit = 0; unit < 20'000; ++unit)
        characters.push_back(static_cast<char16_t>(unit));
    const std::vector<double> frequencies(characters.size(), -1.0);  // sums come first at once
    HuffmanPathTree tree;
    std::vector<double> before{1, 2, 3};
    tree.setFrequencies(before);
    EXPECT_THAT([&] { tree.deflateHuffman(frequencies.data(), characters); },
                ThrowsMessage<CodeWordsTooLongException>(kTooLong));
    EXPECT_THAT([&] { tree.generateCodeFor(u"a"); }, ThrowsMessage<CodeNotFoundException>(kNoCode));
    EXPECT_EQ(tree.getFrequencies(), (std::vector<double>{1, 2, 3}));
    EXPECT_TRUE(HuffmanPathTreePeer::parents(tree).empty());
    tree.setFrequencies(before);
    expectNoCodingTree(tree);

    makeEqualCode(tree, u"xy");
    EXPECT_EQ(tree.generateCodeFor(u"xy"), (Bytes{0b10, 2}));
    EXPECT_EQ(tree.getFrequencies(), (std::vector<double>{1, 1}));
}

TEST(HuffmanCode, takesFrequenciesOverTheWholeRangeOfFloats) {
    // Each is more than all those before the last one together, so that each leaf has a level.
    std::vector<double> frequencies{std::numeric_limits<double>::denorm_min()};
    while (std::isfinite(frequencies.back() * 1.65 * 3))
        frequencies.push_back(frequencies.back() * 1.65);
    std::u16string characters;
    for (std::size_t unit = 0; unit < frequencies.size(); ++unit)
        characters.push_back(static_cast<char16_t>(unit));
    HuffmanPathTree tree;
    tree.deflateHuffman(frequencies.data(), characters);
    EXPECT_GT(wordOf(tree, 0).size(), 2800U);
    EXPECT_EQ(tree.generatePathFrom(tree.generateCodeFor(characters)), characters);
}

TEST(HuffmanCode, isNotDecodedWithoutACodingTree) {
    const HuffmanPathTree tree;
    EXPECT_THAT(
        [&] {
            tree.generatePathFrom({0, 1});
        },
        ThrowsMessage<NoUsableCodingTreeException>(kNoTree));
    EXPECT_THAT([&] { tree.generatePathFrom({}); },
                ThrowsMessage<NoUsableCodingTreeException>(kNoTree));
}

TEST(HuffmanCode, isNotDecodedFromNoBytesOrAnImpossibleCount) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");
    for (const Bytes& code : {Bytes{}, Bytes{0, 8}, Bytes{0, 255}, Bytes{1, 2, 9}}) {
        EXPECT_THAT([&] { tree.generatePathFrom(code); },
                    ThrowsMessage<InvalidCodeException>(kInvalidCode));
    }
    EXPECT_EQ(tree.generatePathFrom({0b01, 7}), u"yxxxxxx");
}

TEST(HuffmanCode, decodesOneByteAsNoBits) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");
    EXPECT_EQ(tree.generatePathFrom({0}), u"");
    EXPECT_EQ(tree.generatePathFrom({7}), u"");
}

TEST(HuffmanCode, dropsTheBitsAfterTheLastWholeCodeWord) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"abcd");  // a is 00, b 01, d 10, c 11
    EXPECT_EQ(tree.generatePathFrom({0b010, 3}), u"b");
    EXPECT_EQ(tree.generatePathFrom({0b1, 1}), u"");
}

TEST(HuffmanCode, isDecodedWhateverFollowsTheLastBit) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");
    EXPECT_EQ(tree.generatePathFrom({0b11111'010, 3}), u"xyx");
    EXPECT_EQ(tree.generatePathFrom({0b10, 0xFF, 0}), u"xyxxxxxx");
}

TEST(HuffmanCode, isDecodedFromCodeBytesOfAnyNumber) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"abcd");
    std::u16string text;
    while (text.size() < 1300) {
        text += text.size() % 3 == 0 ? u"b" : u"dc";
        EXPECT_EQ(tree.generatePathFrom(tree.generateCodeFor(text)), text);
    }
}

TEST(HuffmanCode, takesALeafStepOnlyAtLeaves) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");
    std::u16string text = u"-";
    std::int32_t position = 2;
    EXPECT_FALSE(tree.appendToPathIfLeaf(position, text));
    EXPECT_EQ(position, 2);
    EXPECT_EQ(text, u"-");
    position = 1;
    EXPECT_TRUE(tree.appendToPathIfLeaf(position, text));
    EXPECT_EQ(position, 2);
    EXPECT_EQ(text, u"-y");
}

TEST(HuffmanCode, refusesALeafStepOutsideTheNodeTable) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"xy");
    std::u16string text;
    for (const std::int32_t outside : {-1, 3, std::numeric_limits<std::int32_t>::max(),
                                       std::numeric_limits<std::int32_t>::min()}) {
        std::int32_t position = outside;
        EXPECT_THAT([&] { tree.appendToPathIfLeaf(position, text); },
                    ThrowsMessage<InvalidCodeException>(kInvalidCode));
        EXPECT_EQ(position, outside);
        EXPECT_EQ(text, u"");
    }
}

TEST(HuffmanCode, isTraversedInPreOrderOnCopies) {
    HuffmanPathTree tree;
    makeEqualCode(tree, u"abcd");
    std::vector<std::uint32_t> visited;
    tree.traverse([&](HuffmanPathTree* self, HuffmanPathTree::HNode& node) {
        EXPECT_EQ(self, &tree);
        visited.push_back(node.index);
        node.character = u'?';
    });
    EXPECT_EQ(visited, (std::vector<std::uint32_t>{6, 2, 0, 1, 5, 3, 4}));
    EXPECT_EQ(HuffmanPathTreePeer::nodes(tree)[0].character, u'a');
}

TEST(HuffmanCode, isTraversedWithoutAVisitWhenThereIsNoTree) {
    HuffmanPathTree tree;
    std::size_t visits = 0;
    tree.traverse([&](HuffmanPathTree*, HuffmanPathTree::HNode&) { ++visits; });
    EXPECT_EQ(visits, 0U);
}

}  // namespace
}  // namespace compressedpaths
