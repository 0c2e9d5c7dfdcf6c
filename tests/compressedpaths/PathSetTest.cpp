#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

using testing::ThrowsMessage;

const TextEntries kTwoFolders{{{u"a"}, {u"f1", u"f2"}}, {{u"a", u"b"}, {u"f3"}}};

void expectEmptyBatch(const HuffmanPathTree& set) {
    EXPECT_TRUE(HuffmanPathTreePeer::asyncFolders(set).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::asyncFiles(set).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::asyncCodedFolders(set).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::asyncCodedFiles(set).empty());
    EXPECT_EQ(HuffmanPathTreePeer::asyncFolders(set).capacity(), 0U);
    EXPECT_EQ(HuffmanPathTreePeer::asyncCodedFiles(set).capacity(), 0U);
}

void expectEmptySet(const HuffmanPathTree& set) {
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 0U);
    EXPECT_TRUE(HuffmanPathTreePeer::partitionEnds(set).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::folderTracks(set).empty());
    EXPECT_TRUE(BPathTreePeer::root(HuffmanPathTreePeer::pathTree(set))->children.empty());
}

TEST(PathSet, addsNothingForAnEmptyBatch) {
    HuffmanPathTree set;
    addBatch(set, {});
    expectEmptySet(set);
    expectEmptyBatch(set);
}

TEST(PathSet, keepsATotalAndATrackForEachEntry) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    EXPECT_EQ(HuffmanPathTreePeer::partitionEnds(set), (std::vector<std::size_t>{2, 3}));
    EXPECT_EQ(HuffmanPathTreePeer::folderTracks(set), (std::vector<Track>{{0}, {0, 2}}));
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 3U);
    expectEmptyBatch(set);
}

TEST(PathSet, remembersWhereTheFilesOfAFolderMetAgainBegin) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b", u"c"}}, {{u"a"}, {u"d", u"b"}}});
    EXPECT_EQ(HuffmanPathTreePeer::folderTracks(set), (std::vector<Track>{{0}, {0, 2}}));
    EXPECT_EQ(HuffmanPathTreePeer::maxFolderDepth(set), 2U);
    EXPECT_EQ(pathsNumbered(set, {3}), (TextPaths{{u"a", u"d"}}));
    EXPECT_EQ(pathsNumbered(set, {4}), (TextPaths{{u"a", u"b"}}));
}

TEST(PathSet, countsNoFoldersMetOnceForItsDepth) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a", u"b", u"c"}, {u"d"}}});
    EXPECT_EQ(HuffmanPathTreePeer::maxFolderDepth(set), 0U);
}

TEST(PathSet, givesEveryPathByItsNumber) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    EXPECT_EQ(pathsByNumber(set, 3), pathsOf(kTwoFolders));
}

TEST(PathSet, givesFilesOfAFolderWithoutComponents) {
    HuffmanPathTree set;
    buildSet(set, {{{}, {u"a", u"b"}}, {{u"c"}, {u"d"}}});
    EXPECT_EQ(pathsByNumber(set, 3), (TextPaths{{u"a"}, {u"b"}, {u"c", u"d"}}));
}

TEST(PathSet, skipsEntriesWithoutFiles) {
    HuffmanPathTree set;
    const TextEntries entries{{{u"a"}, {}}, {{u"b"}, {u"c"}}, {{u"b"}, {}},
                              {{u"d"}, {}}, {{u"a"}, {u"e"}}, {{u"b"}, {}}};
    buildSet(set, entries);
    EXPECT_EQ(pathsByNumber(set, 2), pathsOf(entries));
}

TEST(PathSet, groupsFilesOfOneEntryUnderOneFolder) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    std::vector<Path> folders(1);
    std::vector<Path> files(1);
    set.getPath(folders, files, {1, 2, 3});
    ASSERT_EQ(folders.size(), 3U);
    EXPECT_EQ(decoded(set, folders[1]), (TextPath{u"a"}));
    EXPECT_EQ(decoded(set, files[1]), (TextPath{u"f1", u"f2"}));
    EXPECT_EQ(decoded(set, folders[2]), (TextPath{u"a", u"b"}));
    EXPECT_EQ(decoded(set, files[2]), (TextPath{u"f3"}));
}

TEST(PathSet, countsAPathAddedAgainAndWalksItAtItsNumber) {
    HuffmanPathTree set;
    makeCode(set);
    for (const TextPath& added : {TextPath{u"a", u"b"}, TextPath{u"a", u"b"}, TextPath{u"c"}})
        addSinglePath(set, added);
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 3U);
    EXPECT_FALSE(set.hasDuplicate(1));
    EXPECT_TRUE(set.hasDuplicate(2));
    EXPECT_FALSE(set.hasDuplicate(3));
    EXPECT_FALSE(set.hasDuplicate(0));
    EXPECT_EQ(HuffmanPathTreePeer::pathTracks(set).at(2), (Track{0, 0}));
    EXPECT_EQ(HuffmanPathTreePeer::maxTrackLength(set), 2U);
    EXPECT_EQ(HuffmanPathTreePeer::maxTrackKey(set), 2U);
    EXPECT_EQ(walkedPaths(set), (TextPaths{{u"a", u"b"}, {u"a", u"b"}, {u"c"}}));
}

