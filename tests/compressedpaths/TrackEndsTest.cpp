// What the last position of a folder's track is: the folder, or its first file. The set knows it; a
// saved form tells it by a rule, and one by one where the rule would be wrong.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "tests/support/FolderHistories.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/PlainPathSet.hpp"
#include "tests/support/SavedBodies.hpp"

namespace compressedpaths {
namespace {

void expectPaths(HuffmanPathTree& set, const TextEntries& entries) {
    const TextPaths expected = pathsOf(entries);
    EXPECT_EQ(pathsByNumber(set, expected.size()), expected) << describe(entries);
    std::vector<double> numbers;
    for (std::size_t number = 1; number <= expected.size(); ++number)
        numbers.push_back(static_cast<double>(number));
    EXPECT_EQ(pathsNumbered(set, numbers), expected) << describe(entries);
}

/// Also after a second saving and loading, and with what is added after loading.
void expectPathsBeforeAndAfterLoading(const TextEntries& entries) {
    HuffmanPathTree set;
    buildSet(set, entries);
    expectPaths(set, entries);

    HuffmanPathTree loaded;
    reload(set, loaded, true);
    expectPaths(loaded, entries);
    EXPECT_EQ(savedForm(loaded), savedForm(set));

    HuffmanPathTree loadedAgain;
    reload(loaded, loadedAgain);
    const TextEntries more{{{u"a"}, {u"last"}}, {{u"z"}, {u"last"}}};
    addBatch(loadedAgain, more);
    TextEntries all = entries;
    all.insert(all.end(), more.begin(), more.end());
    expectPaths(loadedAgain, all);
}

TEST(TrackEnds, findsAFirstFileThatBecameAFolder) {
    const TextEntries entries{{{u"a"}, {u"c"}}, {{u"a"}, {u"b", u"d"}}, {{u"a", u"b"}, {u"e"}}};
    HuffmanPathTree set;
    buildSet(set, entries);
    EXPECT_EQ(pathsNumbered(set, {2}), (TextPaths{{u"a", u"b"}}));
    EXPECT_EQ(pathsNumbered(set, {3}), (TextPaths{{u"a", u"d"}}));

    HuffmanPathTree loaded;
    reload(set, loaded);
    EXPECT_EQ(pathsNumbered(loaded, {2}), (TextPaths{{u"a", u"b"}}));
    EXPECT_EQ(pathsNumbered(loaded, {3}), (TextPaths{{u"a", u"d"}}));
    expectPathsBeforeAndAfterLoading(entries);
}

TEST(TrackEnds, findsTheOnlyFileOfABatchThatBecameAFolder) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"x"}}, {{u"a"}, {u"b"}}, {{u"a", u"b"}, {u"c"}}});
}

TEST(TrackEnds, findsAFirstFileThatBecameAFolderOfManyFilesInSeveralBatches) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"c"}},
                                      {{u"a"}, {u"b", u"d"}},
                                      {{u"a", u"b"}, {u"1", u"2", u"3", u"4"}},
                                      {{u"a", u"b"}, {u"5", u"6", u"7"}},
                                      {{u"a"}, {u"e"}},
                                      {{u"a", u"b"}, {u"8"}}});
}

TEST(TrackEnds, findsFilesThatBecameFoldersOneBelowTheOther) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"x"}},
                                      {{u"a"}, {u"b", u"y"}},
                                      {{u"a", u"b"}, {u"c", u"z"}},
                                      {{u"a", u"b", u"c"}, {u"d"}},
                                      {{u"a", u"b", u"c", u"d"}, {u"e"}}});
}

TEST(TrackEnds, findsEachFileOfABatchThatBecameAFolder) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"x"}},
                                      {{u"a"}, {u"b", u"c", u"d"}},
                                      {{u"a", u"d"}, {u"1"}},
                                      {{u"a", u"c"}, {u"2", u"3"}},
                                      {{u"a", u"b"}, {u"4"}}});
}

