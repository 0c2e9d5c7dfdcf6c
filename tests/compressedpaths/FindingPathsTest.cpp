#include <gtest/gtest.h>

#include <random>

#include "tests/support/PathSets.hpp"

namespace compressedpaths {
namespace {

using FolderId = HuffmanPathTree::FolderId;
using NumberRange = HuffmanPathTree::NumberRange;
using Numbers = std::vector<std::size_t>;

const TextEntries kSearchedEntries{{{u"a"}, {u"x", u"y"}},        // 1, 2
                                   {{u"a", u"b"}, {u"x"}},        // 3
                                   {{u"c"}, {u"x", u"x"}},        // 4, 5
                                   {{u"a"}, {u"z", u"x", u"q"}},  // 6 to 8
                                   {{u"a", u"y"}, {u"deep"}},     // 9; y was a file
                                   {{}, {u"top"}},                // 10
                                   {{u"a", u"d", u"e"}, {}}};

FolderId folder(const HuffmanPathTree& set, const Names& components) {
    const auto found = set.folderOf(components);
    EXPECT_TRUE(found.has_value());
    return found.value_or(FolderId{0});
}

Names namesIn(const HuffmanPathTree& set, FolderId id) {
    Names names;
    for (const FolderId inside : set.foldersIn(id)) names.push_back(set.nameOf(inside));
    return names;
}

TEST(FindingPaths, leadsToFoldersByTheirComponents) {
    HuffmanPathTree set;
    buildSet(set, kSearchedEntries);
    EXPECT_EQ(folder(set, {}), FolderId{0});
    EXPECT_EQ(set.nameOf(folder(set, {u"a", u"d", u"e"})), u"e");
    EXPECT_EQ(set.parentOf(folder(set, {u"a", u"b"})), folder(set, {u"a"}));
    EXPECT_EQ(set.parentOf(folder(set, {u"c"})), FolderId{0});
    EXPECT_EQ(set.nameOf(FolderId{0}), u"");
    EXPECT_EQ(set.parentOf(FolderId{0}), FolderId{0});
}

TEST(FindingPaths, leadsNowhereWithoutSuchAFolder) {
    HuffmanPathTree set;
    buildSet(set, kSearchedEntries);
    for (const Names& components :
         {Names{u"b"}, Names{u"a", u"x"}, Names{u"a", u"b", u"x"}, Names{u"a", u"b", u"b"},
          Names{u"ab"}, Names{u""}, Names{u"a", u""}, Names{u"\u00E9"}, Names{u"top"}})
        EXPECT_FALSE(set.folderOf(components).has_value());
    EXPECT_FALSE(HuffmanPathTree().folderOf({u"a"}).has_value());
    EXPECT_EQ(HuffmanPathTree().folderOf({}), FolderId{0});
}

TEST(FindingPaths, leadsToAFileOnceItIsAFolder) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b", u"c"}}});
    EXPECT_FALSE(set.folderOf({u"a", u"b"}).has_value());
    addBatch(set, {{{u"a", u"b"}, {u"d"}}});
    EXPECT_EQ(set.nameOf(folder(set, {u"a", u"b"})), u"b");
    EXPECT_EQ(set.numberOf(folder(set, {u"a", u"b"}), u"d"), 3U);
    EXPECT_EQ(set.numberOf(folder(set, {u"a"}), u"b"), 1U);
}

TEST(FindingPaths, listsTheFoldersInAFolderInTheOrderOfTheirMaking) {
    HuffmanPathTree set;
    buildSet(set, kSearchedEntries);
    EXPECT_EQ(namesIn(set, FolderId{0}), (Names{u"a", u"c"}));
    EXPECT_EQ(namesIn(set, folder(set, {u"a"})), (Names{u"b", u"y", u"d"}));
    EXPECT_EQ(namesIn(set, folder(set, {u"c"})), Names{});
    addBatch(set, {{{u"c", u"z"}, {u"f"}}, {{u"c", u"a"}, {u"f"}}});
    EXPECT_EQ(namesIn(set, folder(set, {u"c"})), (Names{u"z", u"a"}));
}

TEST(FindingPaths, givesTheNumbersOfTheFilesThatWereAddedToAFolder) {
    HuffmanPathTree set;
    buildSet(set, kSearchedEntries);
    using Ranges = std::vector<NumberRange>;
    EXPECT_EQ(set.entriesOf(folder(set, {u"a"})), (Ranges{{1, 2}, {6, 8}}));
    EXPECT_EQ(set.entriesOf(folder(set, {u"a", u"y"})), (Ranges{{9, 9}}));
    EXPECT_EQ(set.entriesOf(FolderId{0}), (Ranges{{10, 10}}));
    EXPECT_EQ(set.entriesOf(folder(set, {u"a", u"d"})), Ranges{});
    EXPECT_EQ(set.entriesOf(folder(set, {u"a", u"d", u"e"})), Ranges{});
    addBatch(set, {{{u"a", u"d"}, {u"late"}}});
    EXPECT_EQ(set.entriesOf(folder(set, {u"a", u"d"})), (Ranges{{11, 11}}));
}

TEST(FindingPaths, givesTheLowestNumberOfAName) {
    HuffmanPathTree set;
    buildSet(set, kSearchedEntries);
    const FolderId a = folder(set, {u"a"});
    EXPECT_EQ(set.numberOf(a, u"x"), 1U);
    EXPECT_EQ(set.numberOf(a, u"y"), 2U);
    EXPECT_EQ(set.numberOf(a, u"q"), 8U);
    EXPECT_EQ(set.numberOf(folder(set, {u"c"}), u"x"), 4U);
    EXPECT_EQ(set.numberOf(FolderId{0}, u"top"), 10U);
    for (const std::u16string& name : Names{u"b", u"xx", u"", u"\u00E9", u"deep", u"top"})
        EXPECT_FALSE(set.numberOf(a, name).has_value());
    addBatch(set, {{{u"a"}, {u"x", u"new"}}});
    EXPECT_EQ(set.numberOf(a, u"x"), 1U);
    EXPECT_EQ(set.numberOf(a, u"new"), 12U);
}

TEST(FindingPaths, refusesFoldersThatThereAreNot) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b"}}});
    for (const FolderId id : {FolderId{2}, FolderId{0xFFFFFFFF}}) {
        EXPECT_THROW(set.foldersIn(id), InvalidTrackException);
        EXPECT_THROW(set.entriesOf(id), InvalidTrackException);
        EXPECT_THROW(set.numberOf(id, u"b"), InvalidTrackException);
        EXPECT_THROW(set.nameOf(id), InvalidTrackException);
        EXPECT_THROW(set.parentOf(id), InvalidTrackException);
        EXPECT_THROW(set.foldersNamed(id, u"b", u'/'), InvalidTrackException);
    }
}

