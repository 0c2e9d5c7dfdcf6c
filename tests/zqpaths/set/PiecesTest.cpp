#include "zqpaths/set/Pieces.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/PathSets.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SavedPaths.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"
#include "zqpaths/set/TreeStringBytes.hpp"

namespace zqpaths {
namespace {

using compressedpaths::HuffmanPathTree;
using Paths = std::vector<std::string>;
using testing::HasSubstr;
using testing::StartsWith;

class PiecesTest : public testing::Test {
protected:
    /// A new set of these paths, in segments of up to so many.
    PathSet set(const Paths& paths, std::size_t segmentSize = 1'000'000) {
        const std::string file = newFile();
        PathSetWriter(file).commit();
        for (std::size_t first = 0; first < paths.size(); first += segmentSize) {
            PathSetWriter writer(file, PathSetWriter::Mode::kAppend);
            for (std::size_t i = first; i < std::min(first + segmentSize, paths.size()); ++i)
                writer.add(paths[i]);
            writer.commit();
        }
        return PathSet::open(file);
    }

    PathSet imported(const SavedPieces& pieces) {
        const std::string file = newFile();
        PathSetWriter writer(file);
        importPieces(pieces, writer);
        writer.commit();
        return PathSet::open(file);
    }

    /// What importing says of damaged pieces, which adds nothing.
    std::string refusal(const SavedPieces& pieces) {
        PathSetWriter writer(newFile());
        try {
            importPieces(pieces, writer);
        } catch (const Error& error) {
            EXPECT_EQ(error.kind(), ErrorKind::kDamaged) << error.what();
            EXPECT_EQ(writer.size(), 0U);
            return error.what();
        }
        return "nothing";
    }

    std::string newFile() { return tree_.pathOf(std::to_string(fileCount_++) + ".zqp"); }