// As a listing of a file system gives it that names every folder twice: as an entry of the folder
// above, later with what is in it.
TEST(TrackEnds, findsAListingWhereFoldersAreFirstListedAsFiles) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"b", u"f", u"g"}},
                                      {{u"a", u"b"}, {u"c", u"d"}},
                                      {{u"a", u"b", u"c"}, {u"1", u"2"}},
                                      {{u"a", u"b", u"d"}, {u"3"}},
                                      {{u"a", u"f"}, {u"4", u"e"}},
                                      {{u"a", u"f", u"e"}, {u"5"}},
                                      {{u"a", u"g"}, {u"6"}}});
}

TEST(TrackEnds, findsAListingInDepthFirstOrder) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"b"}},
                                      {{u"a", u"b"}, {u"c"}},
                                      {{u"a", u"b", u"c"}, {u"1"}},
                                      {{u"a", u"b"}, {u"d"}},
                                      {{u"a", u"b", u"d"}, {u"2"}},
                                      {{u"a"}, {u"e"}},
                                      {{u"a", u"e"}, {u"3"}}});
}

TEST(TrackEnds, findsAPathThatWasListedTwiceBeforeItBecameAFolder) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {u"a"}},
                                      {{u"a", u"c"}, {u"b"}},
                                      {{u"a", u"c"}, {u"b"}},
                                      {{u"a", u"c", u"b", u"a"}, {u"dd"}}});
}

TEST(TrackEnds, findsFoldersMetAgainWithoutFiles) {
    expectPathsBeforeAndAfterLoading(
        {{{u"a"}, {u"b"}}, {{u"a"}, {}}, {{u"a"}, {u"c"}}, {{u"a"}, {}}, {{u"a", u"c"}, {u"d"}}});
}

TEST(TrackEnds, findsFoldersFirstMetWithoutFiles) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {}}, {{u"b"}, {u"c"}}, {{u"b", u"d"}, {}}});
    expectPathsBeforeAndAfterLoading({{{u"a"}, {}}, {{u"a"}, {u"b"}}, {{u"a", u"b"}, {u"c"}}});
    expectPathsBeforeAndAfterLoading(
        {{{u"a", u"b"}, {}}, {{u"a", u"b"}, {u"c"}}, {{u"a"}, {u"d"}}, {{u"a", u"d"}, {u"e"}}});
}

TEST(TrackEnds, findsAFileThatBecameAFolderByAnEntryWithoutFiles) {
    expectPathsBeforeAndAfterLoading({{{u"a"}, {}}, {{u"a"}, {u"b"}}, {{u"a", u"b", u"c"}, {}}});
}

TEST(TrackEnds, findsFoldersBelowComponentsThatWereNeverListed) {
    expectPathsBeforeAndAfterLoading({{{u"a", u"b", u"c"}, {u"1"}},
                                      {{u"a", u"b"}, {u"2"}},
                                      {{u"a", u"b", u"c"}, {u"3"}},
                                      {{u"a", u"x", u"y", u"z"}, {u"4"}},
                                      {{u"a"}, {u"5"}}});
}

TEST(TrackEnds, takesNoFileForAFolderThatNoEarlierEntryMentions) {
    expectPathsBeforeAndAfterLoading(
        {{{u"a", u"b"}, {u"c"}}, {{u"a", u"b"}, {u"c"}}, {{u"a", u"b", u"c", u"d"}, {}}});
    expectPathsBeforeAndAfterLoading(
        {{{}, {}}, {{u"a", u"b"}, {u"c"}}, {{u"a", u"b"}, {u"c"}}, {{u"a", u"b", u"c", u"d"}, {}}});
}

