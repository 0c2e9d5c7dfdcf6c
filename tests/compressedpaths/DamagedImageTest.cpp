// Images with a byte changed: each is refused when it is verified, and whatever is asked of it
// without that is answered or refused.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/compressedpaths/Images.hpp"

namespace compressedpaths {
namespace {

/// Says whether `use` answered. Anything but an exception of the library's or the language's own
/// ends the test.
template <class Use>
bool answers(Use use) {
    try {
        use();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

int answersOfReading(HuffmanPathTree& set) {
    // What the header says may be anything.
    const std::size_t few = std::min<std::size_t>(set.size(), 100);
    std::string text;
    std::u16string units;
    for (std::size_t number = 1; number <= few; ++number) {
        answers([&] { set.appendText(number, "/", text); });
        answers([&] { set.appendText(number, u"/", units); });
        answers([&] { pathsNumbered(set, {static_cast<double>(number)}); });
    }
    for (std::uint32_t id = 0; id < 20; ++id) {
        const HuffmanPathTree::FolderId folder{id};
        answers([&] { set.foldersIn(folder); });
        answers([&] { set.entriesOf(folder); });
        answers([&] { set.nameOf(folder); });
        answers([&] { set.numberOf(folder, u"of-one-name"); });
        answers([&] { set.foldersNamed(folder, u"a", u'/'); });
        answers([&] { set.numbersNamed(folder, u"of-one-name", u'/'); });
    }
    int count = 0;
    for (const Names& folder : {Names{u"a", u"c"}, Names{u"many"}})
        count += answers([&] { set.folderOf(folder); });
    count +=
        answers([&] { set.forEachText(1, set.size(), "/", [](std::size_t, std::string_view) {}); });
    std::vector<std::size_t> numbers;
    for (std::size_t number = few; number > 0; --number) numbers.push_back(number);
    answers([&] { set.forEachText(numbers, "/", [](std::size_t, std::string_view) {}); });
    for (const char16_t* const part : {u"", u"d", u"one-name"})
        count += answers([&] { set.forEachNameWith(part, {1, set.size()}, [](std::size_t) {}); });
    count += answers([&] {
        set.forEachEntry({1, set.size()},
                         [](HuffmanPathTree::FolderId, HuffmanPathTree::NumberRange) {});
    });
    count += answers([&] { set.foldersNamedWith(u"any"); });
    count += answers([&] { walkedPaths(set); });
    count += answers([&] {
        for (set.resetPathsToBTree(); set.hasNextPathFromBTree();)
            set.getNextTextFromBTree("/", text);
    });
    count += answers([&] { savedForm(set); });
    count += answers([&] {
        set.generateCodeFor(u"zebra");
        set.traverse([](HuffmanPathTree*, HuffmanPathTree::HNode&) {});
    });
    return count;
}

int answersOfAdding(HuffmanPathTree& set) {
    int count = 0;
    count += answers([&] { addBatch(set, kMore); });
    count += answers([&] { addSinglePath(set, {u"a", u"c", u"d"}); });
    count += answers([&] { walkedPaths(set); });
    count += answers([&] { savedForm(set); });
    count += answers([&] { set.forEachNameWith(u"one-name", {1, 5}, [](std::size_t) {}); });
    count += answers([&] { set.entriesOf(HuffmanPathTree::FolderId{1}); });
    count += answers([&] { ImageBytes written(set); });
    return count;
}

/// Reads all there is in a damaged image, then copies and changes it. What comes by one question
/// alone is asked alone, since another may refuse first. Returns how many answered.
int answersOf(const ImageBytes& image) {
    int count = 0;
    count += answers([&] { count += answersOfReading(*image.open()); });
    count += answers([&] {
        HuffmanPathTree copy;
        copy.copyTree(*image.open());
        walkedPaths(copy);
    });
    count += answers([&] {
        const auto set = image.open();
        count += answersOfAdding(*set);
    });
    return count;
}

constexpr int kQuestions = 12 + 7 + 3;

void expectDamageIsFound(const ImageBytes& image, std::size_t begin, std::size_t end) {
    for (std::size_t position = begin; position < end; ++position) {
        const auto whole = static_cast<unsigned char>(image.data()[position]);
        for (const unsigned value : {0x00U, 0xFFU, whole ^ 1U << position % 8}) {
            if (value == whole) continue;
            ImageBytes damaged(image.text());
            damaged.data()[position] = static_cast<char>(value);
            SCOPED_TRACE("byte " + std::to_string(position) + " is " + std::to_string(value));
            EXPECT_THROW(HuffmanPathTree::verifyImage(damaged.span()), InvalidImageException);
            EXPECT_LE(answersOf(damaged), kQuestions);
        }
    }
}

TEST(DamagedImage, answersAllQuestionsIfItIsNot) {
    HuffmanPathTree set;
    buildSample(set);
    EXPECT_EQ(answersOf(ImageBytes(set)), kQuestions);
}

TEST(DamagedImage, isRefusedOrAnswersWithAnyByteOfItsHeaderChanged) {
    HuffmanPathTree set;
    buildSample(set);
    const ImageBytes image(set);
    expectDamageIsFound(image, 0, sizeof(image::Header));
}

TEST(DamagedImage, isRefusedOrAnswersWithAnyByteOfItsArraysChanged) {
    HuffmanPathTree set;
    buildSample(set);
    const ImageBytes image(set);
    expectDamageIsFound(image, sizeof(image::Header), image.size());
}

// Totals without a place, and places without a total, as a loaded set can have them.
TEST(DamagedImage, isRefusedOrAnswersWithAnyByteOfItsHalvesChanged) {
    for (const bool hasPlaces : {false, true}) {
        SCOPED_TRACE(hasPlaces);
        HuffmanPathTree set;
        buildSet(set, {{{u"a"}, {u"b", u"c"}}, {{u"a"}, {u"d"}}});
        const Bytes whole = savedForm(set);
        // The folder section at the end: totals, then tracks, one of either less.
        constexpr std::ptrdiff_t kSection = 3 + 3 + 8 + 2 + 2 + 3;
        Bytes saved(whole.begin(), whole.end() - kSection);
        const Bytes places{1, 0, 0, 1, 2, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 2, 0, 2};
        const Bytes totals{1, 0, 0, 2, 2, 3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0};
        const Bytes& section = hasPlaces ? places : totals;
        saved.insert(saved.end(), section.begin(), section.end());
        HuffmanPathTree loaded;
        loadForm(loaded, saved, set.getTreeString());
        const ImageBytes image(loaded);
        HuffmanPathTree::verifyImage(image.span());
        EXPECT_EQ(savedForm(*image.open()), savedForm(loaded));
        const auto header = image.header();
        EXPECT_NE(header[image::Part::kUnpairedPlaces].byteSize, hasPlaces ? 0U : 1U);
        expectDamageIsFound(image, header[image::Part::kUnpairedCounts].offset,
                            header[image::Part::kRepeatedPaths].offset);
    }
}

// So many children that they are found by a table.
TEST(DamagedImage, isRefusedOrAnswersWithAnyByteOfAWideFolderChanged) {
    HuffmanPathTree set;
    TextEntry wide{{u"top"}, Names(64, u"n")};
    wide.files.emplace_back(u"c");
    buildSet(set, {{{}, {u"of-one-name"}}, wide, {{u"top", u"a"}, {u"d"}}, {{u"top"}, {u"new"}}});
    const ImageBytes image(set);
    const auto header = image.header();
    expectDamageIsFound(image, header[image::Part::kNames].offset,
                        header[image::Part::kEntryBytes].offset);
}

TEST(DamagedImage, isRefusedOrAnswersWithTablesThatAreNotThoseOfTheCode) {
    HuffmanPathTree set;
    buildManyPaths(set);
    ImageBytes image(set);
    const auto header = image.header();
    const std::size_t begin = header[image::Part::kPagesOfWords].offset;
    const std::size_t end = header[image::Part::kFoldersByName].offset;
    std::mt19937 random(23);
    int answered = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::size_t position = begin + random() % (end - begin);
        const char whole = image.data()[position];
        image.data()[position] = round % 2 == 0 ? '\xFF' : static_cast<char>(random());
        const auto opened = image.open();
        answered += answers([&] {
            opened->forEachText(1, 40, "/", [](std::size_t, std::string_view) {});
            std::u16string units;
            opened->appendText(69'000, u"/", units);
        });
        answered += answers([&] { opened->folderOf({u"dir", u"0123456789"}); });
        answered += answers([&] { opened->forEachNameWith(u"xx", {1, 40}, [](std::size_t) {}); });
        answered += answers([&] { addBatch(*opened, kMore); });
        if (round % 300 == 0 && image.data()[position] != whole) {
            EXPECT_THROW(HuffmanPathTree::verifyImage(image.span()), InvalidImageException);
        }
        image.data()[position] = whole;
    }
    EXPECT_GT(answered, 0);
    HuffmanPathTree::verifyImage(image.span());
}

// A length that leads past the end of the names, where little may be read once they are copied.
TEST(DamagedImage, isNotReadPastTheEndOfItsNames) {
    HuffmanPathTree set;
    makeCode(set);
    addBatch(set, {{{u"a"}, {u"first-name", u"second-name"}}});
    ImageBytes image(set);
    const image::Extent names = image.header()[image::Part::kNames];
    const std::size_t last = set.generateCodeFor(u"second-name").size();
    std::size_t head = names.offset + names.byteSize - last;
    while (image.data()[head] !=
           static_cast<char>((last - 2) * 8 + set.generateCodeFor(u"second-name").back()))
        ++head;
    image.data()[head] = static_cast<char>(247);
    const auto opened = image.open();
    addSinglePath(*opened, {u"a", u"first-name"});  // was there; the names are copied
    EXPECT_THROW(opened->forEachNameWith(u"other-names", {1, 2}, [](std::size_t) {}),
                 InvalidImageException);
}

TEST(DamagedImage, hasTheRootInTheRootWhateverItsRecordHolds) {
    HuffmanPathTree set;
    buildSample(set);
    ImageBytes image(set);
    std::memset(image.data() + image.header()[image::Part::kFolders].offset, 0x7F, 4);
    const HuffmanPathTree::FolderId root{0};
    EXPECT_EQ(image.open()->parentOf(root), root);
}

TEST(DamagedImage, isRefusedWhereItsFirstEntryBeginsPastThePathsAskedFor) {
    HuffmanPathTree set;
    buildSample(set);
    ImageBytes image(set);
    const std::uint64_t pathsBefore = set.size();
    std::memcpy(image.data() + image.header()[image::Part::kEntryBlocks].offset, &pathsBefore,
                sizeof pathsBefore);
    const auto opened = image.open();
    std::string text;
    EXPECT_THROW(opened->appendText(1, "/", text), InvalidImageException);
    const auto ignore = [](std::size_t, std::string_view) {};
    EXPECT_THROW(opened->forEachText(1, 2, "/", ignore), InvalidImageException);
    const std::vector<std::size_t> numbers{1};
    EXPECT_THROW(opened->forEachText(numbers, "/", ignore), InvalidImageException);
}

// Who makes an image chooses the seed of its table, and so the slots where keys collide.
TEST(DamagedImage, hasItsFormerFilesFoundInACrowdedTable) {
    HuffmanPathTree set;
    makeCode(set);
    TextEntries entries{{{u"top"}, {}}};
    for (int i = 0; i < 600; ++i) {
        const std::string digits = std::to_string(i);
        entries.front().files.emplace_back(digits.begin(), digits.end());
        if (i % 2 == 0) entries.push_back({{u"top", entries.front().files.back()}, {u"in"}});
    }
    addBatch(set, entries);
    const TextPaths paths = walkedPaths(set);
    ImageBytes image(set);
    // Another seed leads anywhere, and no free slot ends the search there.
    image::Header header = image.header();
    ++header.seed;
    std::memcpy(image.data(), &header, sizeof header);
    const image::Extent table = header[image::Part::kFormerFiles];
    const std::uint32_t top = 1;
    std::size_t filled = 0;
    for (std::size_t at = table.offset; at < table.offset + table.byteSize; at += sizeof top) {
        if (std::memcmp(image.data() + at, "\xFF\xFF\xFF\xFF", sizeof top) != 0) continue;
        std::memcpy(image.data() + at, &top, sizeof top);
        ++filled;
    }
    ASSERT_GT(filled, 100U);
    const auto opened = image.open();
    EXPECT_EQ(walkedPaths(*opened), paths);
    EXPECT_EQ(pathsByNumber(*opened, opened->size()), pathsByNumber(set, set.size()));
}

TEST(DamagedImage, isRefusedWhereNamesOfFoldersAreOne) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"f"}}, {{u"a", u"b"}, {u"f"}}});
    ImageBytes image(set);
    const std::uint64_t folders = image.header()[image::Part::kFolders].offset;
    // The second field of a record: the name of the folder inside is that of the one around it.
    std::memcpy(image.data() + folders + 2 * 16 + 4, image.data() + folders + 16 + 4, 4);
    const auto opened = image.open();
    std::string text;
    opened->appendText(1, "/", text);
    EXPECT_EQ(text, "af");
    EXPECT_THROW(opened->appendText(2, "/", text), InvalidImageException);
    EXPECT_THROW(opened->foldersNamedWith(u"a"), InvalidImageException);
    EXPECT_THROW(opened->requireOwnNames(), InvalidImageException);
}

}  // namespace
}  // namespace compressedpaths
