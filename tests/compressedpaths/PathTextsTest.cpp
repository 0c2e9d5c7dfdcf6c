// Paths as text: by number, over a range, and in the order of the walk.

#include <gtest/gtest.h>

#include <atomic>
#include <exception>
#include <random>
#include <thread>

#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

const TextEntries kTextEntries{{{u"/"}, {u"b", u"c"}},
                               {{u"/", u"usr", u"lib"}, {u"a.so", u"b.so"}},
                               {{}, {u"readme"}},
                               {{u"/", u"usr"}, {u"x"}},
                               {{u"/", u"b"}, {u"y", u"z"}}};
const std::vector<std::string> kTexts{"/b",     "/c",     "/usr/lib/a.so", "/usr/lib/b.so",
                                      "readme", "/usr/x", "/b/y",          "/b/z"};

std::string textOf(const HuffmanPathTree& set, std::size_t number,
                   std::string_view separator = "/") {
    std::string text;
    set.appendText(number, separator, text);
    return text;
}

std::u16string unitsOf(const HuffmanPathTree& set, std::size_t number,
                       std::u16string_view separator = u"/") {
    std::u16string text;
    set.appendText(number, separator, text);
    return text;
}

/// The text of the file in a root of its own, as bytes.
std::string bytesOfName(const std::u16string& name) {
    HuffmanPathTree set;
    std::u16string alphabet = u"ab";
    for (const char16_t unit : name)
        if (alphabet.find(unit) == std::u16string::npos) alphabet += unit;
    makeCode(set, alphabet);
    addBatch(set, {{{}, {name}}});
    EXPECT_EQ(unitsOf(set, 1), name);
    return textOf(set, 1);
}

using Numbered = std::vector<std::pair<std::size_t, std::string>>;

Numbered textsBetween(const HuffmanPathTree& set, std::size_t first, std::size_t last) {
    Numbered texts;
    set.forEachText(first, last, "/", [&](std::size_t number, std::string_view text) {
        texts.emplace_back(number, text);
    });
    return texts;
}

TEST(PathTexts, haveNoSeparatorAfterTheFirstComponent) {
    HuffmanPathTree set;
    buildSet(set, kTextEntries);
    for (std::size_t number = 1; number <= kTexts.size(); ++number) {
        EXPECT_EQ(textOf(set, number), kTexts[number - 1]);
        EXPECT_EQ(unitsOf(set, number),
                  std::u16string(kTexts[number - 1].begin(), kTexts[number - 1].end()));
    }
}

TEST(PathTexts, haveAnySeparatorBetweenTheOtherComponents) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a", u"b", u"c"}, {u"d"}}});
    EXPECT_EQ(textOf(set, 1, ""), "abcd");
    EXPECT_EQ(textOf(set, 1, " > "), "ab > c > d");
    EXPECT_EQ(unitsOf(set, 1, u""), u"abcd");
    EXPECT_EQ(unitsOf(set, 1, u"\xD83D\xDE00"),
              u"ab\xD83D\xDE00"
              u"c\xD83D\xDE00"
              u"d");
}

TEST(PathTexts, goToTheEndOfWhatIsThere) {
    HuffmanPathTree set;
    buildSet(set, kTextEntries);
    std::string text = "see ";
    set.appendText(1, "/", text);
    set.appendText(2, "/", text);
    EXPECT_EQ(text, "see /b/c");
}

TEST(PathTexts, areOfAsManyFoldersAsThereAre) {
    for (const std::size_t depth : {29U, 30U, 31U, 1000U}) {
        HuffmanPathTree set;
        buildSet(set, {{Names(depth, u"d"), {u"f"}}});
        std::string expected = "d";
        for (std::size_t level = 1; level < depth; ++level) expected += "d/";
        std::string text;
        set.appendText(1, "/", text);
        EXPECT_EQ(text, expected + "f");
    }
}

