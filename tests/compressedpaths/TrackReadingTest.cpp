// What the last position of a folder's track is: the folder, or its first file. The set knows while
// it is in memory and works it out again when it is loaded.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "tests/support/FolderHistories.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

using TrackEnd = BPathTree::TrackEnd;

void expectPaths(HuffmanPathTree& set, const FolderEntries& entries) {
    const TextPaths expected = pathsOf(entries);
    EXPECT_EQ(pathsByNumber(set, expected.size()), expected) << describe(entries);
    std::vector<double> numbers;
    for (std::size_t number = 1; number <= expected.size(); ++number)
        numbers.push_back(static_cast<double>(number));
    EXPECT_EQ(pathsNumbered(set, numbers), expected) << describe(entries);
}

/// Also after a second saving and loading, and with what is added after loading.
void expectPathsBeforeAndAfterLoading(const FolderEntries& entries) {
    HuffmanPathTree set;
    buildSet(set, entries);
    expectPaths(set, entries);

    HuffmanPathTree loaded;
    reload(set, loaded, true);
    expectPaths(loaded, entries);
    EXPECT_EQ(savedForm(loaded), savedForm(set));

    HuffmanPathTree loadedAgain;
    reload(loaded, loadedAgain);
    const FolderEntries more{{{u"a"}, {u"last"}}, {{u"z"}, {u"last"}}};
    addBatch(loadedAgain, more);
    FolderEntries all = entries;
    all.insert(all.end(), more.begin(), more.end());
    expectPaths(loadedAgain, all);
}

TEST(TrackReading, findsAFirstFileThatBecameAFolder) {
    const FolderEntries entries{{{u"a"}, {u"c"}}, {{u"a"}, {u"b", u"d"}}, {{u"a", u"b"}, {u"e"}}};
    HuffmanPathTree set;
    buildSet(set, entries);
    EXPECT_EQ(pathsNumbered(set, {2}), (TextPaths{{u"a", u"b"}}));
    EXPECT_EQ(pathsNumbered(set, {3}), (TextPaths{{u"a", u"d"}}));
    EXPECT_EQ(
        HuffmanPathTreePeer::trackEnds(set),
        (std::vector<TrackEnd>{TrackEnd::kFolder, TrackEnd::kFirstFile, TrackEnd::kFirstFile}));

    HuffmanPathTree loaded;
    reload(set, loaded);
    EXPECT_EQ(pathsNumbered(loaded, {2}), (TextPaths{{u"a", u"b"}}));
    EXPECT_EQ(pathsNumbered(loaded, {3}), (TextPaths{{u"a", u"d"}}));
    EXPECT_EQ(HuffmanPathTreePeer::trackEnds(loaded), HuffmanPathTreePeer::trackEnds(set));
    expectPathsBeforeAndAfterLoading(entries);
}

TEST(TrackReading, findsTheOnlyFileOfABatchThatBecameAFolder) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"x"}}, {{u"a"}, {u"b"}}, {{u"a", u"b"}, {u"c"}}});
}

TEST(TrackReading, findsAFirstFileThatBecameAFolderOfManyFilesInSeveralBatches) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"c"}},
                                      {{u"a"}, {u"b", u"d"}},
                                      {{u"a", u"b"}, {u"1", u"2", u"3", u"4"}},
                                      {{u"a", u"b"}, {u"5", u"6", u"7"}},
                                      {{u"a"}, {u"e"}},
                                      {{u"a", u"b"}, {u"8"}}});
}

TEST(TrackReading, findsFilesThatBecameFoldersOneBelowTheOther) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"x"}},
                                      {{u"a"}, {u"b", u"y"}},
                                      {{u"a", u"b"}, {u"c", u"z"}},
                                      {{u"a", u"b", u"c"}, {u"d"}},
                                      {{u"a", u"b", u"c", u"d"}, {u"e"}}});
}

TEST(TrackReading, findsEachFileOfABatchThatBecameAFolder) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"x"}},
                                      {{u"a"}, {u"b", u"c", u"d"}},
                                      {{u"a", u"d"}, {u"1"}},
                                      {{u"a", u"c"}, {u"2", u"3"}},
                                      {{u"a", u"b"}, {u"4"}}});
}

// As a listing of a file system gives it that names every folder twice: as an entry of the folder
// above, later with what is in it.
TEST(TrackReading, findsAListingWhereFoldersAreFirstListedAsFiles) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"b", u"f", u"g"}},
                                      {{u"a", u"b"}, {u"c", u"d"}},
                                      {{u"a", u"b", u"c"}, {u"1", u"2"}},
                                      {{u"a", u"b", u"d"}, {u"3"}},
                                      {{u"a", u"f"}, {u"4", u"e"}},
                                      {{u"a", u"f", u"e"}, {u"5"}},
                                      {{u"a", u"g"}, {u"6"}}});
}

