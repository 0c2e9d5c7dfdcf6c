#include "compressedpaths/Image.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/compressedpaths/Images.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

/// The text of each number; none of those that have no file.
std::vector<std::string> textsOf(const HuffmanPathTree& set) {
    std::vector<std::string> texts(set.size());
    for (std::size_t number = 1; number <= texts.size(); ++number) {
        try {
            set.appendText(number, "/", texts[number - 1]);
        } catch (const InvalidPathNumberException&) {
        } catch (const InvalidFileNumberException&) {
        }
    }
    return texts;
}

void expectSame(HuffmanPathTree& set, HuffmanPathTree& other) {
    ASSERT_EQ(other.size(), set.size());
    EXPECT_EQ(textsOf(other), textsOf(set));
    EXPECT_EQ(walkedPaths(other), walkedPaths(set));
    EXPECT_EQ(savedForm(other), savedForm(set));
    EXPECT_EQ(other.getTreeString(), set.getTreeString());
    EXPECT_EQ(other.getFrequencies(), set.getFrequencies());
}

TEST(Image, opensAsTheSetThatWasWritten) {
    HuffmanPathTree set;
    buildSample(set);
    const ImageBytes image(set);
    HuffmanPathTree::verifyImage(image.span());
    const auto opened = image.open();
    expectSame(set, *opened);
    EXPECT_EQ(HuffmanPathTreePeer::pathTracks(*opened), HuffmanPathTreePeer::pathTracks(set));
    EXPECT_EQ(opened->generateCodeFor(u"zebra"), set.generateCodeFor(u"zebra"));
}

TEST(Image, opensAsASetOfNothing) {
    for (const bool hasCode : {false, true}) {
        HuffmanPathTree set;
        if (hasCode) makeCode(set);
        const ImageBytes image(set);
        HuffmanPathTree::verifyImage(image.span());
        const auto opened = image.open();
        expectSame(set, *opened);
        if (hasCode) {
            addBatch(*opened, kMore);
            EXPECT_EQ(pathsByNumber(*opened, opened->size()), pathsOf(kMore));
        }
    }
}

// A saved form tells by totals alone where in the root the files of an entry without folder begin,
// and paths that were added singly count among them.
TEST(Image, holdsPlacesThatTotalsPutPastTheChildrenOfTheRoot) {
    HuffmanPathTree set;
    buildSet(set, {{{}, {u"a"}}});
    for (const char16_t* name : {u"x", u"y", u"z"}) addSinglePath(set, {u"s", name});
    addBatch(set, {{{}, {u"b"}}, {{}, {u"c"}}});
    HuffmanPathTree loaded;
    reload(set, loaded);

    const ImageBytes image(loaded);
    EXPECT_NO_THROW(HuffmanPathTree::verifyImage(image.span()));
    const auto opened = image.open();
    EXPECT_EQ(savedForm(*opened), savedForm(loaded));
}