// Trie, totals and tracks of the two are the same: b is the folder of c in the one, and a file that
// only later became a folder in the other. The one whose reading the rule gets wrong says so.
TEST(TrackEnds, tellTwoSetsApartThatDifferInNothingElse) {
    const TextEntries folder{
        {{u"a"}, {u"x"}}, {{u"a", u"b"}, {u"c"}}, {{u"a", u"b", u"c", u"d"}, {u"e"}}};
    const TextEntries file{{{u"a"}, {u"x"}}, {{u"a"}, {u"b"}}, {{u"a", u"b", u"c", u"d"}, {u"e"}}};
    expectPathsBeforeAndAfterLoading(folder);
    expectPathsBeforeAndAfterLoading(file);

    HuffmanPathTree folderSet;
    buildSet(folderSet, folder);
    HuffmanPathTree fileSet;
    buildSet(fileSet, file);
    EXPECT_EQ(HuffmanPathTreePeer::folderTracks(folderSet),
              HuffmanPathTreePeer::folderTracks(fileSet));
    Bytes expected = savedForm(folderSet);
    const Bytes section{2, 2, 0, 0, 0, 0, 0, 0, 0, 0b010, 3};  // three bits, the second a one
    expected.insert(expected.end(), section.begin(), section.end());
    expected[0] = static_cast<std::uint8_t>(expected[0] + section.size());  // length of the body
    EXPECT_EQ(savedForm(fileSet), expected);
}

/// A tree of some names below the folder a, each path to a file or folder once, in random order.
TextEntries shuffledListing(std::mt19937& random) {
    std::set<TextPath> paths;
    const std::size_t size = 2 + random() % 40;
    for (TextPath path{u"a"}; paths.size() < size;) {
        path.emplace_back(1, static_cast<char16_t>(u'a' + random() % 4));
        paths.insert(path);
        if (path.size() > 6 || random() % 3 == 0) path = {u"a"};
    }
    std::vector<TextPath> order(paths.begin(), paths.end());
    std::shuffle(order.begin(), order.end(), random);

    TextEntries entries;
    for (TextPath& folder : order) {
        const std::u16string name = folder.back();
        folder.pop_back();
        if (entries.empty() || entries.back().folder != folder) entries.push_back({folder, {}});
        entries.back().files.push_back(name);
    }
    return entries;
}

TEST(TrackEnds, findsAListingInAnyOrderThatNamesEveryFileAndFolderOnce) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        const TextEntries entries = shuffledListing(random);
        HuffmanPathTree set;
        addCoded(set, entries);
        HuffmanPathTree loaded;
        reload(set, loaded);
        const TextPaths expected = pathsOf(entries);
        ASSERT_EQ(pathsByNumber(loaded, expected.size()), expected) << describe(entries);
    }
}

TEST(TrackEnds, tellsTheEndsApartInEveryShortHistoryWithFiles) {
    HistoryLimits limits;
    limits.entries = kMostHistoryEntries;
    limits.depth = 3;
    limits.files = 1;
    limits.leastFiles = 1;
    const std::size_t count = forAllHistories(limits, [](const TextEntries& entries) {
        HuffmanPathTree set;
        addCoded(set, entries);
        const TextPaths expected = pathsOf(entries);
        ASSERT_EQ(pathsByNumber(set, expected.size()), expected) << describe(entries);
        HuffmanPathTree loaded;
        reload(set, loaded);
        ASSERT_EQ(pathsByNumber(loaded, expected.size()), expected) << describe(entries);
    });
    EXPECT_EQ(count, historyCount(28));
}

TEST(TrackEnds, tellsTheEndsApartInEveryShortHistoryOfTwoLevels) {
    HistoryLimits limits;
    limits.entries = kMostHistoryEntries;
    limits.depth = 2;
    limits.files = 2;
    const std::size_t count = forAllHistories(limits, [](const TextEntries& entries) {
        HuffmanPathTree set;
        addCoded(set, entries);
        const TextPaths expected = pathsOf(entries);
        HuffmanPathTree loaded;
        reload(set, loaded);
        ASSERT_EQ(pathsByNumber(loaded, expected.size()), expected) << describe(entries);
    });
    EXPECT_EQ(count, historyCount(42));
}

/// The folder x with the file x, the folder y with x and y in it, and the file y.
SavedBody nestedFolders() {
    SavedBody body;
    body.shape({false, true, true}).trie({1, 2, 3, 2, 0, 0}, {x(), x(), y(), x(), y(), y()});
    return body;
}

