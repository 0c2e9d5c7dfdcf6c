// Laws of the code, for random alphabets of two to three hundred characters.

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

struct Alphabet {
    std::u16string characters;
    std::vector<double> frequencies;
};

/// Different characters; zero, surrogates and the last unit are often among them.
rc::Gen<std::u16string> characters() {
    const auto character = rc::gen::weightedOneOf<char16_t>(
        {{6, rc::gen::inRange<char16_t>(0, 400)},
         {2, rc::gen::inRange<char16_t>(0xD800, 0xE000)},
         {2, rc::gen::map(rc::gen::arbitrary<std::uint16_t>(),
                          [](std::uint16_t unit) { return char16_t{unit}; })},
         {1, rc::gen::element(u'\0', char16_t{0xFFFF})}});
    return rc::gen::mapcat(rc::gen::inRange<std::size_t>(2, 300), [=](std::size_t count) {
        return rc::gen::map(rc::gen::unique<std::vector<char16_t>>(count, character),
                            [](const std::vector<char16_t>& units) {
                                return std::u16string(units.begin(), units.end());
                            });
    });
}

std::vector<double> fibonacci(std::size_t count) {
    std::vector<double> values{1, 1};
    while (values.size() < count) values.push_back(values.back() + values[values.size() - 2]);
    return values;
}

std::vector<double> powersOfTwo(std::size_t count) {
    std::vector<double> values{1};
    while (values.size() < count) values.push_back(values.back() * 2);
    return values;
}

rc::Gen<std::vector<double>> frequenciesOf(std::size_t count) {
    return rc::gen::oneOf(
        rc::gen::just(std::vector<double>(count, 1.0)),
        rc::gen::just(std::vector<double>(count, 0.0)), rc::gen::just(fibonacci(count)),
        rc::gen::just(powersOfTwo(count)),
        rc::gen::container<std::vector<double>>(
            count, rc::gen::map(rc::gen::inRange(0, 5), [](int value) { return double(value); })),
        rc::gen::container<std::vector<double>>(
            count, rc::gen::map(rc::gen::arbitrary<std::uint32_t>(),
                                [](std::uint32_t value) { return double(value); })));
}

rc::Gen<Alphabet> alphabet() {
    return rc::gen::mapcat(characters(), [](const std::u16string& units) {
        return rc::gen::map(frequenciesOf(units.size()), [=](const std::vector<double>& values) {
            return Alphabet{units, values};
        });
    });
}

std::u16string textOver(const std::u16string& characters) {
    const auto units = *rc::gen::nonEmpty(
        rc::gen::container<std::vector<char16_t>>(rc::gen::elementOf(characters)));
    return {units.begin(), units.end()};
}

/// The code of a text, bit by bit from the code words.
Bytes naiveCode(const HuffmanPathTree& tree, const std::u16string& text) {
    std::vector<bool> bits;
    for (const char16_t character : text) {
        const auto& word = HuffmanPathTreePeer::codes(tree).at(character);
        bits.insert(bits.end(), word.begin(), word.end());
    }
    Bytes bytes;
    sixpacks::boolVecToBytes(bytes, bits);
    return bytes;
}

/// The text of code bytes, bit by bit along the coding tree.
std::u16string naiveText(const HuffmanPathTree& tree, const Bytes& code) {
    std::vector<bool> bits;
    sixpacks::bytesToBoolVec(code, bits);
    std::u16string text;
    auto position = static_cast<std::int32_t>(HuffmanPathTreePeer::rootIndex(tree));
    for (const bool bit : bits) {
        const auto& node = HuffmanPathTreePeer::nodes(tree)[static_cast<std::size_t>(position)];
        position = static_cast<std::int32_t>(bit ? node.right : node.left);
        tree.appendToPathIfLeaf(position, text);
    }
    return text;
}

RC_GTEST_PROP(CodingProperties, decodingGivesTheTextBack, ()) {
    const Alphabet letters = *alphabet();
    HuffmanPathTree tree;
    tree.deflateHuffman(letters.frequencies.data(), letters.characters);
    const std::u16string text = textOver(letters.characters);
    RC_ASSERT(tree.generatePathFrom(tree.generateCodeFor(text)) == text);
}