TEST(Image, opensWithTheTablesThatManyPathsHave) {
    HuffmanPathTree set;
    buildManyPaths(set);
    ASSERT_GT(set.size(), image::kMinPathsWithTables);
    const ImageBytes image(set);
    HuffmanPathTree::verifyImage(image.span());
    EXPECT_GT(image.header()[image::Part::kSteps].byteSize, 0U);
    const auto opened = image.open();
    EXPECT_EQ(textsOf(*opened), textsOf(set));
    EXPECT_EQ(savedForm(*opened), savedForm(set));
    addBatch(*opened, kMore);
    addBatch(set, kMore);
    EXPECT_EQ(savedForm(*opened), savedForm(set));
    EXPECT_EQ(opened->numberOf(*opened->folderOf({u"dir", u"699"}), u"filex"), 69'902U);
}

TEST(Image, isAddedToAsTheSetThatWasWritten) {
    HuffmanPathTree set;
    buildSample(set);
    const ImageBytes image(set);
    const std::string before = image.text();
    const auto opened = image.open();
    for (HuffmanPathTree* const added : {&set, opened.get()}) {
        addBatch(*added, kMore);
        addSinglePath(*added, {u"a", u"c", u"new"});
    }
    expectSame(set, *opened);
    EXPECT_EQ(image.text(), before);
    const ImageBytes second(*opened);
    HuffmanPathTree::verifyImage(second.span());
    expectSame(set, *second.open());
}

// The first of two children of one name was a file when the second was a folder already, so that
// its id is the higher one.
TEST(Image, isAddedToAsTheSetThatWasWrittenWhereChildrenHaveOneName) {
    HuffmanPathTree set;
    makeCode(set);
    Bytes structure{2, 1, 0};  // a; a, in which is b
    std::vector<Bytes> keys{set.generateCodeFor(u"a"), set.generateCodeFor(u"a"),
                            set.generateCodeFor(u"b")};
    set.deserializePathTree(structure, keys);
    addBatch(set, {{{u"a"}, {u"c"}}});
    const ImageBytes image(set);
    HuffmanPathTree::verifyImage(image.span());
    const auto opened = image.open();
    for (HuffmanPathTree* const added : {&set, opened.get()}) addBatch(*added, {{{u"a"}, {u"d"}}});
    EXPECT_EQ(walkedPaths(*opened), (TextPaths{{u"a", u"c"}, {u"a", u"d"}, {u"a", u"b"}}));
    EXPECT_EQ(savedForm(*opened), savedForm(set));
}

TEST(Image, lendsItsBytesToCopiesOfTheSetToo) {
    HuffmanPathTree set;
    buildSample(set);
    const ImageBytes image(set);
    HuffmanPathTree copy;
    {
        const auto opened = image.open();
        copy.copyTree(*opened);
    }
    expectSame(set, copy);
    EXPECT_EQ(copy.generateCodeFor(u"zebra"), set.generateCodeFor(u"zebra"));
    addBatch(copy, kMore);
    addBatch(set, kMore);
    expectSame(set, copy);
}

TEST(Image, isTheSameBytesEachTimeItIsWritten) {
    HuffmanPathTree set;
    buildSample(set);
    const ImageBytes image(set);
    EXPECT_EQ(ImageBytes(set).text(), image.text());
    EXPECT_EQ(ImageBytes(*image.open()).text(), image.text());
    HuffmanPathTree same;
    buildSample(same);
    EXPECT_EQ(ImageBytes(same).text(), image.text());
}

TEST(Image, isRefusedWhereItIsNone) {
    HuffmanPathTree set;
    buildSample(set);
    const ImageBytes image(set);
    EXPECT_THROW(HuffmanPathTree::openImage({}), InvalidImageException);
    EXPECT_THROW(HuffmanPathTree::openImage(image.span().subspan(4)), InvalidImageException);
    const ImageBytes shifted(std::string(4, '\0') + image.text());
    EXPECT_THROW(HuffmanPathTree::openImage(shifted.span().subspan(4)), InvalidImageException);
    for (const std::size_t offset : {0U, 7U, 8U, 12U}) {  // magic, version, number of parts
        ImageBytes other(image.text());
        ++other.data()[offset];
        EXPECT_THROW(other.open(), InvalidImageException) << offset;
    }
}

TEST(Image, isRefusedWhereverItIsCut) {
    HuffmanPathTree set;
    buildSample(set);
    const ImageBytes image(set);
    for (std::size_t size = 0; size < image.size(); size += 64)
        EXPECT_THROW(HuffmanPathTree::openImage(image.span().first(size)), InvalidImageException)
            << size;
    EXPECT_THROW(HuffmanPathTree::openImage(image.span().first(image.size() - 1)),
                 InvalidImageException);
}

/// A set whose image has so many bytes before its sums; one name is as long as that takes.
std::unique_ptr<HuffmanPathTree> setWithSummedBytes(std::uint64_t wanted) {
    const auto setWith = [](std::size_t nameLength) {
        auto set = std::make_unique<HuffmanPathTree>();
        makeCode(*set, u"ab");  // one bit a character
        addBatch(*set, {{{}, {std::u16string(nameLength, u'a')}}});
        return set;
    };
    const std::size_t length = 8 * wanted / 2;
    const std::uint64_t size = ImageBytes(*setWith(length)).header()[image::Part::kSums].offset;
    return setWith(length + 8 * (wanted - size));
}

TEST(Image, hasASumForEachMebibyteThatIsBegun) {
    for (const std::uint64_t more : {0U, 64U}) {
        const ImageBytes image(*setWithSummedBytes(image::kSummedSize + more));
        const image::Extent sums = image.header()[image::Part::kSums];
        EXPECT_EQ(sums.offset, image::kSummedSize + more);
        EXPECT_EQ(sums.byteSize, more == 0 ? 8U : 16U);
        EXPECT_NO_THROW(HuffmanPathTree::verifyImage(image.span()));
        EXPECT_EQ(image.open()->size(), 1U);
    }
}

TEST(Image, mayStandBeforeOtherBytes) {
    HuffmanPathTree set;
    buildSample(set);
    const ImageBytes image(ImageBytes(set).text() + "something else");
    HuffmanPathTree::verifyImage(image.span());
    expectSame(set, *image.open());
}

/// A stream buffer that has room for some bytes.
class FullStream : public std::streambuf {
public:
    explicit FullStream(std::size_t room) : room_(room) {}

protected:
    std::streamsize xsputn(const char*, std::streamsize size) override {
        const std::size_t taken = std::min(room_, static_cast<std::size_t>(size));
        room_ -= taken;
        return static_cast<std::streamsize>(taken);
    }
    int_type overflow(int_type) override { return traits_type::eof(); }

private:
    std::size_t room_;
};

TEST(Image, isNotWrittenToAStreamThatFails) {
    HuffmanPathTree set;
    buildSample(set);
    const std::size_t size = ImageBytes(set).size();
    for (const std::size_t room : {std::size_t{0}, size / 2, size - 1}) {
        FullStream buffer(room);
        std::ostream out(&buffer);
        EXPECT_THROW(set.writeImage(out), ImageNotWrittenException) << room;
    }
    FullStream buffer(size);
    std::ostream out(&buffer);
    EXPECT_NO_THROW(set.writeImage(out));
}

/// A stream buffer that takes everything, but cannot pass it on.
class StuckStream : public std::streambuf {
protected:
    std::streamsize xsputn(const char*, std::streamsize size) override { return size; }
    int sync() override { return -1; }
};

TEST(Image, isNotWrittenToAStreamThatCannotPassItOn) {
    HuffmanPathTree set;
    buildSample(set);
    StuckStream buffer;
    std::ostream out(&buffer);
    EXPECT_THROW(set.writeImage(out), ImageNotWrittenException);
}

}  // namespace
}  // namespace compressedpaths