/// The paths 1 to `count` of a form with totals and tracks, and with bits for the tracks if any are
/// given.
TextPaths pathsOfForm(const Bytes& totals, const std::vector<Bytes>& tracks,
                      const std::vector<bool>& ends = {}) {
    SavedBody body = nestedFolders();
    body.folders(totals, tracks);
    if (!ends.empty()) body.trackEnds(ends);
    HuffmanPathTree set;
    loadForm(set, body.form(), u"xy");
    return pathsByNumber(set, totals.back());
}

TEST(TrackEnds, areTheFolderOfATrackOfOnePosition) {
    EXPECT_EQ(pathsOfForm({1}, {{0}}), (TextPaths{{u"x", u"x"}}));
}

TEST(TrackEnds, areTheFirstFileAtALeaf) {
    EXPECT_EQ(pathsOfForm({1}, {{0, 2}}), (TextPaths{{u"x", u"y"}}));
    EXPECT_EQ(pathsOfForm({2}, {{0, 1, 0}}), (TextPaths{{u"x", u"y", u"x"}, {u"x", u"y", u"y"}}));
}

TEST(TrackEnds, areTheFolderWhereFilesFitBothPlaces) {
    EXPECT_EQ(pathsOfForm({2}, {{0, 1}}), (TextPaths{{u"x", u"y", u"x"}, {u"x", u"y", u"y"}}));
    EXPECT_EQ(pathsOfForm({1}, {{0, 1}}), (TextPaths{{u"x", u"y", u"x"}}));
}

TEST(TrackEnds, areWhereFilesFitIfTheyFitOnePlaceAlone) {
    SavedBody body;  // the folder x with y, in which is one file, and two more files
    body.shape({false, true, true}).trie({1, 3, 0, 2, 0}, {x(), y(), x(), x(), y()});
    HuffmanPathTree beside;
    SavedBody threeFiles = body;
    loadForm(beside, threeFiles.folders({3}, {{0, 0}}).form(), u"xy");
    EXPECT_EQ(pathsByNumber(beside, 3), (TextPaths{{u"x", u"y"}, {u"x", u"x"}, {u"x", u"y"}}));

    SavedBody last;  // the folder x with a file, and y last, in which are two
    last.shape({false, true, true}).trie({1, 2, 1, 2, 0}, {x(), x(), y(), x(), y()});
    HuffmanPathTree inside;
    loadForm(inside, last.folders({2}, {{0, 1}}).form(), u"xy");
    EXPECT_EQ(pathsByNumber(inside, 2), (TextPaths{{u"x", u"y", u"x"}, {u"x", u"y", u"y"}}));
}

TEST(TrackEnds, areWhatTheirBitsSayWhateverTheRule) {
    EXPECT_EQ(pathsOfForm({2}, {{0, 1}}, {true}), (TextPaths{{u"x", u"y"}, {u"x", u"y"}}));
    EXPECT_EQ(pathsOfForm({2}, {{0, 1}}, {false}),
              (TextPaths{{u"x", u"y", u"x"}, {u"x", u"y", u"y"}}));
    EXPECT_EQ(pathsOfForm({1, 3, 4}, {{0}, {0, 1}, {0, 1, 1}}, {false, true, true}),
              (TextPaths{{u"x", u"x"}, {u"x", u"y"}, {u"x", u"y"}, {u"x", u"y", u"y"}}));
}

TEST(TrackEnds, precedeTheTracksOfPathsAddedAgain) {
    SavedBody body = nestedFolders();
    body.folders({2}, {{0, 1}}).trackEnds({true}).tracks().byte(3).sized({0, 0});
    HuffmanPathTree set;
    loadForm(set, body.form(), u"xy");
    EXPECT_EQ(pathsByNumber(set, 2), (TextPaths{{u"x", u"y"}, {u"x", u"y"}}));
    EXPECT_TRUE(set.hasDuplicate(3));
    EXPECT_EQ(savedForm(set), body.form());
}