TEST(PathSet, hasANextPathWhereOnlyADuplicateIsLeft) {
    HuffmanPathTree set;
    makeCode(set);
    for (int times = 0; times < 3; ++times) addSinglePath(set, {u"a"});
    EXPECT_EQ(walkedPaths(set), (TextPaths(3, {u"a"})));
    EXPECT_EQ(HuffmanPathTreePeer::iterationPosition(set), 3U);
    EXPECT_FALSE(set.hasNextPathFromBTree());
}

TEST(PathSet, appendsADuplicateAndReplacesByAnyOtherPath) {
    HuffmanPathTree set;
    makeCode(set);
    addSinglePath(set, {u"a"});
    addSinglePath(set, {u"a"});
    set.resetPathsToBTree();
    Path out{{1, 2, 3}};
    set.getNextPathFromBTree(out);
    EXPECT_EQ(decoded(set, out), (TextPath{u"a"}));
    set.getNextPathFromBTree(out);
    EXPECT_EQ(decoded(set, out), (TextPath{u"a", u"a"}));
}

TEST(PathSet, startsTheWalkAtTheFirstPathAgain) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    EXPECT_EQ(walkedPaths(set), pathsOf(kTwoFolders));
    set.resetPathsToBTree();
    Path out;
    set.getNextPathFromBTree(out);
    set.getNextPathFromBTree(out);
    EXPECT_EQ(walkedPaths(set), pathsOf(kTwoFolders));
}

TEST(PathSet, hasNoNextPathAfterTheLastOrBeforeAReset) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    Path out;
    EXPECT_FALSE(set.hasNextPathFromBTree());
    EXPECT_THAT([&] { set.getNextPathFromBTree(out); },
                ThrowsMessage<NoMorePathException>("No more paths to provide."));
    walkedPaths(set);
    EXPECT_FALSE(set.hasNextPathFromBTree());
    EXPECT_THAT([&] { set.getNextPathFromBTree(out); },
                ThrowsMessage<NoMorePathException>("No more paths to provide."));
    EXPECT_EQ(walkedPaths(set).size(), 3U);
}

TEST(PathSet, isWhatItWasAfterABatchThatFails) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    const Bytes before = savedForm(set);
    const std::size_t maxCodeBytes = HuffmanPathTreePeer::maxCodeBytes(set);
    const std::u16string longName(200, u'a');

    EXPECT_THAT(
        [&] {
            addBatch(set, {{{longName}, {u"new"}}, {{u"a"}, {u""}}});
        },
        ThrowsMessage<NoCodeForEmptyString>("No code for an empty string."));
    EXPECT_THAT(
        [&] {
            addBatch(set, {{{longName}, {u"new"}}, {{u""}, {u"b"}}});
        },
        ThrowsMessage<NoCodeForEmptyString>("No code for an empty string."));
    EXPECT_THAT(
        [&] {
            addBatch(set, {{{longName}, {u"new"}}, {{u"A"}, {u"b"}}});
        },
        ThrowsMessage<CodeNotFoundException>("Code for the character not found."));

    EXPECT_EQ(savedForm(set), before);
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(set), maxCodeBytes);
    EXPECT_EQ(pathsByNumber(set, 3), pathsOf(kTwoFolders));
    EXPECT_EQ(walkedPaths(set), pathsOf(kTwoFolders));
}

TEST(PathSet, givesTheMemoryOfAFailedBatchBackOnReset) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    EXPECT_THROW(addBatch(set, {{{u"a"}, {u"A"}}}), CodeNotFoundException);
    EXPECT_EQ(HuffmanPathTreePeer::asyncFolders(set).size(), 1U);
    set.resetPathsToBTree();
    expectEmptyBatch(set);
}

TEST(PathSet, givesTheMemoryOfAFailedBatchBackOnTheNextAdd) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    EXPECT_THROW(addBatch(set, {{{u"a"}, {u"A"}}}), CodeNotFoundException);
    addBatch(set, {{{u"z"}, {u"y"}}});
    expectEmptyBatch(set);
    EXPECT_EQ(pathsNumbered(set, {4}), (TextPaths{{u"z", u"y"}}));
}

TEST(PathSet, doesNotAddWhatRemainsOfAFailedBatch) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    const Bytes before = savedForm(set);
    EXPECT_THROW(addBatch(set, {{{u"a"}, {u"A"}}}), CodeNotFoundException);
    EXPECT_THAT(
        [&] { set.addPathToBTreeFromAsyncData(); },
        ThrowsMessage<IncompleteBatchException>("The batch has not been coded as a whole."));
    EXPECT_EQ(savedForm(set), before);
}