Names namesNamed(const HuffmanPathTree& set, FolderId parent, std::u16string_view name) {
    Names names;
    for (const FolderId id : set.foldersNamed(parent, name, u'/')) names.push_back(set.nameOf(id));
    return names;
}

TEST(FoldersNamed, areThoseWithAnyNumberOfFillersAfterTheName) {
    HuffmanPathTree set;
    const Names all{u"b//", u"b", u"bb", u"c", u"b/", u"b/c", u"/b", u"//", u"b////", u"/"};
    TextEntries entries;
    for (const std::u16string& name : all) entries.push_back({{u"a", name}, {u"x"}});
    buildSet(set, entries);
    const FolderId a = folder(set, {u"a"});
    EXPECT_EQ(namesNamed(set, a, u"b"), (Names{u"b//", u"b", u"b/", u"b////"}));
    EXPECT_EQ(namesNamed(set, a, u"b/"), (Names{u"b//", u"b/", u"b////"}));
    EXPECT_EQ(namesNamed(set, a, u""), (Names{u"//", u"/"}));
    EXPECT_EQ(namesNamed(set, a, u"bb"), Names{u"bb"});
    for (const std::u16string_view name : {u"d", u"\u00E9", u"ccc", u"x"})
        EXPECT_EQ(namesNamed(set, a, name), Names{});
    EXPECT_EQ(namesNamed(set, folder(set, {u"a", u"b"}), u"b"), Names{});
    EXPECT_EQ(namesNamed(HuffmanPathTree(), FolderId{0}, u"b"), Names{});
}

TEST(FoldersNamed, mayHaveNamesOfAnyLength) {
    HuffmanPathTree set;
    TextEntries entries;
    Names expected;
    for (std::size_t length = 1; length <= 120; length += 7) {
        for (const std::size_t count : {0U, 1U, 30U, 90U}) {
            const std::u16string name = std::u16string(length, u'n') + std::u16string(count, u'/');
            entries.push_back({{name}, {u"x"}});
            if (length == 43) expected.push_back(name);
        }
    }
    buildSet(set, entries);
    EXPECT_EQ(namesNamed(set, FolderId{0}, std::u16string(43, u'n')), expected);
}

