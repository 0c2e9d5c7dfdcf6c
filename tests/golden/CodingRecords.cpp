// Records about the code: building the coding tree, inflating it, coding and decoding.

#include <array>
#include <bit>
#include <memory>
#include <unordered_map>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "tests/golden/GoldenRecords.hpp"
#include "tests/golden/Throwing.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths::golden {
namespace {

using NodeRow = std::array<std::uint64_t, 5>;  // frequency (its bits), character, index, children
using CodeWords = std::map<char16_t, std::string>;

// Frequencies are compared by their bits: the signs of zeros count.

std::vector<std::uint64_t> bitPatternsOf(const std::vector<double>& values) {
    std::vector<std::uint64_t> patterns;
    patterns.reserve(values.size());
    for (const double value : values) patterns.push_back(std::bit_cast<std::uint64_t>(value));
    return patterns;
}

std::vector<NodeRow> nodesOf(const HuffmanPathTree& tree) {
    std::vector<NodeRow> rows;
    for (const HuffmanPathTree::HNode& node : HuffmanPathTreePeer::nodes(tree)) {
        rows.push_back({std::bit_cast<std::uint64_t>(node.frequency), node.character, node.index,
                        node.left, node.right});
    }
    return rows;
}

std::vector<NodeRow> recordedNodes(const Json& table) {
    return listOf(table, [](const Json& row) {
        if (!row.IsArray() || row.Size() != 5) throw UnreadableRecord("not a row of five");
        return NodeRow{std::bit_cast<std::uint64_t>(floatOf(row[0])), integerOf(row[1]),
                       integerOf(row[2]), integerOf(row[3]), integerOf(row[4])};
    });
}

CodeWords codeWordsOf(const HuffmanPathTree& tree) {
    CodeWords words;
    for (const auto& [character, word] : HuffmanPathTreePeer::codes(tree))
        words[character] = bitTextOf({word.begin(), word.end()});
    return words;
}

CodeWords recordedCodeWords(const Json& table) {
    CodeWords words;
    for (const Json& row : table.GetArray()) {
        if (!row.IsArray() || row.Size() != 2) throw UnreadableRecord("not a row of two");
        const auto character = static_cast<char16_t>(integerOf(row[0]));
        if (!words.emplace(character, textOf(row[1])).second)
            throw UnreadableRecord("two code words of a character");
    }
    return words;
}

std::vector<std::size_t> preorderOf(HuffmanPathTree& tree) {
    std::vector<std::size_t> indices;
    tree.traverse([&indices](HuffmanPathTree*, HuffmanPathTree::HNode& node) {
        indices.push_back(node.index);
    });
    return indices;
}

/// Compares the state of a coding tree with the fields that `expect` has.
void expectCodingTree(HuffmanPathTree& tree, Fields& expect) {
    if (const Json* value = expect.find("nodes")) {
        EXPECT_EQ(nodesOf(tree), recordedNodes(*value));
    }
    if (const Json* value = expect.find("root_index")) {
        EXPECT_EQ(HuffmanPathTreePeer::rootIndex(tree), integerOf(*value));
    }
    if (const Json* value = expect.find("bool_tree")) {
        EXPECT_EQ(bitTextOf(tree.getBoolTree()), textOf(*value));
    }
    if (const Json* value = expect.find("tree_string")) {
        EXPECT_EQ(tree.getTreeString(), unitsOf(*value));
    }
    if (const Json* value = expect.find("frequencies")) {
        EXPECT_EQ(bitPatternsOf(tree.getFrequencies()), bitPatternsOf(frequenciesOf(*value)));
    }
    if (const Json* value = expect.find("codes")) {
        EXPECT_EQ(codeWordsOf(tree), recordedCodeWords(*value));
    }
    if (const Json* value = expect.find("preorder")) {
        EXPECT_EQ(preorderOf(tree), trackOf(*value));
    }
}

void runHuffmanBuild(Fields& record) {
    const std::u16string characters = charactersOf(record["chars"]);
    const std::vector<double> frequencies = frequenciesOf(record["frequencies"]);
    ASSERT_EQ(characters.size(), frequencies.size());
    Fields expect(record["expect"]);
    HuffmanPathTree tree;
    tree.deflateHuffman(frequencies.data(), characters);
    expectCodingTree(tree, expect);

    if (flagOf(expect["tie_free"])) {
        SCOPED_TRACE("from a hash map");
        std::unordered_map<char16_t, double> frequencyOf;
        for (std::size_t i = 0; i < characters.size(); ++i)
            ASSERT_TRUE(frequencyOf.emplace(characters[i], frequencies[i]).second);
        HuffmanPathTree fromMap;
        fromMap.deflateHuffman(frequencyOf);
        expectCodingTree(fromMap, expect);
    }
    expect.requireAllRead();
}

std::unique_ptr<HuffmanPathTree> treeOfAlphabet(const Json& value) {
    auto tree = std::make_unique<HuffmanPathTree>();
    if (value.IsNull()) return tree;
    Fields alphabet(value);
    tree->deflateHuffman(frequenciesOf(alphabet["frequencies"]).data(),
                         charactersOf(alphabet["chars"]));
    alphabet.requireAllRead();
    return tree;
}

/// Runs each of the cases, an array of objects.
template <class Run>
void forEachCase(const Json& cases, Run run) {
    if (!cases.IsArray()) throw UnreadableRecord("not a list of cases");
    std::size_t number = 0;
    for (const Json& value : cases.GetArray()) {
        SCOPED_TRACE("case " + std::to_string(number++) + " (from 0)");
        Fields fields(value);
        run(fields);
        fields.requireAllRead();
    }
}

/// Codes "text" and compares what comes of it: "code", its "bits" where given, or "throws".
void expectCode(HuffmanPathTree& tree, Fields& fields) {
    Bytes code;
    const std::u16string text = unitsOf(fields["text"]);
    const auto expected = recordedThrow(fields);
    EXPECT_EQ(thrownBy([&] { code = tree.generateCodeFor(text); }), expected);
    if (!expected) {
        EXPECT_EQ(hexOf(code), textOf(fields["code"]));
    }
    if (const Json* value = fields.find("bits")) {
        std::vector<bool> bits;
        sixpacks::bytesToBoolVec(code, bits);
        EXPECT_EQ(bitTextOf(bits), textOf(*value));
    }
}

void runCode(Fields& record) {
    const auto tree = treeOfAlphabet(record["alphabet"]);
    for (const char* const list : {"cases", "errors"}) {
        SCOPED_TRACE(list);
        forEachCase(record[list], [&tree](Fields& fields) {
            expectCode(*tree, fields);
            EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(*tree),
                      integerOf(fields["max_code_bytes"]));
        });
    }
}