TEST(PathSet, refusesListsOfUnequalLength) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    const Bytes before = savedForm(set);
    std::vector<Names> folders{{u"a"}, {u"b"}};
    std::vector<Names> files{{u"c"}};
    EXPECT_THAT([&] { set.generateCodeAsyncAndAddPaths(folders, files); },
                ThrowsMessage<UnequalBatchListsException>(
                    "The batch has different numbers of folders and file lists."));
    EXPECT_THAT([&] { set.generateCodeAsyncAndAddPaths(files, folders); },
                ThrowsMessage<UnequalBatchListsException>(
                    "The batch has different numbers of folders and file lists."));
    EXPECT_EQ(savedForm(set), before);
    expectEmptyBatch(set);
}

TEST(PathSet, leavesTheListsOfTheCallerAlone) {
    HuffmanPathTree set;
    makeCode(set);
    std::vector<Names> folders{{u"a"}};
    std::vector<Names> files{{u"b", u"c"}};
    set.generateCodeAsyncAndAddPaths(folders, files);
    EXPECT_EQ(folders, (std::vector<Names>{{u"a"}}));
    EXPECT_EQ(files, (std::vector<Names>{{u"b", u"c"}}));
}

TEST(PathSet, needsACodeToAddNames) {
    HuffmanPathTree set;
    EXPECT_THROW(addBatch(set, {{{u"a"}, {u"b"}}}), CodeNotFoundException);
    expectEmptySet(set);
}

TEST(PathSet, copiesCodePathsAndNumbers) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    HuffmanPathTree copy;
    copy.copyTree(set);
    EXPECT_EQ(pathsByNumber(copy, 3), pathsOf(kTwoFolders));
    EXPECT_EQ(walkedPaths(copy), pathsOf(kTwoFolders));
    EXPECT_EQ(savedForm(copy), savedForm(set));
    EXPECT_EQ(copy.generateCodeFor(u"name"), set.generateCodeFor(u"name"));
    EXPECT_EQ(copy.getFrequencies(), set.getFrequencies());
    EXPECT_EQ(copy.getTreeString(), set.getTreeString());
}

TEST(PathSet, copiesThePlaceInTheWalkButWalksOnItsOwn) {
    HuffmanPathTree set;
    buildSet(set, kTwoFolders);
    set.resetPathsToBTree();
    Path out;
    set.getNextPathFromBTree(out);
    HuffmanPathTree copy;
    copy.copyTree(set);
    copy.getNextPathFromBTree(out);
    EXPECT_EQ(decoded(copy, out), (TextPath{u"a", u"f2"}));
    copy.getNextPathFromBTree(out);
    EXPECT_FALSE(copy.hasNextPathFromBTree());
    set.getNextPathFromBTree(out);
    EXPECT_EQ(decoded(set, out), (TextPath{u"a", u"f2"}));
}

TEST(PathSet, keepsItsNumbersWhenACopyAdds) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b", u"c"}}, {{u"a"}, {u"d"}}});
    HuffmanPathTree copy;
    copy.copyTree(set);
    addBatch(copy, {{{u"a", u"d"}, {u"e"}}, {{u"a"}, {u"f"}}});
    addBatch(set, {{{u"a"}, {u"g"}}});
    EXPECT_EQ(pathsByNumber(set, 4),
              (TextPaths{{u"a", u"b"}, {u"a", u"c"}, {u"a", u"d"}, {u"a", u"g"}}));
    EXPECT_EQ(
        pathsByNumber(copy, 5),
        (TextPaths{{u"a", u"b"}, {u"a", u"c"}, {u"a", u"d"}, {u"a", u"d", u"e"}, {u"a", u"f"}}));
    EXPECT_EQ(walkedPaths(set), walkedPaths(copy));
}

TEST(PathSet, outlivesTheSetItWasCopiedFrom) {
    HuffmanPathTree copy;
    {
        HuffmanPathTree set;
        buildSet(set, kTwoFolders);
        copy.copyTree(set);
    }
    EXPECT_EQ(pathsByNumber(copy, 3), pathsOf(kTwoFolders));
}

TEST(PathSet, takesCodedEntriesAsTheyAre) {
    HuffmanPathTree set;
    makeCode(set);
    std::vector<Bytes> folder{set.generateCodeFor(u"a")};
    std::vector<Bytes> files{set.generateCodeFor(u"b"), set.generateCodeFor(u"b")};
    set.addPathToBTree(folder, files);
    EXPECT_EQ(folder, (std::vector<Bytes>{{}}));
    EXPECT_EQ(files, (std::vector<Bytes>{{}, {}}));
    EXPECT_EQ(pathsByNumber(set, 2), (TextPaths(2, {u"a", u"b"})));
}

}  // namespace
}  // namespace compressedpaths
