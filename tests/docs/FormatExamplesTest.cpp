// The hex examples of docs/format.md are what the library writes and reads.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"
#include "tests/docs/HexExample.hpp"
#include "tests/docs/Page.hpp"

namespace compressedpaths {
namespace {

using sixpacks::PackedSizeT;

void expectBits(const Bytes& example, const std::vector<bool>& bits) {
    Bytes packed;
    sixpacks::boolVecToBytes(packed, bits);
    EXPECT_EQ(packed, example);
    std::vector<bool> unpacked;
    sixpacks::bytesToBoolVec(example, unpacked);
    EXPECT_EQ(unpacked, bits);
}

void checkEightBits(const Bytes& example) {
    std::vector<bool> bits(8, false);
    bits.front() = true;
    bits.back() = true;
    expectBits(example, bits);
}

void buildExampleCode(HuffmanPathTree& set) {
    const std::vector<double> frequencies{4, 2, 1};
    set.deflateHuffman(frequencies.data(), u"abc");
}

void buildExampleSet(HuffmanPathTree& set) {
    buildExampleCode(set);
    std::vector<std::vector<std::u16string>> folders{{u"a"}, {u"a"}};
    std::vector<std::vector<std::u16string>> files{{u"b", u"c"}, {u"ca"}};
    set.generateCodeAsyncAndAddPaths(folders, files);
    Path again{set.generateCodeFor(u"a"), set.generateCodeFor(u"b")};
    set.addPathToBTree(again);
}

Bytes saved(HuffmanPathTree& set, bool compress) {
    Bytes bytes;
    set.serialize(bytes, compress);
    return bytes;
}

/// Loads the example as the set that buildExampleSet builds.
void expectLoadsAsExampleSet(Bytes example, bool compressed) {
    HuffmanPathTree set;
    set.deserialize(example, compressed);
    set.inflateHuffman(u"cba");
    std::vector<Path> folders;
    std::vector<Path> files;
    set.getPath(folders, files, {1, 2, 3});
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(set.generatePathFrom(folders[1][0]), u"a");
    EXPECT_EQ(set.generatePathFrom(files[0][1]), u"c");
    EXPECT_EQ(set.generatePathFrom(files[1][0]), u"ca");
    EXPECT_TRUE(set.hasDuplicate(4));
}

template <class Exception>
void expectRefused(Bytes example) {
    HuffmanPathTree set;
    EXPECT_THROW(set.deserialize(example, false), Exception);
}

void checkWidthTags(const Bytes& example) {
    Bytes tags;
    for (const std::size_t maximum : {255UL, 256UL, 65'535UL, 65'536UL, 0xFFFFFFFFUL, 1UL << 32})
        sixpacks::packPackedSizeT(maximum, tags);
    EXPECT_EQ(tags, example);
}

void checkInteger(const Bytes& example) {
    Bytes packed;
    sixpacks::makePackerOfWidth(PackedSizeT::Uint16)->packValue(300, packed);
    EXPECT_EQ(packed, example);
    EXPECT_EQ(sixpacks::ByteReader(example).readInteger(2), 300U);
}

void checkIntegerVector(const Bytes& example) {
    Bytes packed;
    sixpacks::packSizeTVector({1, 300}, packed, PackedSizeT::Uint16, PackedSizeT::Uint8);
    EXPECT_EQ(packed, example);
    sixpacks::ByteReader reader(example);
    std::vector<std::size_t> values;
    sixpacks::unpackSizeTVector(values, reader, PackedSizeT::Uint16, PackedSizeT::Uint8);
    EXPECT_EQ(values, (std::vector<std::size_t>{1, 300}));
}

void checkByteVector(const Bytes& example) {
    Bytes content{0xAA, 0xBB};
    Bytes packed;
    sixpacks::packVector(content, packed, PackedSizeT::Uint64);
    EXPECT_EQ(packed, example);
    sixpacks::ByteReader reader(example);
    Bytes unpacked;
    sixpacks::unpackVector(unpacked, reader, PackedSizeT::Uint64);
    EXPECT_EQ(unpacked, content);
}

// Other zlib builds write other streams, so it is the inflated bytes that count.
void checkZlibBlock(const Bytes& example) {
    Bytes content(40, 'a');
    Bytes block = example;
    EXPECT_EQ(sixpacks::decompressUint8(block.begin(), block.size(), 40), content);
    const Bytes written = sixpacks::compressUint8(content);
    EXPECT_EQ(Bytes(written.begin(), written.begin() + 2), Bytes(block.begin(), block.begin() + 2));
}

void checkCode(const Bytes& example) {
    HuffmanPathTree set;
    buildExampleCode(set);
    EXPECT_EQ(set.generateCodeFor(u"cab"), example);
    EXPECT_EQ(set.generatePathFrom(example), u"cab");
}

/// The trie of a/b, a/c and d as structure bytes and keys end to end.
std::pair<Bytes, Bytes> flattenedExampleTrie() {
    BPathTree trie;
    Path folder{{'a'}};
    std::vector<Bytes> files{{'b'}, {'c'}};
    std::vector<std::size_t> track;
    std::size_t prior = 0;
    trie.addPath(folder, files, track, prior);
    Path file{{'d'}};
    trie.addPath(file, track);

    std::pair<Bytes, Bytes> flattened;
    std::vector<Bytes> keys;
    trie.serialize(flattened.first, keys);
    for (const Bytes& key : keys)
        flattened.second.insert(flattened.second.end(), key.begin(), key.end());
    return flattened;
}

void checkSavedSet(const Bytes& example) {
    HuffmanPathTree set;
    buildExampleSet(set);
    EXPECT_EQ(saved(set, false), example);
    expectLoadsAsExampleSet(example, false);
}

void checkCompressedSet(const Bytes& example) {
    HuffmanPathTree set;
    buildExampleSet(set);
    const Bytes plain = saved(set, false);
    EXPECT_EQ(Bytes(example.begin(), example.begin() + 8), Bytes(plain.begin(), plain.begin() + 8));
    Bytes block(example.begin() + 8, example.end());
    EXPECT_EQ(sixpacks::decompressUint8(block.begin(), block.size(), plain[0]),
              Bytes(plain.begin() + 8, plain.end()));
    expectLoadsAsExampleSet(example, true);
}

// Of the example with first files, the last section takes so many bytes.
constexpr std::size_t kFirstFileSectionSize = 11;

std::vector<std::string> textsOf(Bytes form) {
    HuffmanPathTree set;
    set.deserialize(form, false);
    set.inflateHuffman(u"cba");
    std::vector<std::string> texts;
    set.forEachText(1, set.size(), "/",
                    [&texts](std::size_t, std::string_view text) { texts.emplace_back(text); });
    return texts;
}

void checkFirstFiles(const Bytes& example) {
    HuffmanPathTree set;
    buildExampleCode(set);
    std::vector<std::vector<std::u16string>> folders{{u"a"}, {u"a"}, {u"a", u"c"}};
    std::vector<std::vector<std::u16string>> files{{u"b"}, {u"c"}, {u"b", u"a"}};
    set.generateCodeAsyncAndAddPaths(folders, files);
    EXPECT_EQ(saved(set, false), example);
    EXPECT_THAT(textsOf(example), ::testing::ElementsAre("ab", "ac", "ac/b", "ac/a"));
    const Bytes without(example.begin(), example.end() - kFirstFileSectionSize);
    EXPECT_THAT(textsOf(without), ::testing::ElementsAre("ab", "ac/b", "ac/b", "ac/a"));
}

void checkEmptySet(const Bytes& example) {
    HuffmanPathTree set;
    EXPECT_EQ(saved(set, false), example);
}

void checkUnknownSection(Bytes example) {
    HuffmanPathTree set;
    set.deserialize(example, false);
    HuffmanPathTree empty;
    EXPECT_EQ(saved(set, false), saved(empty, false));
    EXPECT_NE(saved(set, false), example);
}

void checkTreeString(const Bytes& example) {
    HuffmanPathTree set;
    buildExampleSet(set);
    Bytes units;
    for (const char16_t unit : set.getTreeString()) {
        units.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        units.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
    EXPECT_EQ(units, example);
}

struct KnownExample {
    const char* name;
    void (*check)(const Bytes& example);

    friend void PrintTo(const KnownExample& known, std::ostream* out) { *out << known.name; }
};

const KnownExample kKnownExamples[] = {
    {"bits-three",
     [](const Bytes& example) {
         expectBits(example, {true, false, true});
     }},
    {"bits-eight", checkEightBits},
    {"bits-nine", [](const Bytes& example) { expectBits(example, std::vector<bool>(9, true)); }},
    {"code-cab", checkCode},
    {"width-tags", checkWidthTags},
    {"integer-300", checkInteger},
    {"integer-vector", checkIntegerVector},
    {"byte-vector", checkByteVector},
    {"zlib-block", checkZlibBlock},
    {"trie-structure",
     [](const Bytes& example) { EXPECT_EQ(flattenedExampleTrie().first, example); }},
    {"trie-keys", [](const Bytes& example) { EXPECT_EQ(flattenedExampleTrie().second, example); }},
    {"saved-set", checkSavedSet},
    {"saved-set-compressed", checkCompressedSet},
    {"saved-set-first-files", checkFirstFiles},
    {"saved-set-empty", checkEmptySet},
    {"saved-set-unknown-section", [](const Bytes& example) { checkUnknownSection(example); }},
    {"refused-premature-end",
     [](const Bytes& example) { expectRefused<sixpacks::PrematureEndException>(example); }},
    {"refused-width-tag",
     [](const Bytes& example) {
         expectRefused<sixpacks::InvalidUintConversionException>(example);
     }},
    {"refused-structure-byte",
     [](const Bytes& example) { expectRefused<UnknownNodeTypeException>(example); }},
    {"tree-string", checkTreeString},
};

class FormatExample : public ::testing::TestWithParam<KnownExample> {};

TEST_P(FormatExample, isWhatTheLibraryWritesAndReads) {
    const docs::Page page("docs/format.md");
    const auto& blocks = page.blocksIn("hex");
    const auto block = blocks.find(GetParam().name);
    ASSERT_NE(block, blocks.end()) << "the page has no example of this name";
    GetParam().check(docs::parseHex(block->second));
}

INSTANTIATE_TEST_SUITE_P(ofThePage, FormatExample, ::testing::ValuesIn(kKnownExamples),
                         [](const auto& known) {
                             std::string name = known.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(FormatPage, hasNoExampleThatNobodyChecks) {
    std::vector<std::string> known;
    for (const KnownExample& example : kKnownExamples) known.emplace_back(example.name);
    const docs::Page page("docs/format.md");
    for (const auto& [name, text] : page.blocksIn("hex"))
        EXPECT_THAT(known, ::testing::Contains(name));
}

}  // namespace
}  // namespace compressedpaths