TEST(TrackReading, findsAListingInDepthFirstOrder) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"b"}},
                                      {{u"a", u"b"}, {u"c"}},
                                      {{u"a", u"b", u"c"}, {u"1"}},
                                      {{u"a", u"b"}, {u"d"}},
                                      {{u"a", u"b", u"d"}, {u"2"}},
                                      {{u"a"}, {u"e"}},
                                      {{u"a", u"e"}, {u"3"}}});
}

TEST(TrackReading, findsAPathThatWasListedTwiceBeforeItBecameAFolder) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"a"}},
                                      {{u"a", u"c"}, {u"b"}},
                                      {{u"a", u"c"}, {u"b"}},
                                      {{u"a", u"c", u"b", u"a"}, {u"dd"}}});
}

TEST(TrackReading, findsFoldersMetAgainWithoutFiles) {
    expectPathsBeforeAndAfterLoading(
        {{{u"a"}, {u"b"}}, {{u"a"}, {}}, {{u"a"}, {u"c"}}, {{u"a"}, {}}, {{u"a", u"c"}, {u"d"}}});
}

TEST(TrackReading, findsFoldersFirstMetWithoutFiles) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {}}, {{u"b"}, {u"c"}}, {{u"b", u"d"}, {}}});
    expectPathsBeforeAndAfterLoading({{{u"a"}, {}}, {{u"a"}, {u"b"}}, {{u"a", u"b"}, {u"c"}}});
    expectPathsBeforeAndAfterLoading(
        {{{u"a", u"b"}, {}}, {{u"a", u"b"}, {u"c"}}, {{u"a"}, {u"d"}}, {{u"a", u"d"}, {u"e"}}});
}

TEST(TrackReading, findsAFileThatBecameAFolderByAnEntryWithoutFiles) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {}}, {{u"a"}, {u"b"}}, {{u"a", u"b", u"c"}, {}}});
}

TEST(TrackReading, findsFoldersBelowComponentsThatWereNeverListed) {
    expectPathsBeforeAndAfterLoading({{{u"a", u"b", u"c"}, {u"1"}},
                                      {{u"a", u"b"}, {u"2"}},
                                      {{u"a", u"b", u"c"}, {u"3"}},
                                      {{u"a", u"x", u"y", u"z"}, {u"4"}},
                                      {{u"a"}, {u"5"}}});
}

TEST(TrackReading, takesNoFileForAFolderThatNoEarlierEntryMentions) {
    expectPathsBeforeAndAfterLoading(
        {{{u"a", u"b"}, {u"c"}}, {{u"a", u"b"}, {u"c"}}, {{u"a", u"b", u"c", u"d"}, {}}});
    expectPathsBeforeAndAfterLoading(
        {{{}, {}}, {{u"a", u"b"}, {u"c"}}, {{u"a", u"b"}, {u"c"}}, {{u"a", u"b", u"c", u"d"}, {}}});
}

// The same bytes would be those of b as a file of a below which b/c/d was added at once. Where both
// fit, every folder is taken to have been listed before something was added below it.
TEST(TrackReading, prefersTheReadingInWhichEveryFolderWasListed) {
    const FolderEntries listed{
        {{u"a"}, {u"x"}}, {{u"a", u"b"}, {u"c"}}, {{u"a", u"b", u"c", u"d"}, {u"e"}}};
    ASSERT_TRUE(everyFolderWasListed(listed));
    expectPathsBeforeAndAfterLoading(listed);

    const FolderEntries unlisted{
        {{u"a"}, {u"x"}}, {{u"a"}, {u"b"}}, {{u"a", u"b", u"c", u"d"}, {u"e"}}};
    HuffmanPathTree set;
    buildSet(set, unlisted);
    EXPECT_EQ(pathsByNumber(set, 3), pathsOf(unlisted));
    HuffmanPathTree twin;
    buildSet(twin, listed);
    EXPECT_EQ(savedForm(set), savedForm(twin));
}

/// A tree of some names below the folder a, each path to a file or folder once, in random order.
FolderEntries shuffledListing(std::mt19937& random) {
    std::set<TextPath> paths;
    const std::size_t size = 2 + random() % 40;
    for (TextPath path{u"a"}; paths.size() < size;) {
        path.emplace_back(1, static_cast<char16_t>(u'a' + random() % 4));
        paths.insert(path);
        if (path.size() > 6 || random() % 3 == 0) path = {u"a"};
    }
    std::vector<TextPath> order(paths.begin(), paths.end());
    std::shuffle(order.begin(), order.end(), random);

    FolderEntries entries;
    for (TextPath& folder : order) {
        const std::u16string name = folder.back();
        folder.pop_back();
        if (entries.empty() || entries.back().folder != folder) entries.push_back({folder, {}});
        entries.back().files.push_back(name);
    }
    return entries;
}

