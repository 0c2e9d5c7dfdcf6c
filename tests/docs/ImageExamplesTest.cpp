// The hex examples of docs/image.md are what an image holds.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <sstream>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/Image.hpp"
#include "tests/docs/HexExample.hpp"
#include "tests/docs/Page.hpp"

namespace compressedpaths {
namespace {

using image::Part;

const docs::Page& page() {
    static const docs::Page read("docs/image.md");
    return read;
}

/// The image of the set that the page describes, and its header.
struct ExampleImage {
    Bytes bytes;
    image::Header header;

    ExampleImage() {
        HuffmanPathTree set;
        const std::vector<double> frequencies{4, 2, 1};
        set.deflateHuffman(frequencies.data(), u"abc");
        std::vector<std::vector<std::u16string>> folders{
            {u"a"}, {u"a", u"ca"}, {u"a"}, {u"a", u"b"}, {u"a", u"b"}, {u"a", u"ca"}};
        std::vector<std::vector<std::u16string>> files{{u"b", u"c"}, {u"a"}, {u"cab"},
                                                       {u"c"},       {u"b"}, {}};
        set.generateCodeAsyncAndAddPaths(folders, files);
        Path again{set.generateCodeFor(u"a"), set.generateCodeFor(u"c")};
        set.addPathToBTree(again);

        std::ostringstream out;
        set.writeImage(out);
        const std::string text = out.str();
        bytes.assign(text.begin(), text.end());
        std::memcpy(&header, bytes.data(), sizeof header);
    }

    Bytes part(Part wanted) const {
        const image::Extent& extent = header[wanted];
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(extent.offset);
        return {begin, begin + static_cast<std::ptrdiff_t>(extent.byteSize)};
    }
};

const ExampleImage& example() {
    static const ExampleImage made;
    return made;
}

struct KnownPart {
    const char* name;
    Part part;

    friend void PrintTo(const KnownPart& known, std::ostream* out) { *out << known.name; }
};

const KnownPart kKnownParts[] = {
    {"image-names", Part::kNames},
    {"image-folders", Part::kFolders},
    {"image-entries", Part::kEntryBytes},
    {"image-blocks", Part::kEntryBlocks},
    {"image-repeated-paths", Part::kRepeatedPaths},
    {"image-repeated-order", Part::kRepeatedOrder},
    {"image-shape", Part::kShape},
    {"image-leaves", Part::kLeaves},
    {"image-frequencies", Part::kFrequencies},
    {"image-folder-order", Part::kFoldersByName},
    {"image-entry-order", Part::kEntriesByFolder},
};

class ImageExample : public ::testing::TestWithParam<KnownPart> {};

TEST_P(ImageExample, isWhatAnImageHolds) {
    const auto& blocks = page().blocksIn("hex");
    const auto block = blocks.find(GetParam().name);
    ASSERT_NE(block, blocks.end()) << "the page has no example of this name";
    EXPECT_EQ(docs::parseHex(block->second), example().part(GetParam().part));
}

INSTANTIATE_TEST_SUITE_P(ofThePage, ImageExample, ::testing::ValuesIn(kKnownParts),
                         [](const auto& known) {
                             std::string name = known.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(ImagePage, showsTheHeader) {
    const Bytes header(example().bytes.begin(), example().bytes.begin() + sizeof(image::Header));
    EXPECT_EQ(docs::parseHex(page().blocksIn("hex").at("image-header"), header), header);
}

TEST(ImagePage, hasNoExampleThatNobodyChecks) {
    std::vector<std::string> known{"image-header"};
    for (const KnownPart& part : kKnownParts) known.emplace_back(part.name);
    for (const auto& [name, text] : page().blocksIn("hex"))
        EXPECT_THAT(known, ::testing::Contains(name));
}

/// The hash as the page says it.
std::uint64_t hashOfThePage(std::uint64_t parent, std::uint64_t position, std::uint64_t seed) {
    std::uint64_t h = (parent << 32 | position) ^ seed;
    h = (h ^ h >> 33) * 0xFF51AFD7ED558CCD;
    h = (h ^ h >> 33) * 0xC4CEB9FE1A85EC53;
    return h ^ h >> 33;
}

TEST(ImagePage, saysWhereAFormerFileIsFound) {
    const Bytes table = example().part(Part::kFormerFiles);
    ASSERT_TRUE(std::has_single_bit(table.size() / 4));
    std::vector<std::uint32_t> slots(table.size() / 4);
    std::memcpy(slots.data(), table.data(), table.size());
    EXPECT_EQ(example().header.formerFileCount, 1U);
    const std::uint64_t hash = hashOfThePage(1, 0, example().header.seed);
    EXPECT_EQ(slots[hash % slots.size()], 3U);  // the folder "b", child 0 of folder 1
    EXPECT_EQ(std::count(slots.begin(), slots.end(), 0xFFFFFFFF),
              static_cast<std::ptrdiff_t>(slots.size()) - 1);
}

TEST(ImagePage, describesASetThatCanBeOpened) {
    const ExampleImage& made = example();
    std::vector<std::uint64_t> aligned(made.bytes.size() / 8);
    std::memcpy(aligned.data(), made.bytes.data(), made.bytes.size());
    const auto bytes = std::as_bytes(std::span(aligned));
    HuffmanPathTree::verifyImage(bytes);
    std::vector<std::string> texts;
    HuffmanPathTree::openImage(bytes)->forEachText(
        1, 6, "/", [&texts](std::size_t, std::string_view text) { texts.emplace_back(text); });
    EXPECT_THAT(texts, ::testing::ElementsAre("ab", "ac", "aca/a", "acab", "ab/c", "ab/b"));
}

}  // namespace
}  // namespace compressedpaths