// Without a code for it nothing can follow the name.
TEST(FoldersNamed, needNoCodeForTheFiller) {
    HuffmanPathTree set;
    makeCode(set, u"ab");
    addBatch(set, {{{u"a"}, {u"b"}}});
    EXPECT_EQ(namesNamed(set, FolderId{0}, u"a"), Names{u"a"});
    EXPECT_EQ(namesNamed(set, FolderId{0}, u""), Names{});
}

TEST(FindingPaths, findsInALoadedSetWhatItFoundBefore) {
    HuffmanPathTree set;
    buildSet(set, kSearchedEntries);
    HuffmanPathTree loaded;
    reload(set, loaded);
    for (const TextEntry& entry : kSearchedEntries) {
        if (entry.files.empty()) continue;  // a folder with nothing in it is saved as a leaf
        const FolderId id = folder(loaded, entry.folder);
        EXPECT_EQ(namesIn(loaded, id).size(), namesIn(set, folder(set, entry.folder)).size());
        EXPECT_EQ(loaded.entriesOf(id), set.entriesOf(folder(set, entry.folder)));
        for (const std::u16string& file : entry.files)
            EXPECT_EQ(loaded.numberOf(id, file), set.numberOf(folder(set, entry.folder), file));
    }
}

TEST(NumbersNamed, areThoseOfAllFilesWithAnyNumberOfFillersAfterTheName) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b", u"b//", u"bb", u"/", u"b"}},
                   {{u"c"}, {u"b"}},
                   {{u"a"}, {u"/b", u"b/c", u"b/", u"//"}}});
    const FolderId a = folder(set, {u"a"});
    EXPECT_EQ(set.numbersNamed(a, u"b", u'/'), (Numbers{1, 2, 5, 9}));
    EXPECT_EQ(set.numbersNamed(a, u"b/", u'/'), (Numbers{2, 9}));
    EXPECT_EQ(set.numbersNamed(a, u"", u'/'), (Numbers{4, 10}));
    EXPECT_EQ(set.numbersNamed(a, u"bb", u'/'), Numbers{3});
    EXPECT_EQ(set.numbersNamed(a, u"b", u'\u00E9'), (Numbers{1, 5}));
    for (const std::u16string_view name : {u"c", u"\u00E9", u"bbb"})
        EXPECT_EQ(set.numbersNamed(a, name, u'/'), Numbers{});
    EXPECT_EQ(set.numbersNamed(a, u"", u'\u00E9'), Numbers{});
    EXPECT_EQ(set.numbersNamed(FolderId{0}, u"b", u'/'), Numbers{});
    EXPECT_THROW(set.numbersNamed(FolderId{9}, u"b", u'/'), InvalidTrackException);
}

// --- Entries.

struct VisitedEntry {
    FolderId folder;
    NumberRange numbers;

    bool operator==(const VisitedEntry&) const = default;
};

std::vector<VisitedEntry> entriesIn(const HuffmanPathTree& set, NumberRange range) {
    std::vector<VisitedEntry> entries;
    set.forEachEntry(range, [&](FolderId id, NumberRange numbers) {
        entries.push_back({id, numbers});
    });
    return entries;
}

TEST(EachEntry, isGivenInTheOrderOfTheNumbers) {
    HuffmanPathTree set;
    buildSet(set, kSearchedEntries);
    const FolderId a = folder(set, {u"a"});
    const std::vector<VisitedEntry> all{
        {a, {1, 2}}, {folder(set, {u"a", u"b"}), {3, 3}}, {folder(set, {u"c"}), {4, 5}},
        {a, {6, 8}}, {folder(set, {u"a", u"y"}), {9, 9}}, {FolderId{0}, {10, 10}}};
    EXPECT_EQ(entriesIn(set, {1, 10}), all);
    EXPECT_EQ(entriesIn(set, {2, 4}),
              (std::vector<VisitedEntry>{{a, {2, 2}}, all[1], {all[2].folder, {4, 4}}}));
    EXPECT_EQ(entriesIn(set, {7, 7}), (std::vector<VisitedEntry>{{a, {7, 7}}}));
    EXPECT_EQ(entriesIn(set, {5, 4}), std::vector<VisitedEntry>{});
}