TEST(TrackReading, findsAListingInAnyOrderThatNamesEveryFileAndFolderOnce) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        const FolderEntries entries = shuffledListing(random);
        HuffmanPathTree set;
        addCoded(set, entries);
        HuffmanPathTree loaded;
        reload(set, loaded);
        const TextPaths expected = pathsOf(entries);
        ASSERT_EQ(pathsByNumber(loaded, expected.size()), expected) << describe(entries);
    }
}

TEST(TrackReading, tellsTheEndsApartInEveryShortHistoryWithFiles) {
    HistoryLimits limits;
    limits.entries = 3;
    limits.depth = 3;
    limits.files = 1;
    limits.leastFiles = 1;
    const std::size_t count = forAllHistories(limits, [](const FolderEntries& entries) {
        HuffmanPathTree set;
        addCoded(set, entries);
        const TextPaths expected = pathsOf(entries);
        ASSERT_EQ(pathsByNumber(set, expected.size()), expected) << describe(entries);
        HuffmanPathTree loaded;
        reload(set, loaded);
        ASSERT_EQ(pathsByNumber(loaded, expected.size()), expected) << describe(entries);
    });
    EXPECT_EQ(count, 28U + 28U * 28U + 28U * 28U * 28U);
}

TEST(TrackReading, tellsTheEndsApartInEveryShortHistoryOfTwoLevels) {
    HistoryLimits limits;
    limits.entries = 3;
    limits.depth = 2;
    limits.files = 2;
    const std::size_t count = forAllHistories(limits, [](const FolderEntries& entries) {
        HuffmanPathTree set;
        addCoded(set, entries);
        const TextPaths expected = pathsOf(entries);
        HuffmanPathTree loaded;
        reload(set, loaded);
        ASSERT_EQ(pathsByNumber(loaded, expected.size()), expected) << describe(entries);
    });
    EXPECT_EQ(count, 42U + 42U * 42U + 42U * 42U * 42U);
}

TEST(TrackReading, guessesTheFolderWhereTheTrackEndsAtANodeWithChildren) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b"}}});
    const BPathTree& tree = HuffmanPathTreePeer::pathTree(set);
    EXPECT_EQ(tree.guessTrackEnd({}), TrackEnd::kFolder);
    EXPECT_EQ(tree.guessTrackEnd({0}), TrackEnd::kFolder);
    EXPECT_EQ(tree.guessTrackEnd({0, 0}), TrackEnd::kFirstFile);
    EXPECT_EQ(tree.guessTrackEnd({0, 1}), TrackEnd::kFirstFile);
    EXPECT_EQ(tree.guessTrackEnd({7, 7, 7}), TrackEnd::kFirstFile);
}

TEST(TrackReading, readsTracksThatLeadNowhereWithoutHarm) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b", u"c"}}, {{u"a", u"b"}, {u"d"}}});
    const BPathTree& tree = HuffmanPathTreePeer::pathTree(set);
    const std::vector<std::vector<std::size_t>> tracks{{0, 9}, {9, 0}, {}, {0, 0}, {0, 0}, {0}};
    EXPECT_EQ(tree.readTrackEnds(tracks, {1, 1, 1, 1000, 0}).size(), tracks.size());
    EXPECT_EQ(tree.readTrackEnds(tracks, {}).size(), tracks.size());
    EXPECT_TRUE(tree.readTrackEnds({}, {1, 2}).empty());
}

TEST(TrackReading, acceptsTracksToAFolderOrTheEndOfItsChildren) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b", u"c"}}});
    const BPathTree& tree = HuffmanPathTreePeer::pathTree(set);
    EXPECT_TRUE(tree.leadsToFolder({}));
    EXPECT_TRUE(tree.leadsToFolder({0}));
    EXPECT_TRUE(tree.leadsToFolder({0, 1}));
    EXPECT_TRUE(tree.leadsToFolder({0, 2}));
    EXPECT_FALSE(tree.leadsToFolder({0, 3}));
    EXPECT_FALSE(tree.leadsToFolder({2}));
    EXPECT_FALSE(tree.leadsToFolder({2, 0}));
    EXPECT_FALSE(tree.leadsToNode({0, 2}));
    EXPECT_TRUE(tree.leadsToNode({0, 1}));
}

}  // namespace
}  // namespace compressedpaths