void runDecode(Fields& record) {
    const auto tree = treeOfAlphabet(record["alphabet"]);
    for (const char* const list : {"cases", "beyond"}) {
        SCOPED_TRACE(list);
        forEachCase(record[list], [&tree](Fields& fields) {
            EXPECT_EQ(tree->generatePathFrom(bytesOf(fields["code"])), unitsOf(fields["text"]));
        });
    }
}

void runLeafStep(Fields& record) {
    const auto tree = treeOfAlphabet(record["alphabet"]);
    forEachCase(record["cases"], [&tree](Fields& fields) {
        auto position = static_cast<std::int32_t>(integerOf(fields["position"]));
        std::u16string text = unitsOf(fields["text_before"]);
        EXPECT_EQ(tree->appendToPathIfLeaf(position, text), flagOf(fields["result"]));
        EXPECT_EQ(text, unitsOf(fields["text_after"]));
        EXPECT_EQ(static_cast<std::uint64_t>(position), integerOf(fields["position_after"]));
    });
}

void runInflate(Fields& record) {
    HuffmanPathTree tree;
    Bytes form = bytesOf(record["form"]);
    tree.deserialize(form, false);
    const std::u16string treeString = unitsOf(record["tree_string"]);
    const std::string mode = textOf(record["mode"]);
    if (mode == "inflateHuffman") {
        tree.inflateHuffman(treeString);
    } else if (mode == "inflate") {
        tree.setTreeString(treeString);
        tree.inflate();
    } else {
        throw UnreadableRecord("unknown mode " + mode);
    }
    if (const Json& value = record["set_frequencies"]; !value.IsNull()) {
        std::vector<double> frequencies = frequenciesOf(value);
        tree.setFrequencies(frequencies);
        EXPECT_TRUE(frequencies.empty());
    }

    Fields expect(record["expect"]);
    expectCodingTree(tree, expect);
    expect.requireAllRead();
    forEachCase(record["cases"], [&tree](Fields& fields) { expectCode(tree, fields); });
}

}  // namespace

RecordKinds codingKinds() {
    return {{"huffman_build", runHuffmanBuild},
            {"code", runCode},
            {"decode", runDecode},
            {"leaf_step", runLeafStep},
            {"inflate", runInflate}};
}

}  // namespace compressedpaths::golden