TEST(EachEntry, isRefusedForNumbersThatThereAreNot) {
    HuffmanPathTree set;
    buildSet(set, kSearchedEntries);
    EXPECT_THROW(entriesIn(set, {0, 3}), InvalidPathNumberException);
    EXPECT_THROW(entriesIn(set, {3, 11}), InvalidPathNumberException);
    EXPECT_THROW(entriesIn(HuffmanPathTree(), {1, 1}), InvalidPathNumberException);
}

TEST(EachEntry, passesOverNumbersOfPathsThatWereAddedOnTheirOwn) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b", u"c"}}});
    addSinglePath(set, {u"a", u"d"});
    EXPECT_EQ(entriesIn(set, {1, 3}), (std::vector<VisitedEntry>{{folder(set, {u"a"}), {1, 2}}}));
    EXPECT_EQ(entriesIn(set, {3, 3}), std::vector<VisitedEntry>{});
}

// --- Names that hold a text.

TEST(FoldersNamedWith, areThoseWhoseOwnNamesHoldTheText) {
    HuffmanPathTree set;
    buildSet(set, {{{u"needle-work", u"inside"}, {u"needle"}},
                   {{u"nee", u"dle", u"needle"}, {u"x"}},
                   {{}, {u"needle"}}});
    std::vector<bool> expected(set.folderCount(), false);
    ASSERT_EQ(expected.size(), 6U);
    EXPECT_EQ(set.foldersNamedWith(u"needles"), expected);
    EXPECT_EQ(set.foldersNamedWith(u"\u00E9"), expected);
    for (const Names& components : {Names{u"needle-work"}, Names{u"nee", u"dle", u"needle"}})
        expected[static_cast<std::size_t>(folder(set, components))] = true;
    EXPECT_EQ(set.foldersNamedWith(u"needle"), expected);
    EXPECT_EQ(set.foldersNamedWith(u""), std::vector<bool>(6, true));
    EXPECT_EQ(HuffmanPathTree().foldersNamedWith(u"a"), std::vector<bool>{false});
}

Numbers numbersWith(const HuffmanPathTree& set, std::u16string_view text, NumberRange range) {
    Numbers numbers;
    set.forEachNameWith(text, range, [&](std::size_t number) { numbers.push_back(number); });
    return numbers;
}
Numbers numbersWith(const HuffmanPathTree& set, std::u16string_view text) {
    return numbersWith(set, text, {1, set.size()});
}

TEST(NamesWith, areThoseOfTheFilesAlone) {
    HuffmanPathTree set;
    buildSet(set, {{{u"needle"}, {u"needle.txt", u"nee", u"dle"}}, {{}, {u"a-needle"}}});
    EXPECT_EQ(numbersWith(set, u"needle"), (Numbers{1, 4}));
    EXPECT_EQ(numbersWith(set, u"dlenee"), Numbers{});
    EXPECT_EQ(numbersWith(set, u"needle/needle"), Numbers{});
    EXPECT_EQ(numbersWith(set, u"needledle"), Numbers{});
}

TEST(NamesWith, areAllForNoTextAndNoneForOneThatTheCodeCannotWrite) {
    HuffmanPathTree set;
    buildSet(set, kSearchedEntries);
    EXPECT_EQ(numbersWith(set, u""), (Numbers{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(numbersWith(set, u"\u00E9"), Numbers{});
    EXPECT_EQ(numbersWith(set, u"x\u00E9"), Numbers{});
}

TEST(NamesWith, areThoseOfTheRange) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, Names(20, u"longer-name")}, {{u"b"}, Names(20, u"longer-name")}});
    addSinglePath(set, {u"longer-name"});
    EXPECT_EQ(numbersWith(set, u"longer", {7, 7}), (Numbers{7}));
    EXPECT_EQ(numbersWith(set, u"longer", {19, 22}), (Numbers{19, 20, 21, 22}));
    EXPECT_EQ(numbersWith(set, u"longer", {39, 41}), (Numbers{39, 40}));
    EXPECT_EQ(numbersWith(set, u"longer", {41, 41}), Numbers{});
    EXPECT_EQ(numbersWith(set, u"longer", {5, 4}), Numbers{});
    EXPECT_THROW(numbersWith(set, u"longer", {0, 4}), InvalidPathNumberException);
    EXPECT_THROW(numbersWith(set, u"longer", {4, 42}), InvalidPathNumberException);
}

