#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/SavedBodies.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

using sixpacks::InvalidUintConversionException;
using sixpacks::PrematureEndException;
using testing::ThrowsMessage;

const std::vector<bool> kShape{false, true, true};  // of the characters x and y
const TextEntries kSavedEntries{
    {{u"a"}, {u"b", u"c"}}, {{u"a"}, {u"d"}}, {{u"e", u"f"}, {u"g"}}, {{u"a"}, {}}};

SavedBody twoFilesInAFolder() {
    SavedBody body;
    body.shape(kShape).trie({1, 2, 0}, {x(), x(), y()});
    return body;
}

void expectRefused(const SavedBody& body, const auto& thrown) {
    for (const bool compress : {false, true}) {
        EXPECT_THAT(
            [&] {
                HuffmanPathTree set;
                Bytes bytes = body.form(compress);
                set.deserialize(bytes, compress);
            },
            thrown);
    }
}

TEST(SerializedPathSet, writesTheBytesOfTheForm) {
    HuffmanPathTree set;
    const std::vector<double> frequencies{1, 1};
    set.deflateHuffman(frequencies.data(), u"xy");
    addBatch(set, {{{u"x"}, {u"x"}}, {{u"x"}, {u"y"}}});
    SavedBody expected = twoFilesInAFolder();
    expected.folders({1, 2}, {{0}, {0, 1}});
    EXPECT_EQ(savedForm(set), expected.form());
}

TEST(SerializedPathSet, hasAFolderSectionAloneForFolderEntries) {
    HuffmanPathTree set;
    buildSet(set, kSavedEntries);
    HuffmanPathTree loaded;
    reload(set, loaded);
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(loaded), 4U);
    EXPECT_EQ(HuffmanPathTreePeer::partitionEnds(loaded), (std::vector<std::size_t>{2, 3, 4, 4}));
    EXPECT_EQ(HuffmanPathTreePeer::folderTracks(loaded), HuffmanPathTreePeer::folderTracks(set));
    EXPECT_TRUE(HuffmanPathTreePeer::pathTracks(loaded).empty());
    EXPECT_EQ(pathsByNumber(loaded, 4), pathsOf(kSavedEntries));
    EXPECT_EQ(walkedPaths(loaded), walkedPaths(set));
}

TEST(SerializedPathSet, endsAfterTheKeysWithoutIndexData) {
    HuffmanPathTree set;
    const std::vector<double> frequencies{1, 1};
    set.deflateHuffman(frequencies.data(), u"xy");
    addSinglePath(set, {u"x", u"x"});
    addSinglePath(set, {u"x", u"y"});
    EXPECT_EQ(savedForm(set), twoFilesInAFolder().form());
    HuffmanPathTree loaded;
    reload(set, loaded);
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(loaded), 2U);
    EXPECT_EQ(walkedPaths(loaded), (TextPaths{{u"x", u"x"}, {u"x", u"y"}}));
}

TEST(SerializedPathSet, hasATrackSectionForPathsAddedAgain) {
    HuffmanPathTree set;
    makeCode(set);
    for (const TextPath& added : {TextPath{u"a", u"b"}, TextPath{u"a", u"b"}, TextPath{u"c"}})
        addSinglePath(set, added);
    HuffmanPathTree loaded;
    reload(set, loaded);
    EXPECT_EQ(HuffmanPathTreePeer::pathTracks(loaded), HuffmanPathTreePeer::pathTracks(set));
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(loaded), 3U);
    EXPECT_EQ(HuffmanPathTreePeer::maxTrackKey(loaded), 2U);
    EXPECT_EQ(HuffmanPathTreePeer::maxTrackLength(loaded), 2U);
    EXPECT_EQ(walkedPaths(loaded), walkedPaths(set));
}

TEST(SerializedPathSet, addsDuplicatesToTheLastTotal) {
    HuffmanPathTree set;
    SavedBody body = twoFilesInAFolder();
    body.folders({2}, {{0}}).tracks().byte(2).sized({0, 1}).byte(4).sized({0, 0});
    loadForm(set, body.form(), u"xy");
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 4U);
    EXPECT_TRUE(set.hasDuplicate(2));
    EXPECT_TRUE(set.hasDuplicate(4));
}