    test_support::TemporaryTree tree_;
    int fileCount_ = 0;
};

Paths pathsOf(const PathSet& set) {
    return savedPaths(set.file());
}

/// The pieces of a set of the core.
SavedPieces piecesOf(HuffmanPathTree& set) {
    SavedPieces pieces;
    appendTreeString(set.getTreeString(), pieces.treeString);
    set.serialize(pieces.pathTree, true);
    return pieces;
}

void expectSame(const SavedPieces& pieces, const SavedPieces& others) {
    EXPECT_EQ(pieces.treeString, others.treeString);
    EXPECT_EQ(pieces.pathTree, others.pathTree);
}

TEST_F(PiecesTest, giveTheirPathsBack) {
    const Paths paths{"/usr/bin/env", "a", "a/b", "caf\xC3\xA9/\xFF", "a", "//"};
    EXPECT_EQ(pathsOf(imported(exportPieces(set(paths)))), paths);
}

TEST_F(PiecesTest, areThoseOfTheCore) {
    const SavedPieces pieces = exportPieces(set({"usr/bin/env", "usr/lib/a", "usr/lib/b"}));
    HuffmanPathTree core;
    std::vector<std::uint8_t> bytes = pieces.pathTree;
    core.deserialize(bytes, true);
    core.inflateHuffman(treeStringOf(pieces.treeString));
    EXPECT_EQ(core.size(), 3U);
    std::string text;
    core.appendText(2, "/", text);
    EXPECT_EQ(text, "usr/lib/a");
}

TEST_F(PiecesTest, tellHowFarTheyAre) {
    std::vector<std::uint64_t> items(5);
    const auto watch = [&items](WorkStep step, std::uint64_t count) {
        items[static_cast<std::size_t>(step)] += count;
    };
    const Paths paths = randomPaths(20, 1);
    const PathSet made = set(paths, 7);
    EXPECT_EQ(exportPieces(made, watch).pathTree, exportPieces(made).pathTree);
    EXPECT_EQ(items[static_cast<std::size_t>(WorkStep::kReading)], paths.size());
    EXPECT_EQ(items[static_cast<std::size_t>(WorkStep::kCoding)], paths.size());
}

TEST_F(PiecesTest, ofAnEmptySetGiveAnEmptySet) {
    EXPECT_EQ(pathsOf(imported(exportPieces(set({})))), Paths());
}

TEST_F(PiecesTest, areTheSameAfterTheyWereImported) {
    const SavedPieces pieces = exportPieces(set(randomPaths(20'000, 5)));
    expectSame(exportPieces(imported(pieces)), pieces);
}

TEST_F(PiecesTest, areTheSameHoweverManySegmentsThereAre) {
    const Paths paths = randomPaths(3000, 6);
    const PathSet inSegments = set(paths, 500);
    ASSERT_GT(inSegments.segments().size(), 1U);
    expectSame(exportPieces(inSegments), exportPieces(set(paths)));
}

TEST_F(PiecesTest, areImportedIntoASetThatIsThere) {
    const SavedPieces pieces = exportPieces(set({"a/b", "c"}));
    const PathSet there = set({"x"});
    PathSetWriter writer(there.file(), PathSetWriter::Mode::kAppend);
    importPieces(pieces, writer);
    writer.commit();
    EXPECT_EQ(savedPaths(there.file()), (Paths{"x", "a/b", "c"}));
}

TEST_F(PiecesTest, ofHostsAreImported) {
    HuffmanPathTree host;
    compressedpaths::buildSet(host, {{{u"usr/", u"bin"}, {u"env", u"ls"}}, {{u"/"}, {u"x"}}});
    EXPECT_EQ(pathsOf(imported(piecesOf(host))), (Paths{"usr/bin/env", "usr/bin/ls", "/x"}));
}

TEST_F(PiecesTest, areRefusedWithoutCharacters) {
    SavedPieces pieces = exportPieces(set({"a/b"}));
    pieces.treeString.clear();
    EXPECT_EQ(refusal(pieces), "the tree string: is empty");
    pieces.treeStringName = "string.raw";
    EXPECT_EQ(refusal(pieces), "string.raw: is empty");
}

TEST_F(PiecesTest, areRefusedWithHalfACharacter) {
    SavedPieces pieces = exportPieces(set({"a/b"}));
    const std::size_t size = pieces.treeString.size();
    pieces.treeString.push_back(0);
    EXPECT_EQ(refusal(pieces), "the tree string: half a character at byte " + std::to_string(size));
}

TEST_F(PiecesTest, areRefusedWithTooFewCharacters) {
    SavedPieces pieces = exportPieces(set({"abc/def"}));
    pieces.treeString.resize(pieces.treeString.size() - 2);
    EXPECT_THAT(refusal(pieces), StartsWith("the tree string: "));
}

TEST_F(PiecesTest, areRefusedWithMoreCharactersThanTheCodeHas) {
    SavedPieces pieces = exportPieces(set({"abc/def"}));
    pieces.treeString.insert(pieces.treeString.end(), {'z', 0});
    EXPECT_EQ(refusal(pieces), "the tree string: has 1 character too many");
}

TEST_F(PiecesTest, areRefusedWhereACharacterStandsForAnother) {
    // Each name is read through the code: with one character in two places, what is read cannot be
    // written again as it was.
    const SavedPieces whole = exportPieces(set({"abc/def", "abc/fed", "g"}));
    std::size_t refused = 0;
    for (std::size_t from = 0; from < whole.treeString.size(); from += 2) {
        SavedPieces pieces = whole;
        const std::size_t to = (from + 2) % pieces.treeString.size();
        std::copy_n(whole.treeString.begin() + static_cast<std::ptrdiff_t>(from), 2,
                    pieces.treeString.begin() + static_cast<std::ptrdiff_t>(to));
        if (refusal(pieces) != "nothing") ++refused;
    }
    EXPECT_EQ(refused, whole.treeString.size() / 2);
}

TEST_F(PiecesTest, areRefusedWithBitsInANameThatAreNoCharacter) {
    HuffmanPathTree host;
    const std::vector<double> frequencies(4, 1.0);
    host.deflateHuffman(frequencies.data(), u"abcd");  // code words of two bits
    std::vector<compressedpaths::Bytes> folder{host.generateCodeFor(u"a")};
    std::vector<compressedpaths::Bytes> files{host.generateCodeFor(u"bc")};
    files.front().back() = 5;  // one bit more than two characters have
    host.addPathToBTree(folder, files);
    EXPECT_EQ(refusal(piecesOf(host)),
              "the path tree: the name bc is not coded as its characters are");
}

TEST_F(PiecesTest, areRefusedWhereTheTreeIsDamaged) {
    const SavedPieces whole = exportPieces(set(randomPaths(1000, 8)));
    for (std::size_t size = 0; size < whole.pathTree.size(); size += 97) {
        SavedPieces pieces = whole;
        pieces.pathTree.resize(size);
        ASSERT_THAT(refusal(pieces), StartsWith("the path tree: ")) << size;
    }
}

TEST_F(PiecesTest, areRefusedWithPathsThatWereAddedOnTheirOwn) {
    using compressedpaths::TextPath;
    for (const TextPath& path : {TextPath{u"usr/", u"new"}, TextPath{u"usr/", u"env"}}) {
        HuffmanPathTree host;
        compressedpaths::buildSet(host, {{{u"usr/"}, {u"env"}}});
        compressedpaths::addSinglePath(host, path);
        EXPECT_THAT(refusal(piecesOf(host)), HasSubstr("1 paths were added on their own"));
    }
}

TEST_F(PiecesTest, areRefusedWithAPathThatIsNone) {
    HuffmanPathTree host;
    compressedpaths::makeCode(host, std::u16string{0, u'a', u'/'});
    compressedpaths::addBatch(host, {{{u"a/"}, {u"a", std::u16string{u'a', 0}}}});
    EXPECT_EQ(refusal(piecesOf(host)), "the path tree: path 2 is empty or has a NUL");
}

}  // namespace
}  // namespace zqpaths
