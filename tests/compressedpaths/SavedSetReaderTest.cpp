// Reading the sections of a saved set that say more than the trie: what tracks end with, and paths
// that were added again.

#include "compressedpaths/SavedSetReader.hpp"

#include <gtest/gtest.h>

#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/SavedBodies.hpp"

namespace compressedpaths {
namespace {

using sixpacks::PrematureEndException;

/// The folder x with the files x and y.
SavedBody twoFiles() {
    SavedBody body;
    body.shape({false, true, true}).trie({1, 2, 0}, {x(), x(), y()});
    return body;
}

/// A set of a form that is followed by more bytes.
void load(HuffmanPathTree& set, const SavedBody& body, const Bytes& more = {}) {
    Bytes bytes = body.form();
    bytes.insert(bytes.end(), more.begin(), more.end());
    loadForm(set, bytes, u"xy");
}

/// The sets of some entries and of what is read by the rule alone: their forms without the section
/// of what tracks end with, if they have one.
struct ReadByRule {
    TextPaths byRule;
    TextPaths read;
    bool hasSection;
};

ReadByRule readByRule(const TextEntries& entries) {
    HuffmanPathTree set;
    buildSet(set, entries);
    const std::size_t sectionSize = 1 + 8 + entries.size() / 8 + 2;
    const Bytes whole = savedForm(set);
    Bytes section{2, static_cast<std::uint8_t>(entries.size() / 8 + 2), 0, 0, 0, 0, 0, 0, 0};
    const auto begin = whole.end() - static_cast<std::ptrdiff_t>(sectionSize);
    ReadByRule result{};
    result.hasSection = std::equal(section.begin(), section.end(), begin);
    HuffmanPathTree loaded;
    reload(set, loaded);
    result.read = pathsByNumber(loaded, pathsOf(entries).size());
    HuffmanPathTree cut;
    loadForm(cut, result.hasSection ? Bytes(whole.begin(), begin) : whole, set.getTreeString());
    try {
        result.byRule = pathsByNumber(cut, pathsOf(entries).size());
    } catch (const InvalidFileNumberException&) {
    }
    return result;
}

TEST(SavedSetReader, readsByTheRuleWhereThatIsRight) {
    for (const TextEntries& entries :
         {TextEntries{{{u"a"}, {u"b", u"c"}}, {{u"a"}, {u"d"}}, {{u"a", u"d"}, {u"e"}}},
          TextEntries{{{u"a", u"b"}, {u"c"}}, {{u"a", u"b"}, {u"d"}}, {{u"a"}, {u"e"}}},
          TextEntries{{{u"a"}, {u"x"}}, {{u"a"}, {u"b", u"c"}}, {{u"a", u"b"}, {u"d"}}},
          TextEntries{{{}, {u"a", u"b"}}, {{u"a"}, {u"c"}}, {{}, {u"d"}}}}) {
        const ReadByRule result = readByRule(entries);
        EXPECT_EQ(result.read, pathsOf(entries));
        EXPECT_EQ(result.hasSection, result.byRule != pathsOf(entries));
    }
}

TEST(SavedSetReader, readsWhatTracksEndWithWhereTheRuleIsWrong) {
    // A first file that became a folder, with room inside for all files of its entry.
    const TextEntries first{{{u"a"}, {u"x"}}, {{u"a"}, {u"b"}}, {{u"a", u"b"}, {u"c"}}};
    // The last folder of its folder, with fewer files inside than its entry had by its total.
    const TextEntries several{{{u"a"}, {u"x"}},
                              {{u"a"}, {u"b", u"c"}},
                              {{u"a", u"b"}, {u"1", u"2"}},
                              {{u"a", u"c"}, {u"3", u"4"}}};
    for (const TextEntries& entries : {first, several}) {
        const ReadByRule result = readByRule(entries);
        EXPECT_TRUE(result.hasSection);
        EXPECT_EQ(result.read, pathsOf(entries));
        EXPECT_NE(result.byRule, pathsOf(entries));
    }
}

TEST(SavedSetReader, refusesMorePathsThanAnEntryCanCount) {
    constexpr std::uint64_t kMost = FolderEntries::kMaxPathCount;
    const auto formOf = [](std::uint64_t total) {
        SavedBody body = twoFiles();
        body.byte(1).byte(3).byte(0).byte(1).count8(total);  // totals of eight bytes, one of them
        return body.count8(1).byte(0).byte(0).sized({0});
    };
    HuffmanPathTree set;
    load(set, formOf(kMost));
    EXPECT_EQ(set.size(), kMost);
    HuffmanPathTree refused;
    EXPECT_THROW(load(refused, formOf(kMost + 1)), SetTooLargeException);
}

TEST(SavedSetReader, endsWithoutErrorAtASectionThatItDoesNotKnow) {
    for (const Bytes& more : {Bytes{2, 0xFF}, Bytes{2}, Bytes{3, 1, 2}, Bytes{0xFF},
                              Bytes{2, 9, 0, 0, 0, 0, 0, 0, 0, 1, 1}}) {
        HuffmanPathTree set;
        load(set, twoFiles().folders({2}, {{0}}), more);
        EXPECT_EQ(pathsByNumber(set, 2), (TextPaths{{u"x", u"x"}, {u"x", u"y"}}));
        EXPECT_EQ(set.size(), 2U);
    }
}

TEST(SavedSetReader, refusesASectionThatIsCutOff) {
    const Bytes begun{2, 2, 0, 0, 0, 0, 0, 0, 0};
    for (const Bytes& bits : {Bytes{}, Bytes{1}}) {
        Bytes more = begun;
        more.insert(more.end(), bits.begin(), bits.end());
        HuffmanPathTree set;
        EXPECT_THROW(load(set, twoFiles().folders({1}, {{0}}), more), PrematureEndException);
    }
}

TEST(SavedSetReader, hasWhatStandsBeforeASectionThatItRefuses) {
    HuffmanPathTree set;
    EXPECT_THROW(load(set, twoFiles().folders({2}, {{0}}), {2, 2, 0, 0, 0, 0, 0, 0, 0, 1}),
                 PrematureEndException);
    set.inflateHuffman(u"xy");
    EXPECT_EQ(pathsByNumber(set, 2), (TextPaths{{u"x", u"x"}, {u"x", u"y"}}));
}

TEST(SavedSetReader, refusesABodyThatWouldInflateToMoreThanIsAllowed) {
    HuffmanPathTree set;
    makeCode(set);
    TextEntry entry{{u"a"}, Names(1000, u"the-same-name")};
    addBatch(set, {entry});
    const Bytes saved = savedForm(set, true);
    const std::uint64_t bodySize = savedForm(set).size() - 8;
    for (const std::uint64_t most : {std::uint64_t{0}, bodySize - 1}) {
        Bytes bytes = saved;
        HuffmanPathTree refused;
        EXPECT_THROW(refused.deserialize(bytes, true, most), ImplausibleLengthException);
        EXPECT_EQ(refused.size(), 0U);
    }
    Bytes bytes = saved;
    HuffmanPathTree loaded;
    loaded.deserialize(bytes, true, bodySize);
    EXPECT_EQ(loaded.size(), 1000U);
}

// The walk gives the path at its number; of two with one number the later counts.
TEST(SavedSetReader, takesTheLastOfPathsThatWereAddedAgainAtOneNumber) {
    SavedBody body = twoFiles().folders({2}, {{0}});
    body.tracks().byte(3).sized({0, 0}).byte(4).sized({0, 0}).byte(3).sized({0, 1});
    HuffmanPathTree set;
    load(set, body);
    EXPECT_EQ(set.size(), 4U);
    EXPECT_TRUE(set.hasDuplicate(3));
    EXPECT_TRUE(set.hasDuplicate(4));
    EXPECT_FALSE(set.hasDuplicate(2));
    EXPECT_EQ(walkedPaths(set),
              (TextPaths{{u"x", u"x"}, {u"x", u"y"}, {u"x", u"y"}, {u"x", u"x"}}));

    HuffmanPathTree again;
    reload(set, again);
    EXPECT_EQ(walkedPaths(again), walkedPaths(set));
}

TEST(SavedSetReader, goesOnAfterPathsThatWereAddedAgainAtNumbersThatAreTaken) {
    SavedBody body = twoFiles().folders({2}, {{0}});
    body.tracks().byte(1).sized({0, 1}).byte(200).sized({0}).byte(0).sized({0, 0});
    HuffmanPathTree set;
    load(set, body);
    EXPECT_EQ(set.size(), 5U);
    addSinglePath(set, {u"x", u"x"});
    EXPECT_TRUE(set.hasDuplicate(6));
    EXPECT_EQ(HuffmanPathTreePeer::maxTrackKey(set), 200U);
    HuffmanPathTree again;
    reload(set, again);
    EXPECT_EQ(HuffmanPathTreePeer::pathTracks(again), HuffmanPathTreePeer::pathTracks(set));
}

TEST(SavedSetReader, addsToASetItHasReadAsToTheOneThatWasSaved) {
    const TextEntries had{{{u"a"}, {u"b", u"c"}}, {{u"a", u"c"}, {u"d"}}, {{}, {u"e"}}};
    const TextEntries more{
        {{u"a", u"c"}, {u"f"}}, {{u"e"}, {u"g"}}, {{u"a"}, {u"h"}}, {{}, {u"i"}}};
    HuffmanPathTree set;
    buildSet(set, had);
    addSinglePath(set, {u"a", u"b"});
    HuffmanPathTree loaded;
    reload(set, loaded, true);
    addBatch(set, more);
    addBatch(loaded, more);
    EXPECT_EQ(savedForm(loaded), savedForm(set));
    EXPECT_EQ(walkedPaths(loaded), walkedPaths(set));
}

}  // namespace
}  // namespace compressedpaths