/// No set writes the bits where the rule reads every entry right.
TEST(TrackEnds, areWrittenOnlyWhereTheRuleMisreadsAnEntryWithFiles) {
    SavedBody given = nestedFolders();
    SavedBody normal = given;
    given.folders({2, 2}, {{0, 1}, {0, 3}}).trackEnds({false, true});
    HuffmanPathTree set;
    loadForm(set, given.form(), u"xy");
    EXPECT_EQ(savedForm(set), normal.folders({2, 2}, {{0, 1}, {0, 3}}).form());
}

TEST(TrackEnds, areWrittenAsThePlainSetSaysInEveryShortHistory) {
    HistoryLimits limits;
    limits.entries = 3;  // the section is not needed for less
    limits.depth = 3;
    limits.files = 1;
    std::size_t sections = 0;
    forAllHistories(limits, [&](const TextEntries& entries) {
        HuffmanPathTree set;
        addCoded(set, entries);
        PlainPathSet plain;
        for (const TextEntry& entry : entries) {
            Path folder;
            for (const auto& name : entry.folder) folder.push_back(set.generateCodeFor(name));
            std::vector<Bytes> files;
            for (const auto& name : entry.files) files.push_back(set.generateCodeFor(name));
            plain.addEntry(folder, files);
        }
        sections += plain.needsTrackEnds() ? 1 : 0;
        ASSERT_EQ(savedForm(set), plain.saved(set.getBoolTree())) << describe(entries);
    });
    EXPECT_GT(sections, 0U);
}

TEST(TrackEnds, refuseBitsThatLeadNowhere) {
    for (const Bytes& track : {Bytes{0, 3}, Bytes{0, 0, 0}, Bytes{0, 1, 2}}) {
        SavedBody body = nestedFolders();
        const Bytes form = body.folders({1}, {track}).trackEnds({false}).form();
        HuffmanPathTree set;
        bool isRefused = false;
        try {
            loadForm(set, form, u"xy");
            pathsNumbered(set, {1});
        } catch (const InvalidTrackException&) {
            isRefused = true;
        } catch (const InvalidFileNumberException&) {
            isRefused = true;
        }
        EXPECT_TRUE(isRefused);
    }
}

TEST(TrackEnds, refuseToEndAmongTheirBits) {
    SavedBody body = nestedFolders();
    const Bytes whole = body.folders({2}, {{0, 1}}).trackEnds({true}).form();
    for (std::size_t missing = 1; missing <= 2; ++missing) {
        Bytes bytes(whole.begin(), whole.end() - static_cast<std::ptrdiff_t>(missing));
        HuffmanPathTree set;
        EXPECT_THROW(set.deserialize(bytes, false), sixpacks::PrematureEndException) << missing;
    }
}

// What a section says that is not known is ignored, and so is whatever follows it.
TEST(TrackEnds, areThoseOfTheRuleWhereASectionIsNotOfThisMany) {
    const TextPaths byRule{{u"x", u"y", u"x"}, {u"x", u"y", u"y"}};
    SavedBody folders = nestedFolders();
    folders.folders({2}, {{0, 1}});
    for (const std::vector<bool>& ends : {std::vector<bool>{}, std::vector<bool>(2, true),
                                          std::vector<bool>(8, true), std::vector<bool>(9, true)}) {
        SavedBody body = folders;
        HuffmanPathTree set;
        loadForm(set, body.trackEnds(ends).form(), u"xy");
        EXPECT_EQ(pathsByNumber(set, 2), byRule) << ends.size();
    }
    const Bytes whole = SavedBody(folders).trackEnds({true}).form();
    for (std::size_t length = folders.form().size(); length < whole.size() - 2; ++length) {
        HuffmanPathTree set;
        loadForm(set, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)),
                 u"xy");
        EXPECT_EQ(pathsByNumber(set, 2), byRule) << length;
    }
}

}  // namespace
}  // namespace compressedpaths
