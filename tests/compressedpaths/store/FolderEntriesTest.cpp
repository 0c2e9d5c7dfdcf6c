#include "compressedpaths/store/FolderEntries.hpp"

#include <gtest/gtest.h>

#include <random>

#include "compressedpaths/BPathTreeExceptions.hpp"

namespace compressedpaths {

// Where the test looks for them.
static bool operator==(const FolderEntries::Place& a, const FolderEntries::Place& b) {
    return a.existed == b.existed && a.run == b.run && a.skip == b.skip && a.folder == b.folder &&
           a.firstChild == b.firstChild;
}
static bool operator==(const FolderEntries::Entry& a, const FolderEntries::Entry& b) {
    return a.pathCount == b.pathCount && a.place == b.place;
}

namespace {

using Entry = FolderEntries::Entry;

Entry inRun(std::uint64_t pathCount, PathArena::Link run, std::uint32_t skip = 0,
            bool existed = false) {
    Entry entry;
    entry.pathCount = pathCount;
    entry.place.run = run;
    entry.place.skip = skip;
    entry.place.existed = existed;
    return entry;
}

Entry withoutRun(std::uint64_t pathCount, PathArena::Id folder, std::uint64_t firstChild,
                 bool existed = true) {
    Entry entry;
    entry.pathCount = pathCount;
    entry.place.folder = folder;
    entry.place.firstChild = firstChild;
    entry.place.existed = existed;
    return entry;
}

void append(FolderEntries& entries, const Entry& entry) {
    entries.reserveForOne();
    entries.append(entry);
}

FolderEntries indexOf(const std::vector<Entry>& list) {
    FolderEntries entries;
    for (const Entry& entry : list) append(entries, entry);
    return entries;
}

/// Asks for every entry by its number, by going on from the first, and by the path numbers at both
/// of its borders.
void expectEntries(const FolderEntries& entries, const std::vector<Entry>& expected) {
    ASSERT_EQ(entries.size(), expected.size());
    std::uint64_t before = 0;
    FolderEntries::Cursor cursor;
    for (std::size_t number = 0; number < expected.size(); ++number) {
        SCOPED_TRACE(number);
        if (number == 0)
            cursor = entries.at(0);
        else
            entries.advance(cursor);
        ASSERT_EQ(cursor.number, number);
        ASSERT_EQ(cursor.pathsBefore, before);
        ASSERT_TRUE(cursor.entry == expected[number]);
        const FolderEntries::Cursor direct = entries.at(number);
        ASSERT_EQ(direct.pathsBefore, before);
        ASSERT_TRUE(direct.entry == expected[number]);
        for (const std::uint64_t path : {before + 1, cursor.pathsUpTo()}) {
            if (cursor.entry.pathCount == 0) continue;
            const auto found = entries.holding(path);
            ASSERT_TRUE(found.has_value());
            ASSERT_EQ(found->number, number);
            ASSERT_EQ(found->pathsBefore, before);
            ASSERT_TRUE(found->entry == expected[number]);
        }
        before = cursor.pathsUpTo();
    }
    EXPECT_EQ(entries.pathCount(), before);
    EXPECT_FALSE(entries.holding(0).has_value());
    EXPECT_FALSE(entries.holding(before + 1).has_value());
}

std::vector<Entry> randomEntries(std::mt19937& random, std::size_t count) {
    std::vector<Entry> list;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t paths = random() % 3 == 0 ? random() % 1000 : random() % 3;
        const bool existed = random() % 2 == 0;
        if (random() % 4 == 0)
            list.push_back(withoutRun(paths, static_cast<PathArena::Id>(random() % 500),
                                      random() % 3 * 1000, existed));
        else
            list.push_back(inRun(paths, static_cast<PathArena::Link>(random() & 0x7FFFFFFF),
                                 static_cast<std::uint32_t>(random() % 3), existed));
    }
    return list;
}

TEST(FolderEntries, holdNothingBeforeAnythingIsInThem) {
    expectEntries(FolderEntries(), {});
}

TEST(FolderEntries, giveBackEntriesAcrossTheBordersOfBlocks) {
    std::mt19937 random(5);
    for (std::size_t count : {1U, 15U, 16U, 17U, 31U, 32U, 33U, 500U}) {
        SCOPED_TRACE(count);
        const std::vector<Entry> list = randomEntries(random, count);
        expectEntries(indexOf(list), list);
    }
}

TEST(FolderEntries, giveBackRunsAtAnyDistanceToAndFro) {
    const std::vector<Entry> list{inRun(1, 0),  inRun(1, 0x7FFFFFFF), inRun(1, 0),
                                  inRun(1, 50), inRun(1, 50, 3),      inRun(1, 49, 0xFFFFFFFE)};
    expectEntries(indexOf(list), list);
}

TEST(FolderEntries, countTheNextRunFromTheOneBeforeThoughAnEntryWithoutRunStandsBetween) {
    const std::vector<Entry> list{inRun(2, 1000), withoutRun(0, 7, 3), inRun(2, 1001)};
    const FolderEntries entries = indexOf(list);
    expectEntries(entries, list);
    EXPECT_EQ(entries.lastRun(), 1001U);
    EXPECT_EQ(entries.bytes().size(), (1U + 2) + (1 + 1 + 1) + (1 + 1));
}

TEST(FolderEntries, giveBackPlacesBeyondWhatAFolderCanHave) {
    const std::vector<Entry> list{withoutRun(0, 0xFFFFFFFE, ~std::uint64_t{0}),
                                  withoutRun(5, 0, 1, false)};
    expectEntries(indexOf(list), list);
}

TEST(FolderEntries, giveBackAsManyPathsAsAnEntryCanHave) {
    const std::vector<Entry> list{inRun(FolderEntries::kMaxPathCount, 8)};
    expectEntries(indexOf(list), list);
}

// Whole blocks of them, so that several blocks begin with the same total.
TEST(FolderEntries, passOverEntriesWithoutPaths) {
    std::vector<Entry> list{inRun(2, 10)};
    for (unsigned i = 0; i < 40; ++i) list.push_back(withoutRun(0, i, 0));
    list.push_back(inRun(1, 20));
    for (unsigned i = 0; i < 40; ++i) list.push_back(withoutRun(0, i, 0));
    expectEntries(indexOf(list), list);
}

TEST(FolderEntries, pairTotalsWithPlacesThatCome) {
    FolderEntries entries = indexOf({inRun(1, 5)});
    entries.reserveUnpaired(2, 0);
    entries.appendCount(3);
    entries.appendCount(4);
    append(entries, inRun(7, 90));
    expectEntries(entries, {inRun(1, 5), inRun(3, 90)});
    EXPECT_EQ(entries.unpairedCounts(), (std::vector<std::uint64_t>{4, 7}));
}

TEST(FolderEntries, pairPlacesWithTotalsThatCome) {
    FolderEntries entries;
    entries.reserveUnpaired(0, 2);
    entries.appendPlace(inRun(0, 5).place);
    entries.appendPlace(withoutRun(0, 6, 1).place);
    append(entries, inRun(7, 90));
    append(entries, inRun(8, 91));
    expectEntries(entries, {inRun(7, 5), withoutRun(8, 6, 1)});
    ASSERT_EQ(entries.unpairedPlaces().size(), 2U);
    EXPECT_TRUE(entries.unpairedPlaces()[0] == inRun(0, 90).place);
}

TEST(FolderEntries, areAsTheyWereAfterRollingBackFromAnywhere) {
    std::mt19937 random(9);
    for (const std::size_t kept : {0U, 1U, 15U, 16U, 17U, 40U}) {
        for (const std::size_t dropped : {1U, 2U, 20U}) {
            std::vector<Entry> list = randomEntries(random, kept);
            FolderEntries entries = indexOf(list);
            FolderEntries::Mark mark = entries.mark();
            for (const Entry& entry : randomEntries(random, dropped)) append(entries, entry);
            entries.rollBack(mark);
            expectEntries(entries, list);
            for (const Entry& entry : randomEntries(random, 20)) {
                append(entries, entry);
                list.push_back(entry);
            }
            expectEntries(entries, list);
        }
    }
}

TEST(FolderEntries, haveTheirUnpairedHalvesBackAfterRollingBack) {
    FolderEntries entries;
    entries.reserveUnpaired(2, 0);
    entries.appendCount(3);
    entries.appendCount(4);
    FolderEntries::Mark mark = entries.mark();
    append(entries, inRun(7, 90));
    entries.rollBack(mark);
    EXPECT_EQ(entries.size(), 0U);
    EXPECT_EQ(entries.unpairedCounts(), (std::vector<std::uint64_t>{3, 4}));
}

TEST(FolderEntries, refuseBytesThatEndAmongThem) {
    const std::vector<Entry> list{inRun(300, 70000, 5), withoutRun(300, 300, 300)};
    const FolderEntries whole = indexOf(list);
    for (std::size_t size = 0; size < whole.bytes().size(); ++size) {
        FlatArray<std::uint8_t> bytes(whole.bytes());
        bytes.truncate(size);
        const FolderEntries cut(std::move(bytes), FlatArray(whole.blocks()), 2, 600, 70000);
        EXPECT_THROW(cut.at(1), InvalidImageException) << size;
    }
}

TEST(FolderEntries, refuseTotalsThatNoBlockReaches) {
    const FolderEntries whole = indexOf({inRun(2, 5)});
    const FolderEntries more(FlatArray(whole.bytes()), FlatArray(whole.blocks()), 1, 3, 5);
    EXPECT_THROW(more.holding(3), InvalidImageException);
    const FolderEntries none(FlatArray<std::uint8_t>(), FlatArray<FolderEntries::Block>(), 0, 3, 5);
    EXPECT_THROW(none.holding(1), InvalidImageException);
    EXPECT_THROW(none.at(0), InvalidImageException);
}

TEST(FolderEntries, answerOrRefuseWhateverTheBytesAre) {
    std::mt19937 random(11);
    const FolderEntries whole = indexOf(randomEntries(random, 40));
    std::size_t refused = 0;
    for (int round = 0; round < 3000; ++round) {
        FlatArray<std::uint8_t> bytes(whole.bytes());
        bytes.at(random() % bytes.size()) = static_cast<std::uint8_t>(random());
        FlatArray<FolderEntries::Block> blocks(whole.blocks());
        if (round % 2 == 0) blocks.at(random() % blocks.size()).offset = random() % 400;
        const FolderEntries damaged(std::move(bytes), std::move(blocks), whole.size(),
                                    whole.pathCount(), whole.lastRun());
        const std::uint64_t path = 1 + random() % whole.pathCount();
        try {
            const auto found = damaged.holding(path);
            ASSERT_TRUE(found->pathsBefore < path && path <= found->pathsUpTo());
            for (std::size_t number = 0; number < damaged.size(); ++number)
                ASSERT_EQ(damaged.at(number).number, number);
        } catch (const InvalidImageException&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 0U);
}

}  // namespace
}  // namespace compressedpaths