TEST(SerializedPathSet, keepsTheLaterOfTwoTracksWithOneNumber) {
    HuffmanPathTree set;
    SavedBody body = twoFilesInAFolder();
    body.tracks().byte(2).sized({0, 1}).byte(2).sized({0, 0});
    loadForm(set, body.form(), u"xy");
    EXPECT_EQ(HuffmanPathTreePeer::pathTracks(set).at(2), (Track{0, 0}));
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 3U);
}

TEST(SerializedPathSet, isTheSameBodyCompressedOrNot) {
    HuffmanPathTree set;
    buildSet(set, kSavedEntries);
    const Bytes plain = savedForm(set, false);
    Bytes compressed = savedForm(set, true);
    const Bytes length(plain.begin(), plain.begin() + 8);
    EXPECT_EQ(Bytes(compressed.begin(), compressed.begin() + 8), length);
    EXPECT_EQ(
        sixpacks::decompressUint8(compressed.begin() + 8, compressed.size() - 8, plain.size() - 8),
        Bytes(plain.begin() + 8, plain.end()));
}

TEST(SerializedPathSet, ignoresWhatFollowsAnUnknownSection) {
    for (unsigned section = 2; section < 256; ++section) {
        HuffmanPathTree set;
        SavedBody body = twoFilesInAFolder();
        loadForm(set, body.byte(section).bytes({0, 0, 0, 1, 9, 9}).form(), u"xy");
        EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 2U);
        EXPECT_TRUE(HuffmanPathTreePeer::pathTracks(set).empty());
    }
    HuffmanPathTree set;
    SavedBody body = twoFilesInAFolder();
    loadForm(set, body.folders({2}, {{0}}).byte(1).byte(77).form(), u"xy");
    EXPECT_EQ(pathsByNumber(set, 2), (TextPaths{{u"x", u"x"}, {u"x", u"y"}}));
}

TEST(SerializedPathSet, isAppendedToWhatIsThere) {
    HuffmanPathTree set;
    buildSet(set, kSavedEntries);
    for (const bool compress : {false, true}) {
        Bytes bytes{1, 2, 3};
        set.serialize(bytes, compress);
        Bytes expected{1, 2, 3};
        const Bytes form = savedForm(set, compress);
        expected.insert(expected.end(), form.begin(), form.end());
        EXPECT_EQ(bytes, expected);
    }
}

TEST(SerializedPathSet, ofAnEmptySetLoadsAsAnEmptySet) {
    for (const bool compress : {false, true}) {
        HuffmanPathTree set;
        HuffmanPathTree loaded;
        reload(set, loaded, compress);
        EXPECT_EQ(HuffmanPathTreePeer::pathCount(loaded), 0U);
        EXPECT_TRUE(loaded.getBoolTree().empty());
        loaded.resetPathsToBTree();
        EXPECT_FALSE(loaded.hasNextPathFromBTree());
        EXPECT_EQ(savedForm(loaded), savedForm(set));
    }
}

TEST(SerializedPathSet, holdsNeitherCharactersNorFrequencies) {
    HuffmanPathTree set;
    buildSet(set, kSavedEntries);
    HuffmanPathTree loaded;
    Bytes bytes = savedForm(set);
    loaded.deserialize(bytes, false);
    EXPECT_EQ(loaded.getTreeString(), u"");
    EXPECT_TRUE(loaded.getFrequencies().empty());
    EXPECT_EQ(loaded.getBoolTree(), set.getBoolTree());
}

TEST(SerializedPathSet, countsItsMaximaAnew) {
    HuffmanPathTree set;
    buildSet(set, kSavedEntries);
    const std::size_t longestInAPath = HuffmanPathTreePeer::maxCodeBytes(set);
    set.generateCodeFor(std::u16string(1000, u'a'));  // coded, but in no path
    HuffmanPathTree loaded;
    reload(set, loaded);
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(loaded), longestInAPath);
    EXPECT_EQ(HuffmanPathTreePeer::maxFolderDepth(loaded), 2U);
}

