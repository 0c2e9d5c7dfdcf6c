// Images that somebody made up with care: with parts of their own, and sums that hold.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "tests/compressedpaths/Images.hpp"
#include "tests/support/ImageSums.hpp"
#include "tests/support/ZeroPages.hpp"

namespace compressedpaths {
namespace {

using image::Header;
using image::Part;

std::string partOf(const ImageBytes& image, Part part) {
    const image::Extent extent = image.header()[part];
    return image.text().substr(extent.offset, extent.byteSize);
}

void putHeader(std::string& text, const Header& header) {
    std::memcpy(text.data(), &header, sizeof header);
}

/// An image with another one of its parts, which stands after the others.
ImageBytes withPart(const ImageBytes& image, Part part, const std::string& bytes) {
    const auto alignedUp = [](std::size_t size) {
        return (size + image::kAlignment - 1) / image::kAlignment * image::kAlignment;
    };
    Header header = image.header();
    std::string text = image.text().substr(0, header[Part::kSums].offset);
    header[part] = {text.size(), bytes.size()};
    text += bytes;
    text.resize(alignedUp(text.size()));
    const std::size_t sumCount = (text.size() + image::kSummedSize - 1) / image::kSummedSize;
    header[Part::kSums] = {text.size(), 8 * sumCount};
    text.resize(alignedUp(text.size() + 8 * sumCount) + image::kZeroBytes);
    header.byteSize = text.size();
    putHeader(text, header);
    ImageBytes made(text);
    putImageSumsRight(std::as_writable_bytes(std::span(made.data(), made.size())));
    return made;
}

void expectRefused(const ImageBytes& image) {
    EXPECT_THROW(HuffmanPathTree::verifyImage(image.span()), InvalidImageException);
}

/// Swaps two neighbours among integers of four bytes.
std::string withSwapped(std::string integers, std::size_t first) {
    for (std::size_t i = 0; i < 4; ++i)
        std::swap(integers.at(4 * first + i), integers.at(4 * first + 4 + i));
    return integers;
}

class MadeUpImage : public testing::Test {
protected:
    MadeUpImage() : image_(made()) {}