RC_GTEST_PROP(CodingProperties, codingIsWhatTheCodeWordsSay, ()) {
    const Alphabet letters = *alphabet();
    HuffmanPathTree tree;
    tree.deflateHuffman(letters.frequencies.data(), letters.characters);
    const std::u16string text = textOver(letters.characters);
    const Bytes code = tree.generateCodeFor(text);
    RC_ASSERT(code == naiveCode(tree, text));
    RC_ASSERT(HuffmanPathTreePeer::maxCodeBytes(tree) == code.size());
}

RC_GTEST_PROP(CodingProperties, theTablesStoreTheCodeBytes, ()) {
    const Alphabet letters = *alphabet();
    HuffmanPathTree tree;
    tree.deflateHuffman(letters.frequencies.data(), letters.characters);
    FlatArray<std::uint8_t> names;
    FlatArray<std::uint8_t> expected;
    for (int i = 0; i < 3; ++i) {
        const std::u16string text = textOver(letters.characters);
        const Bytes code = naiveCode(tree, text);
        appendStoredName(code, expected);
        RC_ASSERT(tree.codeTables().appendCode(text, names) == code.size());
    }
    RC_ASSERT(Bytes(names.data(), names.end()) == Bytes(expected.data(), expected.end()));
}

RC_GTEST_PROP(CodingProperties, decodingIsAWalkAlongTheCodingTree, ()) {
    const Alphabet letters = *alphabet();
    HuffmanPathTree tree;
    tree.deflateHuffman(letters.frequencies.data(), letters.characters);
    Bytes code = *rc::gen::nonEmpty<Bytes>();
    code.push_back(*rc::gen::inRange<std::uint8_t>(0, 8));
    RC_ASSERT(tree.generatePathFrom(code) == naiveText(tree, code));
}

RC_GTEST_PROP(CodingProperties, codeWordsAreThePathsToTheirLeaves, ()) {
    const Alphabet letters = *alphabet();
    HuffmanPathTree tree;
    tree.deflateHuffman(letters.frequencies.data(), letters.characters);
    const auto& nodes = HuffmanPathTreePeer::nodes(tree);
    RC_ASSERT(nodes.size() == 2 * letters.characters.size() - 1);
    for (const auto& [character, word] : HuffmanPathTreePeer::codes(tree)) {
        std::size_t node = HuffmanPathTreePeer::rootIndex(tree);
        for (const bool bit : word) node = bit ? nodes[node].right : nodes[node].left;
        RC_ASSERT(nodes[node].isLeaf());
        RC_ASSERT(nodes[node].character == character);
    }
}

RC_GTEST_PROP(CodingProperties, anInflatedTreeHasTheSameCode, ()) {
    const Alphabet letters = *alphabet();
    HuffmanPathTree tree;
    tree.deflateHuffman(letters.frequencies.data(), letters.characters);
    HuffmanPathTree loaded;
    reload(tree, loaded);
    RC_ASSERT(HuffmanPathTreePeer::codes(loaded) == HuffmanPathTreePeer::codes(tree));
    RC_ASSERT(loaded.getBoolTree() == tree.getBoolTree());
    const std::u16string text = textOver(letters.characters);
    const Bytes code = tree.generateCodeFor(text);
    RC_ASSERT(loaded.generateCodeFor(text) == code);
    RC_ASSERT(loaded.generatePathFrom(code) == text);
}

TEST(CodingProperties, coverCodeWordsOfMoreBitsThanAMachineWord) {
    std::u16string units;
    for (char16_t unit = 0; unit < 300; ++unit) units.push_back(unit);
    for (const auto& frequencies : {fibonacci(units.size()), powersOfTwo(units.size())}) {
        HuffmanPathTree tree;
        tree.deflateHuffman(frequencies.data(), units);
        EXPECT_GT(HuffmanPathTreePeer::codes(tree).at(0).size(), 64U);
        const Bytes code = tree.generateCodeFor(units + units);
        EXPECT_EQ(code, naiveCode(tree, units + units));
        EXPECT_EQ(tree.generatePathFrom(code), units + units);
    }
}

}  // namespace
}  // namespace compressedpaths