// The counter of the depth holds only folders that were met again.
TEST(SerializedPathSet, doesNotCutTheTrackOfADeepFolderMetOnce) {
    for (const std::size_t depth : {255U, 256U, 300U, 70'000U}) {
        const TextEntries entries{{Names(depth, u"a"), {u"b"}}};
        HuffmanPathTree set;
        buildSet(set, entries);
        HuffmanPathTree loaded;
        reload(set, loaded);
        EXPECT_EQ(HuffmanPathTreePeer::folderTracks(loaded)[0].size(), depth);
        EXPECT_EQ(pathsByNumber(loaded, 1), pathsOf(entries));
    }
}

TEST(SerializedPathSet, doesNotCutNamesThatWereAddedThroughACopy) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b"}}});
    HuffmanPathTree copy;
    copy.copyTree(set);
    const std::u16string longName(1000, u'a');
    TextEntry many{{u"a"}, {longName}};
    for (int file = 0; file < 300; ++file) many.files.emplace_back(u"f");
    addBatch(copy, {many});
    EXPECT_LT(HuffmanPathTreePeer::maxCodeBytes(set), 256U);

    HuffmanPathTree loaded;
    reload(set, loaded);
    EXPECT_EQ(walkedPaths(loaded), walkedPaths(copy));
    EXPECT_EQ(pathsByNumber(loaded, 1), (TextPaths{{u"a", u"b"}}));
}

TEST(SerializedPathSet, doesNotCutKeysThatAnotherObjectCoded) {
    HuffmanPathTree coder;
    makeCode(coder);
    HuffmanPathTree set;
    makeCode(set);
    const std::u16string longName(1000, u'a');
    std::vector<Bytes> folder{coder.generateCodeFor(u"d")};
    std::vector<Bytes> files{coder.generateCodeFor(longName)};
    set.addPathToBTree(folder, files);
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(set), 0U);
    HuffmanPathTree loaded;
    reload(set, loaded);
    EXPECT_EQ(pathsByNumber(loaded, 1), (TextPaths{{u"d", longName}}));
}

TEST(SerializedPathSet, takesWiderIntegersOnlyWhereDataOrCountersNeedThem) {
    TextEntry entry{{u"a"}, {}};
    for (int file = 0; file < 256; ++file) entry.files.emplace_back(u"f");
    HuffmanPathTree set;
    buildSet(set, {entry, {{u"a"}, {u"g"}}});
    HuffmanPathTree loaded;
    reload(set, loaded);
    EXPECT_EQ(pathsNumbered(loaded, {257}), (TextPaths{{u"a", u"g"}}));
    EXPECT_EQ(HuffmanPathTreePeer::folderTracks(loaded)[1], (Track{0, 256}));
}

TEST(SerializedPathSet, refusesAnUnknownWidthAnywhere) {
    const auto refused =
        ThrowsMessage<InvalidUintConversionException>("Invalid uint type conversion.");
    SavedBody keys;
    keys.shape(kShape).count8(1).byte(0).count8(1).byte(4).sized(x());
    expectRefused(keys, refused);

    for (std::size_t place = 0; place < 2; ++place) {
        SavedBody totals = twoFilesInAFolder();
        totals.byte(1).byte(place == 0 ? 4 : 0).byte(place == 1 ? 4 : 0).sized({2});
        expectRefused(totals, refused);
        SavedBody tracks = twoFilesInAFolder();
        tracks.byte(1).byte(0).byte(0).sized({2}).count8(1);
        tracks.byte(place == 0 ? 255 : 0).byte(place == 1 ? 255 : 0).sized({0});
        expectRefused(tracks, refused);
    }
    for (std::size_t place = 0; place < 3; ++place) {
        SavedBody body = twoFilesInAFolder();
        body.byte(0);
        for (std::size_t tag = 0; tag < 3; ++tag) body.byte(tag == place ? 4 : 0);
        expectRefused(body.byte(2).sized({0, 1}), refused);
    }
}