TEST(PathTexts, areUtf8) {
    EXPECT_EQ(bytesOfName(u"a\u00E9\u20AC\uFFFF"), "a\xC3\xA9\xE2\x82\xAC\xEF\xBF\xBF");
    EXPECT_EQ(bytesOfName(u"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
}

TEST(PathTexts, areTheByteWhereAUnitStandsForOne) {
    EXPECT_EQ(bytesOfName(u"a\xDC80\xDCFF"), "a\x80\xFF");
    EXPECT_EQ(bytesOfName(u"\xDCC3\xDCA9"), "\xC3\xA9");
    // The second half of a pair stands for no byte.
    EXPECT_EQ(bytesOfName(u"\xD83D\xDC80"), "\xF0\x9F\x92\x80");
    EXPECT_EQ(bytesOfName(u"\xD83D\xDC80\xDC80"), "\xF0\x9F\x92\x80\x80");
}

TEST(PathTexts, areThreeBytesOfAnyOtherHalfOfAPair) {
    EXPECT_EQ(bytesOfName(u"\xD83D"), "\xED\xA0\xBD");
    EXPECT_EQ(bytesOfName(u"\xDE00\xD83D"), "\xED\xB8\x80\xED\xA0\xBD");
    EXPECT_EQ(bytesOfName(u"\xDC7F"), "\xED\xB1\xBF");
    EXPECT_EQ(bytesOfName(u"\xD83D\xD83D\xDE00"), "\xED\xA0\xBD\xF0\x9F\x98\x80");
}

// Two components are two texts: the halves of a pair do not meet across their border.
TEST(PathTexts, makeNoPairOfTwoComponents) {
    HuffmanPathTree set;
    makeCode(set, u"a\xD83D\xDE00");
    addBatch(set, {{{u"a\xD83D"}, {u"\xDE00"}}});
    EXPECT_EQ(textOf(set, 1), "a\xED\xA0\xBD\xED\xB8\x80");
}

TEST(PathTexts, leaveTheTextAsItWasWithoutSuchANumber) {
    HuffmanPathTree set;
    buildSet(set, kTextEntries);
    addSinglePath(set, {u"new"});
    const std::size_t beyond = kTexts.size() + 2;
    for (const std::size_t number : {std::size_t{0}, kTexts.size() + 1, beyond, ~std::size_t{0}}) {
        std::string text = "as it was";
        EXPECT_THROW(set.appendText(number, "/", text), InvalidPathNumberException);
        EXPECT_EQ(text, "as it was");
        std::u16string units = u"as it was";
        EXPECT_THROW(set.appendText(number, u"/", units), InvalidPathNumberException);
        EXPECT_EQ(units, u"as it was");
    }
}

TEST(PathTexts, leaveTheTextAsItWasWhereNoCodeIsToDecodeWith) {
    HuffmanPathTree set;
    buildSet(set, kTextEntries);
    HuffmanPathTree loaded;
    Bytes saved = savedForm(set);
    loaded.deserialize(saved, false);
    std::string text = "as it was";
    EXPECT_THROW(loaded.appendText(1, "/", text), NoUsableCodingTreeException);
    EXPECT_EQ(text, "as it was");
}

TEST(PathTexts, comeInTheOrderOfTheirNumbers) {
    HuffmanPathTree set;
    buildSet(set, kTextEntries);
    for (std::size_t first = 1; first <= kTexts.size(); ++first) {
        for (std::size_t last = first - 1; last <= kTexts.size(); ++last) {
            Numbered expected;
            for (std::size_t number = first; number <= last; ++number)
                expected.emplace_back(number, kTexts[number - 1]);
            EXPECT_EQ(textsBetween(set, first, last), expected) << first << " to " << last;
        }
    }
}

TEST(PathTexts, areNoneOfARangeThatLeavesTheSet) {
    HuffmanPathTree set;
    buildSet(set, kTextEntries);
    EXPECT_THROW(textsBetween(set, 0, 3), InvalidPathNumberException);
    EXPECT_THROW(textsBetween(set, 1, kTexts.size() + 1), InvalidPathNumberException);
    EXPECT_TRUE(textsBetween(set, 5, 4).empty());
    EXPECT_TRUE(textsBetween(set, 1, 0).empty());
}

using Numbers = std::vector<std::size_t>;

Numbered textsOf(const HuffmanPathTree& set, const Numbers& numbers) {
    Numbered texts;
    set.forEachText(numbers, "/", [&](std::size_t number, std::string_view text) {
        texts.emplace_back(number, text);
    });
    return texts;
}

TEST(PathTexts, comeInTheOrderOfAnyNumbers) {
    HuffmanPathTree set;
    buildSet(set, kTextEntries);
    for (const Numbers& numbers : {Numbers{}, Numbers{5}, Numbers{8, 1, 4, 4, 4, 2, 7, 8, 3, 6}}) {
        Numbered expected;
        for (const std::size_t number : numbers) expected.emplace_back(number, kTexts[number - 1]);
        EXPECT_EQ(textsOf(set, numbers), expected);
    }
}

/// Files in runs with and without samples, narrow and wide ones, in entries that begin within runs.
HuffmanPathTree& fillWithRuns(HuffmanPathTree& set) {
    TextEntries entries;
    for (const std::size_t size : {1U, 16U, 17U, 200U, 7000U, 3U}) {
        TextEntry entry{{u"d", std::u16string(size % 5 + 1, u'd')}, {}};
        for (std::size_t i = 0; i < size; ++i)
            entry.files.push_back(std::u16string(1 + i % 90, u'x') + (i % 2 == 0 ? u"a" : u"b"));
        entries.push_back(entry);
    }
    entries.push_back({{u"d", u"dd"}, {u"more", u"of", u"it"}});
    buildSet(set, entries);
    return set;
}

TEST(PathTexts, ofAnyNumbersAreThoseOfEach) {
    HuffmanPathTree made;
    const HuffmanPathTree& set = fillWithRuns(made);
    std::mt19937 random(1);
    for (const std::size_t size : {1U, 15U, 16U, 17U, 5000U}) {
        Numbers numbers(size);
        for (std::size_t& number : numbers) number = 1 + random() % set.size();
        Numbered expected;
        for (const std::size_t number : numbers) expected.emplace_back(number, textOf(set, number));
        EXPECT_EQ(textsOf(set, numbers), expected);
    }
}

TEST(PathTexts, ofNumbersThatThereAreNotAreRefused) {
    HuffmanPathTree set;
    buildSet(set, kTextEntries);
    for (const std::size_t number : {std::size_t{0}, kTexts.size() + 1, ~std::size_t{0}})
        EXPECT_THROW(textsOf(set, {1, number}), InvalidPathNumberException);
    addSinglePath(set, {u"new"});
    EXPECT_THROW(textsOf(set, {1, kTexts.size() + 1}), InvalidPathNumberException);
    EXPECT_THROW(textsOf(HuffmanPathTree(), {1}), InvalidPathNumberException);
}

TEST(PathTexts, passOverPathsThatWereAddedOnTheirOwn) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a"}, {u"b"}}});
    addSinglePath(set, {u"a", u"b"});
    addSinglePath(set, {u"c"});
    EXPECT_EQ(textsBetween(set, 1, 3), (Numbered{{1, "ab"}}));
    EXPECT_TRUE(textsBetween(set, 2, 3).empty());
}

struct Untaken : std::exception {};

/// The walk as text, the same by decoding each of its paths, and by a visitor who cannot take a
/// path when it first comes, with the same additions at the same steps.
void expectSameWalk(const TextEntries& entries, const std::vector<TextPath>& again,
                    const std::vector<std::pair<std::size_t, TextEntries>>& added) {
    HuffmanPathTree texts;
    HuffmanPathTree paths;
    HuffmanPathTree visits;
    for (HuffmanPathTree* const set : {&texts, &paths, &visits}) {
        buildSet(*set, entries);
        for (const TextPath& path : again) addSinglePath(*set, path);
        set->resetPathsToBTree();
    }
    std::size_t step = 0;
    for (; paths.hasNextPathFromBTree(); ++step) {
        for (const auto& [at, more] : added) {
            if (at != step) continue;
            for (HuffmanPathTree* const set : {&texts, &paths, &visits}) addBatch(*set, more);
        }
        Path path;
        paths.getNextPathFromBTree(path);
        ASSERT_THROW(visits.visitNextPathFromBTree([](const Path&) { throw Untaken(); }), Untaken);
        visits.visitNextPathFromBTree([&](const Path& visited) { ASSERT_EQ(visited, path); });
        std::u16string expected;
        for (std::size_t i = 0; i < path.size(); ++i)
            expected += (i > 1 ? u"/" : u"") + paths.generatePathFrom(path[i]);
        ASSERT_TRUE(texts.hasNextPathFromBTree());
        std::string text = "of the step before";
        texts.getNextTextFromBTree("/", text);
        ASSERT_EQ(text, std::string(expected.begin(), expected.end())) << "step " << step;
    }
    EXPECT_GT(step, 0U);
    EXPECT_FALSE(texts.hasNextPathFromBTree());
    std::string text = "as it was";
    EXPECT_THROW(texts.getNextTextFromBTree("/", text), NoMorePathException);
    EXPECT_EQ(text, "as it was");
    EXPECT_THROW(visits.visitNextPathFromBTree([](const Path&) {}), NoMorePathException);
}

TEST(PathTexts, ofTheWalkAreThoseOfItsPaths) {
    expectSameWalk(kTextEntries, {}, {});
}

TEST(PathTexts, ofTheWalkHoldPathsAddedAgainAtTheirNumbers) {
    expectSameWalk({{{u"a"}, {u"b"}}}, {{u"a", u"b"}, {u"c"}, {u"a", u"b"}, {u"c"}, {u"a"}}, {});
}

TEST(PathTexts, ofTheWalkGoOnAsItsPathsDoWhenAWalkIsAddedTo) {
    const TextEntries more{{{u"/", u"usr", u"lib"}, {u"new"}}, {{u"/", u"c"}, {u"new"}}};
    for (std::size_t at = 0; at < kTexts.size(); ++at) {
        SCOPED_TRACE(at);
        expectSameWalk(kTextEntries, {{u"/", u"usr"}}, {{at, more}});
        expectSameWalk(kTextEntries, {{u"/", u"c"}}, {{at, more}, {at + 1, more}});
    }
}

TEST(PathTexts, ofTheWalkMixWithItsPathsAndWithOtherSeparators) {
    HuffmanPathTree set;
    buildSet(set, {{{u"a", u"b", u"c"}, {u"1", u"2", u"3", u"4"}}});
    set.resetPathsToBTree();
    std::string text;
    set.getNextTextFromBTree("/", text);
    EXPECT_EQ(text, "ab/c/1");
    Path path;
    set.getNextPathFromBTree(path);
    EXPECT_EQ(decoded(set, path).back(), u"2");
    set.getNextTextFromBTree("-", text);
    EXPECT_EQ(text, "ab-c-3");
    set.getNextTextFromBTree("/", text);
    EXPECT_EQ(text, "ab/c/4");
}

TEST(PathTexts, areReadByManyThreadsAtOnce) {
    HuffmanPathTree set;
    TextEntries entries = kTextEntries;
    TextEntry many{{u"many"}, {}};
    for (std::size_t i = 0; i < 100; ++i) many.files.push_back(u"n" + std::u16string(i % 7, u'x'));
    entries.push_back(many);
    buildSet(set, entries);
    const Numbered expected = textsBetween(set, 1, set.size());
    const HuffmanPathTree& shared = set;
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            bool isRight = true;
            for (int round = 0; round < 20; ++round) {
                isRight = isRight && textsBetween(shared, 1, shared.size()) == expected;
                isRight = isRight && textOf(shared, 8) == kTexts[7];
                isRight = isRight && shared.numberOf(*shared.folderOf({u"/"}), u"c") == 2;
            }
            if (isRight) ++right;
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, 4);
}

}  // namespace
}  // namespace compressedpaths