// A loaded set has its runs in the order of the trie, not in that of the numbers.
TEST(NamesWith, areFoundWhereverTheRunsOfTheEntriesAre) {
    std::mt19937 random(23);
    for (int round = 0; round < 20; ++round) {
        TextEntries entries;
        for (int i = 0; i < 300; ++i) {
            const auto digit = static_cast<char16_t>(u'0' + random() % 10);
            TextEntry entry{{u"dir", std::u16string(1 + random() % 2, digit)}, {}};
            for (std::size_t left = 1 + random() % 4; left > 0; --left)
                entry.files.push_back(random() % 40 == 0 ? u"file-needle" : u"file-needed");
            entries.push_back(entry);
        }
        HuffmanPathTree set;
        buildSet(set, entries);
        HuffmanPathTree loaded;
        reload(set, loaded);
        const TextPaths paths = pathsOf(entries);
        const NumberRange range{1 + random() % 100, paths.size() - random() % 100};
        Numbers expected;
        for (std::size_t number = range.first; number <= range.last; ++number)
            if (paths[number - 1].back().find(u"needle") != std::u16string::npos)
                expected.push_back(number);
        EXPECT_EQ(numbersWith(set, u"needle", range), expected) << round;
        EXPECT_EQ(numbersWith(loaded, u"needle", range), expected) << round;
    }
}

// In front of the text stand 0 to 15 characters of one bit each, so that it begins at every bit of
// a byte.
TEST(NamesWith, holdTheTextAtAnyBit) {
    HuffmanPathTree set;
    const std::vector<double> frequencies{100, 4, 3, 2, 1, 1};
    set.deflateHuffman(frequencies.data(), u"1abcde");
    ASSERT_EQ(set.generateCodeFor(u"1").back(), 1);  // one bit
    for (std::size_t length = 1; length <= 20; ++length) {
        std::u16string text;
        for (std::size_t i = 0; i < length; ++i) text += u"abcde"[(i * i + length) % 5];
        TextEntry entry{{u"a"}, {}};
        for (std::size_t before = 0; before < 16; ++before)
            entry.files.push_back(std::u16string(before, u'1') + text +
                                  std::u16string(before % 3, u'1'));
        HuffmanPathTree names;
        names.deflateHuffman(frequencies.data(), u"1abcde");
        addBatch(names, {entry});
        Numbers all;
        for (std::size_t number = 1; number <= 16; ++number) all.push_back(number);
        EXPECT_EQ(numbersWith(names, text), all) << length;
        EXPECT_EQ(numbersWith(names, text + u'1' + text), Numbers{}) << length;
    }
}

/// A file name whose characters are few, so that texts are often there, or nearly.
std::u16string randomName(std::mt19937& random, std::size_t longest) {
    std::u16string name;
    for (std::size_t left = 1 + random() % longest; left > 0; --left)
        name += u"aabc\u00E9\u4E00"[random() % 6];
    return name;
}

TEST(NamesWith, areAllThatHoldTheTextAndNoOther) {
    std::mt19937 random(17);
    std::size_t hits = 0;
    for (int round = 0; round < 40; ++round) {
        TextEntries entries;
        for (std::size_t i = 1 + random() % 5; i > 0; --i) {
            TextEntry entry{{randomName(random, 2)}, {}};
            for (std::size_t left = random() % 60; left > 0; --left)
                entry.files.push_back(randomName(random, random() % 8 == 0 ? 300 : 20));
            entries.push_back(entry);
        }
        HuffmanPathTree set;
        makeCode(set, round % 2 == 0 ? u"abc\u00E9\u4E00" : u"\u4E00\u00E9" + kAlphabet);
        addBatch(set, entries);
        const TextPaths paths = pathsOf(entries);
        for (std::size_t length = 1; length <= 12; ++length) {
            const std::u16string name =
                paths.empty() ? u"a" : paths[random() % paths.size()].back();
            const std::u16string text = random() % 3 == 0 ? randomName(random, length)
                                                          : name.substr(name.size() / 3, length);
            Numbers expected;
            for (std::size_t i = 0; i < paths.size(); ++i)
                if (paths[i].back().find(text) != std::u16string::npos) expected.push_back(i + 1);
            ASSERT_EQ(numbersWith(set, text), expected) << round << ' ' << length;
            hits += expected.size();
        }
    }
    EXPECT_GT(hits, 1000U);
}

}  // namespace
}  // namespace compressedpaths