TEST(SerializedPathSet, refusesToEndEarlyAtEveryLength) {
    SavedBody body = twoFilesInAFolder();
    body.folders({2}, {{0}}).tracks().byte(2).sized({0, 1});
    const Bytes whole = body.form();
    const std::size_t endOfTrie = twoFilesInAFolder().form().size();
    const std::size_t endOfFolders = twoFilesInAFolder().folders({2}, {{0}}).form().size();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Bytes bytes(whole.begin(), whole.begin() + std::ptrdiff_t(length));
        HuffmanPathTree set;
        // After the trie, the folders and the widths of the tracks the form may end.
        const bool mayEnd =
            length == endOfTrie || length == endOfFolders || length == endOfFolders + 4;
        if (mayEnd) {
            EXPECT_NO_THROW(set.deserialize(bytes, false)) << length;
        } else {
            EXPECT_THAT([&] { set.deserialize(bytes, false); },
                        ThrowsMessage<PrematureEndException>("The serialized bytes end too early."))
                << length;
        }
    }
}

TEST(SerializedPathSet, refusesCountsBeyondTheBytesThatAreLeft) {
    const auto refused =
        ThrowsMessage<PrematureEndException>("The serialized bytes end too early.");
    constexpr std::uint64_t kHuge = 0xFFFF'FFFF'FFFF'FFFF;
    for (const std::uint64_t count :
         {std::uint64_t{1000}, std::uint64_t{1} << 32, std::uint64_t{1} << 63, kHuge}) {
        SavedBody shape;
        expectRefused(shape.count8(count).bytes({1, 1}), refused);
        SavedBody structure;
        expectRefused(structure.shape(kShape).count8(count).bytes({1, 0}), refused);
        SavedBody keys;
        expectRefused(keys.shape(kShape).count8(1).byte(0).count8(count).byte(0), refused);
        SavedBody tracks = twoFilesInAFolder();
        expectRefused(tracks.byte(1).byte(0).byte(0).sized({2}).count8(count).byte(0).byte(0),
                      refused);
    }
}

TEST(SerializedPathSet, refusesALengthThatItsStreamCannotReach) {
    HuffmanPathTree set;
    buildSet(set, kSavedEntries);
    const Bytes form = savedForm(set, true);
    const std::uint64_t streamSize = form.size() - 8;
    for (const std::uint64_t length :
         {(streamSize + 1) * sixpacks::kMaxExpansion, std::uint64_t{1} << 40,
          std::uint64_t{0xFFFF'FFFF'FFFF'FFFF}}) {
        SavedBody damaged;
        damaged.count8(length).bytes(Bytes(form.begin() + 8, form.end()));
        const Bytes counted = damaged.form();
        Bytes bytes(counted.begin() + 8, counted.end());
        HuffmanPathTree loaded;
        EXPECT_THAT([&] { loaded.deserialize(bytes, true); },
                    ThrowsMessage<ImplausibleLengthException>(
                        "The stated length is larger than the compressed bytes can hold."));
    }
}

TEST(SerializedPathSet, losesNoPathInSilenceWhenItsEndIsCutOff) {
    HuffmanPathTree set;
    buildSet(set, kSavedEntries);
    const Bytes form = savedForm(set, true);
    for (std::size_t length = 8; length < form.size(); ++length) {
        SCOPED_TRACE(length);
        Bytes cut(form.begin(), form.begin() + static_cast<std::ptrdiff_t>(length));
        HuffmanPathTree loaded;
        EXPECT_THROW(loaded.deserialize(cut, true), std::exception);
    }
}

TEST(SerializedPathSet, refusesEveryDamageToTheStreamThatChangesWhatItHolds) {
    HuffmanPathTree set;
    buildSet(set, kSavedEntries);
    const Bytes form = savedForm(set, true);
    for (std::size_t position = 8; position < form.size(); ++position) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            SCOPED_TRACE(testing::Message() << "bit " << bit << " of byte " << position);
            Bytes flipped = form;
            flipped[position] ^= static_cast<std::uint8_t>(1U << bit);
            HuffmanPathTree loaded;
            try {
                loaded.deserialize(flipped, true);
            } catch (const std::exception&) {
                continue;
            }
            EXPECT_EQ(savedForm(loaded), savedForm(set));  // bits of the header say nothing
        }
    }
}