    ImageBytes image_;

private:
    static const HuffmanPathTree& made() {
        static const auto set = [] {
            auto sample = std::make_unique<HuffmanPathTree>();
            buildSample(*sample);
            return sample;
        }();
        return *set;
    }
};

TEST_F(MadeUpImage, isWholeWhereverItsPartsStand) {
    ImageBytes moved = image_;
    for (std::size_t part = 0; part + 1 < image::kPartCount; ++part)
        moved = withPart(moved, static_cast<Part>(part), partOf(moved, static_cast<Part>(part)));
    HuffmanPathTree::verifyImage(moved.span());
    EXPECT_EQ(savedForm(*moved.open()), savedForm(*image_.open()));
}

TEST_F(MadeUpImage, isRefusedWithBothTotalsAndPlacesThatLackTheOther) {
    const ImageBytes counts = withPart(image_, Part::kUnpairedCounts, std::string(8, '\1'));
    EXPECT_NO_THROW(counts.open());
    const std::string place(sizeof(image::UnpairedPlace), '\0');
    EXPECT_NO_THROW(withPart(image_, Part::kUnpairedPlaces, place).open());
    EXPECT_THROW(withPart(counts, Part::kUnpairedPlaces, place).open(), InvalidImageException);
}

TEST_F(MadeUpImage, isRefusedWithMoreSumsThanItHasBytesFor) {
    Header header = image_.header();
    header[Part::kSums].byteSize += 8;
    std::string text = image_.text();
    putHeader(text, header);
    ImageBytes more(text);
    putImageSumsRight(std::as_writable_bytes(std::span(more.data(), more.size())));
    EXPECT_NO_THROW(more.open());
    expectRefused(more);
}

TEST_F(MadeUpImage, isRefusedIfPathsThatWereAddedAgainAreOutOfOrder) {
    const std::string order = partOf(image_, Part::kRepeatedOrder);
    ASSERT_GE(order.size(), 8U);
    expectRefused(withPart(image_, Part::kRepeatedOrder, withSwapped(order, 0)));
}

// Of one folder by their numbers, and all by their folders.
TEST_F(MadeUpImage, isRefusedIfAnyTwoEntriesAreOutOfOrder) {
    const std::string order = partOf(image_, Part::kEntriesByFolder);
    ASSERT_EQ(order.size(), 4 * kSampleEntries.size());
    for (std::size_t first = 0; first + 1 < kSampleEntries.size(); ++first)
        expectRefused(withPart(image_, Part::kEntriesByFolder, withSwapped(order, first)));
}

// It is its own parent: who goes through its folders would find it in itself without end.
TEST_F(MadeUpImage, isRefusedWithTheRootInTheRoot) {
    std::string folders = partOf(image_, Part::kFolders);
    PathArena::Folder root;
    std::memcpy(&root, folders.data() + sizeof root, sizeof root);  // the first folder in it
    root.parent = PathArena::kRoot;
    root.next = root.last = PathArena::kFolderLink | PathArena::kRoot;
    std::memcpy(folders.data(), &root, sizeof root);
    const ImageBytes image = withPart(image_, Part::kFolders, folders);
    expectRefused(image);
    const auto opened = image.open();
    EXPECT_THROW(walkedPaths(*opened), InvalidImageException);
    EXPECT_THROW(savedForm(*opened), InvalidImageException);
}

TEST_F(MadeUpImage, hasACodingTreeThatIsNotReplaced) {
    const auto opened = image_.open();
    EXPECT_THROW(opened->inflate(), CodingTreeExistsException);
    EXPECT_THROW(opened->inflateHuffman(u"ab"), CodingTreeExistsException);
}

// The files of no other entry begin so: a file that is met is added again.
TEST_F(MadeUpImage, mayHaveAnEntryWhoseFirstFileIsAFolder) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b"}}, {{u"a", u"c"}, {u"d"}}});
    const ImageBytes image(set);
    constexpr std::string_view kEntry{"\x09\x01\x01", 3};  // one file, in folder 1, at position 1
    const ImageBytes longer =
        withPart(image, Part::kEntryBytes, partOf(image, Part::kEntryBytes) + std::string(kEntry));
    Header header = longer.header();
    ++header.entryCount;
    ++header.entryPathCount;
    ++header.pathCount;
    std::string text = longer.text();
    putHeader(text, header);
    const ImageBytes changed(text);
    HuffmanPathTree loaded;
    reload(*changed.open(), loaded);
    EXPECT_EQ(pathsByNumber(loaded, 3),
              (TextPaths{{u"a", u"b"}, {u"a", u"c", u"d"}, {u"a", u"c"}}));
}

TEST_F(MadeUpImage, isRefusedWithMoreNamesOrFoldersThanOffsetsReach) {
    constexpr std::uint64_t kTooMany = std::uint64_t{PathArena::kFolderLink} + 1;
    const ZeroPages pages(sizeof(PathArena::Folder) * kTooMany + (std::size_t{1} << 20));
    const std::string text = image_.text();
    for (const auto& [part, size] :
         {std::pair{Part::kNames, kTooMany},
          std::pair{Part::kFolders, sizeof(PathArena::Folder) * kTooMany}}) {
        Header header = image_.header();
        header.byteSize = pages.bytes().size();
        header[part] = {0, size};
        std::memcpy(pages.bytes().data(), text.data(), text.size());
        std::memcpy(pages.bytes().data(), &header, sizeof header);
        EXPECT_THROW(HuffmanPathTree::openImage(pages.bytes()), InvalidImageException);
    }
}

// --- Tables that are not those of the code.

/// 65,536 paths in a code of which the rarest characters have long code words.
ImageBytes imageWithLongCodeWords() {
    HuffmanPathTree set;
    std::u16string characters;
    std::vector<double> frequencies{1, 1};
    while (frequencies.size() < 70)
        frequencies.push_back(frequencies.back() + frequencies[frequencies.size() - 2]);
    for (std::size_t i = 0; i < frequencies.size(); ++i)
        characters.push_back(static_cast<char16_t>(u'0' + i));
    set.deflateHuffman(frequencies.data(), characters);
    CodedBatch batch(set);
    batch.beginEntry(0);
    for (std::uint64_t file = 0; file < image::kMinPathsWithTables; ++file)
        batch.appendFile(std::u16string_view(characters).substr(characters.size() - 1));
    set.addCodedBatch(batch);
    return ImageBytes(set);
}

TEST(MadeUpTables, areRefusedInEachOfTheirParts) {
    ImageBytes image = imageWithLongCodeWords();
    ASSERT_NO_THROW(HuffmanPathTree::verifyImage(image.span()));
    const Header header = image.header();
    for (const Part part : {Part::kPagesOfWords, Part::kWords, Part::kLongWords, Part::kLongBits,
                            Part::kSteps, Part::kBranches}) {
        SCOPED_TRACE(static_cast<int>(part));
        ASSERT_GT(header[part].byteSize, 0U);
        char& first = image.data()[header[part].offset];
        for (int round = 0; round < 2; ++round) {  // damaged, and whole again
            first = static_cast<char>(first ^ 1);
            putImageSumsRight(std::as_writable_bytes(std::span(image.data(), image.size())));
            if (round == 0) expectRefused(image);
        }
    }
    EXPECT_NO_THROW(HuffmanPathTree::verifyImage(image.span()));
}

}  // namespace
}  // namespace compressedpaths
