#include "compressedpaths/store/PathArena.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "compressedpaths/SavedForm.hpp"
#include "compressedpaths/store/Hashing.hpp"
#include "compressedpaths/store/TrieBuilder.hpp"
#include "compressedpaths/store/TrieOrder.hpp"
#include "tests/compressedpaths/store/Arenas.hpp"

namespace compressedpaths {
namespace {

using Id = PathArena::Id;
using Transaction = PathArena::Transaction;

TEST(PathArena, hasARootWithNothingInItAtFirst) {
    PathArena arena;
    EXPECT_EQ(arena.folderCount(), 1U);
    EXPECT_EQ(listing(arena), "");
    EXPECT_THROW(arena.firstChild(PathArena::kRoot), InvalidImageException);
    EXPECT_FALSE(find(arena, PathArena::kRoot, "a").isThere());
}

TEST(PathArena, hasNoNodesAtFirst) {
    EXPECT_EQ(countNodes(PathArena(), 0), 0U);
}

TEST(PathArena, listsFilesAndFoldersInTheOrderOfAdding) {
    PathArena arena;
    addFiles(arena, PathArena::kRoot, {"f", "g"});
    const Id a = makeFolder(arena, PathArena::kRoot, "a");
    addFiles(arena, PathArena::kRoot, {"h"});
    const Id b = makeFolder(arena, a, "b");
    addFiles(arena, b, {"i"});
    addFiles(arena, a, {"j", "k"});
    EXPECT_EQ(listing(arena), "f g a [ b [ i ] j k ] h ");
    EXPECT_EQ(childrenOf(arena, PathArena::kRoot), (std::vector<std::string>{"f", "g", "a/", "h"}));
    EXPECT_EQ(childrenOf(arena, a), (std::vector<std::string>{"b/", "j", "k"}));
}

// Samples are made from 17 names on, every eighth of them; of four bytes where two are too few.
TEST(PathArena, findsEveryNameOfRunsOfAnySize) {
    for (const std::size_t count : {1U, 8U, 16U, 17U, 24U, 25U, 32U, 33U, 1000U}) {
        for (const std::size_t length : {0U, 40U, 5000U}) {
            if (length * count > 2'000'000) continue;
            SCOPED_TRACE(std::to_string(count) + " names " + std::to_string(length));
            PathArena arena;
            makeFolder(arena, PathArena::kRoot, "before");
            const std::vector<std::string> names = numberedNames(count, length);
            const auto [link, skip] = addFiles(arena, PathArena::kRoot, names);
            makeFolder(arena, PathArena::kRoot, "after");
            ASSERT_EQ(skip, 0U);
            const PathArena::Run run = arena.runAt(link);
            ASSERT_EQ(run.count, count);
            EXPECT_EQ(run.hasWideSamples, count > 16 && length * count > 0xFFFF);
            for (std::uint32_t i = 0; i < count; ++i) {
                ASSERT_EQ(textOf(arena.nameAt(arena.nameOffset(run, i))), names[i]);
                ASSERT_EQ(arena.positionOf(PathArena::Place{link, i}), i + 1);
            }
            EXPECT_EQ(childrenOf(arena, PathArena::kRoot).size(), count + 2);
        }
    }
}

TEST(PathArena, letsTheRunAtTheEndGrowUpToSixteenFiles) {
    PathArena arena;
    const Id folder = makeFolder(arena, PathArena::kRoot, "a");
    const PathArena::Link first = addFiles(arena, folder, {"n0"}).run;
    for (std::uint32_t i = 1; i < 16; ++i) {
        const auto [run, skip] = addFiles(arena, folder, {'n' + std::to_string(i)});
        ASSERT_EQ(run, first);
        ASSERT_EQ(skip, i);
    }
    EXPECT_NE(addFiles(arena, folder, {"n16"}).run, first);
    EXPECT_EQ(childrenOf(arena, folder), numberedNames(17));
}

TEST(PathArena, beginsARunWhereTheLastOneIsNotAtTheEndOfTheNames) {
    PathArena arena;
    const Id a = makeFolder(arena, PathArena::kRoot, "a");
    const Id b = makeFolder(arena, PathArena::kRoot, "b");
    const PathArena::Link first = addFiles(arena, a, {"1"}).run;
    addFiles(arena, b, {"2"});
    EXPECT_NE(addFiles(arena, a, {"3"}).run, first);
    const PathArena::Link third = addFiles(arena, a, {"4"}).run;
    makeFolder(arena, b, "c");
    EXPECT_NE(addFiles(arena, a, {"5"}).run, third);
    EXPECT_EQ(listing(arena), "a [ 1 3 4 5 ] b [ 2 c [ ] ] ");
}

TEST(PathArena, keepsAFileThatBecomesAFolderInItsPlace) {
    for (const std::uint32_t count : {3U, 40U}) {
        PathArena arena;
        const std::vector<std::string> names = numberedNames(count);
        const PathArena::Link run = addFiles(arena, PathArena::kRoot, names).run;
        Transaction adding(arena);
        const Id folder = adding.makeFolderOf({run, 1});
        append(adding, folder, {"x"});
        adding.commit();
        EXPECT_EQ(arena.folderAt(PathArena::Place{run, 1}), folder);
        EXPECT_EQ(arena.folderAt(PathArena::Place{run, 0}), PathArena::kNone);
        EXPECT_EQ(arena.positionOf(folder), 1U);
        EXPECT_EQ(textOf(arena.nameOf(folder)), "n1");
        EXPECT_EQ(find(arena, PathArena::kRoot, "n1").folder, folder);
        std::vector<std::string> expected = names;
        expected[1] += '/';
        EXPECT_EQ(childrenOf(arena, PathArena::kRoot), expected);
        EXPECT_EQ(childrenOf(arena, folder), (std::vector<std::string>{"x"}));
    }
}

TEST(PathArena, findsTheFirstChildOfANameInNarrowAndWideFolders) {
    for (const std::size_t count : {10U, 63U, 64U, 65U, 300U}) {
        SCOPED_TRACE(count);
        PathArena arena;
        const std::vector<std::string> names = numberedNames(count);
        const PathArena::Link first = addFiles(arena, PathArena::kRoot, names).run;
        const Id folder = makeFolder(arena, PathArena::kRoot, "folder");
        addFiles(arena, PathArena::kRoot, names);  // twins, found by nobody
        addFiles(arena, PathArena::kRoot, {"folder"});
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto found = find(arena, PathArena::kRoot, names[i]);
            ASSERT_EQ(found.folder, PathArena::kNone);
            ASSERT_EQ(found.file, (PathArena::Place{first, i}));
        }
        EXPECT_EQ(find(arena, PathArena::kRoot, "folder").folder, folder);
        EXPECT_FALSE(find(arena, PathArena::kRoot, "n").isThere());
        EXPECT_FALSE(find(arena, folder, "n0").isThere());
    }
}

TEST(PathArena, findsInAWideFolderWhatIsAddedBetweenSearches) {
    PathArena arena;
    addFiles(arena, PathArena::kRoot, numberedNames(100));
    for (int i = 100; i < 300; ++i) {
        const std::string name = 'n' + std::to_string(i);
        ASSERT_FALSE(find(arena, PathArena::kRoot, name).isThere());
        const auto [run, skip] = addFiles(arena, PathArena::kRoot, {name});
        if (i % 3 == 0) makeFolder(arena, PathArena::kRoot, "folder" + name);
        ASSERT_EQ(find(arena, PathArena::kRoot, name).file, (PathArena::Place{run, skip}));
    }
    for (int i = 100; i < 300; ++i)
        EXPECT_EQ(find(arena, PathArena::kRoot, "foldern" + std::to_string(i)).isThere(),
                  i % 3 == 0);
}

TEST(PathArena, leadsFromAFolderToTheRootAndToItsChildren) {
    PathArena arena;
    const Id a = makeFolder(arena, PathArena::kRoot, "a");
    const Id other = makeFolder(arena, PathArena::kRoot, "o");
    const Id b = makeFolder(arena, a, "b");
    const Id c = makeFolder(arena, b, "c");
    const Id again = makeFolder(arena, a, "a");
    std::vector<Id> chain{7, 7};
    arena.chainTo(c, chain);
    EXPECT_EQ(chain, (std::vector<Id>{a, b, c}));
    arena.chainTo(PathArena::kRoot, chain);
    EXPECT_TRUE(chain.empty());
    EXPECT_EQ(arena.foldersIn(PathArena::kRoot), (std::vector<Id>{a, other}));
    EXPECT_EQ(arena.foldersIn(a), (std::vector<Id>{b, again}));
    EXPECT_TRUE(arena.foldersIn(c).empty());
    EXPECT_EQ(arena.findFolder(a, stored("a").values()), again);
    EXPECT_EQ(arena.findFolder(PathArena::kRoot, stored("a").values()), a);
    EXPECT_EQ(arena.findFolder(b, stored("a").values()), PathArena::kNone);
    const Id late = makeFolder(arena, b, "a");
    EXPECT_EQ(arena.findFolder(b, stored("a").values()), late);
    EXPECT_TRUE(arena.isOrderedByName());
}

TEST(PathArena, refusesFoldersAndItemsThatThereAreNot) {
    PathArena arena;
    addFiles(arena, PathArena::kRoot, {"a"});
    EXPECT_THROW(arena.childCount(1), InvalidImageException);
    EXPECT_THROW(arena.parentOf(1), InvalidImageException);
    EXPECT_THROW(arena.nameOf(Id{0}), InvalidImageException);
    EXPECT_THROW(arena.runAt(1000), InvalidImageException);
    EXPECT_THROW(arena.nameAt(1000), InvalidImageException);
    EXPECT_THROW(arena.nameOf(PathArena::Place{PathArena::kFolderLink | 9, 0}),
                 InvalidImageException);
}

/// The leaf X, then the folder X with Y in it, as a saved form can hold them.
std::shared_ptr<PathArena> leafBeforeFolderOfItsName() {
    const Bytes structure{kHasNextSibling, kHasChildren, 0};
    const std::vector<Bytes> keys{keyOfText("X"), keyOfText("X"), keyOfText("Y")};
    TrieBuilder builder(structure, keys.size());
    return builder.build(TrieBuilder::Keys(keys));
}

TEST(PathArena, addsToTheFirstOfEqualChildrenOfATrieThatWasLoaded) {
    const auto arena = leafBeforeFolderOfItsName();
    ASSERT_EQ(listing(*arena), "X X [ Y ] ");
    for (int round = 0; round < 2; ++round) {
        Transaction adding(*arena);
        const auto found = adding.find(PathArena::kRoot, stored("X").values());
        const Id folder =
            found.folder != PathArena::kNone ? found.folder : adding.makeFolderOf(found.file);
        append(adding, folder, {"Z"});
        adding.commit();
    }
    EXPECT_EQ(listing(*arena), "X [ Z Z ] X [ Y ] ");
}

// The folder that is first among equal names has the higher id, since it was a file before.
TEST(PathArena, addsToTheFirstOfEqualChildrenOfATrieWhoseArraysAreTakenOver) {
    const auto arena = leafBeforeFolderOfItsName();
    {
        Transaction adding(*arena);
        append(adding, adding.makeFolderOf({arena->firstChild(PathArena::kRoot).link, 0}), {"Z"});
        adding.commit();
    }
    PathArena reopened(PathArena::Arrays(arena->arrays()), arena->seed());
    const auto found = find(reopened, PathArena::kRoot, "X");
    EXPECT_EQ(found.folder, 2U);
    ASSERT_EQ(listing(reopened), "X [ Z ] X [ Y ] ");
}

// Each folder counts as a child twice: in its ring, and as a file that became one. By the depth of
// the trie, that would be paths without end.
TEST(PathArena, goesThroughNoFolderTwice) {
    constexpr std::uint32_t kDepth = 16;
    PathArena arena;
    std::vector<Id> chain{PathArena::kRoot};
    for (std::uint32_t level = 0; level < kDepth; ++level) {
        addFiles(arena, chain.back(), {"a"});
        chain.push_back(makeFolder(arena, chain.back(), "f"));
        addFiles(arena, chain[level], {"b"});
    }
    PathArena::Arrays arrays(arena.arrays());
    for (std::uint32_t level = 0; level < kDepth; ++level) {
        const Id folder = chain[level + 1];
        arrays.names.at(arrays.folders[folder].name) = 0;  // the position of the file a
        arrays.names.at(arena.firstChild(chain[level]).run.countAt) |= 1;
    }
    std::vector<std::uint32_t> slots(1024, IdTable::kNone);
    for (std::size_t level = 0; level < kDepth; ++level) {
        std::size_t slot = hashOf(chain[level], 0, arena.seed()) % slots.size();
        while (slots[slot] != IdTable::kNone) slot = (slot + 1) % slots.size();
        slots[slot] = chain[level + 1];
    }
    FlatArray<std::uint32_t> taken;
    for (const std::uint32_t slot : slots) taken.push(slot);
    arrays.formerFiles = IdTable(std::move(taken), kDepth);
    const PathArena damaged(std::move(arrays), arena.seed());
    try {
        countNodes(damaged, std::size_t{3} * kDepth);  // throws otherwise if they are more
    } catch (const InvalidImageException&) {
    }
}

}  // namespace
}  // namespace compressedpaths