TEST(SerializedPathSet, refusesUnknownNodesAndTriesThatEndEarly) {
    SavedBody unknown;
    expectRefused(unknown.shape(kShape).trie({4}, {x()}),
                  ThrowsMessage<UnknownNodeTypeException>(
                      "Cannot determine the node type for the given value."));
    const auto incomplete = ThrowsMessage<IncompleteTrieException>(
        "The structure bytes and keys end before the tree is complete.");
    SavedBody structure;
    expectRefused(structure.shape(kShape).trie({1}, {x(), y()}), incomplete);
    SavedBody keys;
    expectRefused(keys.shape(kShape).trie({1, 0}, {x()}), incomplete);
}

TEST(SerializedPathSet, refusesTotalsThatDescend) {
    expectRefused(
        twoFilesInAFolder().folders({2, 1}, {{0}, {0}}),
        ThrowsMessage<DescendingPathTotalsException>("The running totals of the paths descend."));
}

TEST(SerializedPathSet, refusesFolderTracksThatLeadNowhere) {
    const auto refused =
        ThrowsMessage<InvalidTrackException>("The track leads to no node of the tree.");
    for (const Bytes& track : {Bytes{2}, Bytes{0, 3}, Bytes{0, 0, 1}, Bytes{0, 2, 0}, Bytes{1, 0}})
        expectRefused(twoFilesInAFolder().folders({2}, {track}), refused);
}

TEST(SerializedPathSet, acceptsTheTrackOfAFolderMetAgainWithoutFiles) {
    HuffmanPathTree set;
    SavedBody body = twoFilesInAFolder();
    loadForm(set, body.folders({2, 2}, {{0}, {0, 2}}).form(), u"xy");
    EXPECT_EQ(pathsByNumber(set, 2), (TextPaths{{u"x", u"x"}, {u"x", u"y"}}));
}

TEST(SerializedPathSet, refusesTracksOfPathsThatLeadNowhere) {
    const auto refused =
        ThrowsMessage<InvalidTrackException>("The track leads to no node of the tree.");
    for (const Bytes& track : {Bytes{}, Bytes{1}, Bytes{0, 2}, Bytes{0, 0, 0}})
        expectRefused(twoFilesInAFolder().tracks().byte(2).sized(track), refused);
}

TEST(SerializedPathSet, refusesFilesThatItsTotalsPromiseButItsTrieLacks) {
    HuffmanPathTree set;
    SavedBody body = twoFilesInAFolder();
    loadForm(set, body.folders({200, 250}, {{0}, {0}}).form(), u"xy");
    EXPECT_EQ(pathsNumbered(set, {2}), (TextPaths{{u"x", u"y"}}));
    EXPECT_THROW(pathsNumbered(set, {3}), InvalidFileNumberException);
    EXPECT_THROW(pathsNumbered(set, {250}), InvalidFileNumberException);
    EXPECT_THROW(pathsNumbered(set, {251}), InvalidPathNumberException);
}

TEST(SerializedPathSet, refusesEntriesThatItsTotalsPromiseButItsTracksLack) {
    HuffmanPathTree set;
    SavedBody body = twoFilesInAFolder();
    loadForm(set, body.folders({2, 3}, {{0}}).form(), u"xy");
    EXPECT_EQ(pathsByNumber(set, 2), (TextPaths{{u"x", u"x"}, {u"x", u"y"}}));
    EXPECT_THROW(pathsNumbered(set, {3}), InvalidTrackException);
}

TEST(SerializedPathSet, keepsWhatItHadReadWhenItFails) {
    HuffmanPathTree set;
    Bytes bytes = twoFilesInAFolder().folders({2, 1}, {{0}, {0}}).form();
    EXPECT_THROW(set.deserialize(bytes, false), DescendingPathTotalsException);
    set.inflateHuffman(u"xy");
    EXPECT_EQ(walkedPaths(set), (TextPaths{{u"x", u"x"}, {u"x", u"y"}}));
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 2U);
}

}  // namespace
}  // namespace compressedpaths
