// What a transaction that does not end well leaves: nothing.

#include <gtest/gtest.h>

#include "tests/compressedpaths/store/Arenas.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

using Id = PathArena::Id;
using Place = PathArena::Place;
using Transaction = PathArena::Transaction;

/// What a transaction must leave as it was.
struct Contents {
    Bytes names;
    std::vector<Id> folders;  // the records, field by field
    std::size_t formerFiles;
    std::string listing;

    bool operator==(const Contents&) const = default;
};

Contents contentsOf(const PathArena& arena) {
    const PathArena::Arrays& arrays = arena.arrays();
    Contents contents{
        {arrays.names.data(), arrays.names.end()}, {}, arrays.formerFiles.count(), listing(arena)};
    for (const PathArena::Folder& folder : arrays.folders.values())
        contents.folders.insert(contents.folders.end(),
                                {folder.parent, folder.name, folder.next, folder.last});
    return contents;
}

/// Folders with a few files, with many, and one that was a file.
struct Sample {
    PathArena arena;
    Id small = makeFolder(arena, PathArena::kRoot, "small");
    Id wide = makeFolder(arena, PathArena::kRoot, "wide");
    PathArena::Link run = addFiles(arena, wide, numberedNames(80)).run;
    PathArena::Link smallRun = addFiles(arena, small, {"a", "b", "c"}).run;
};

template <class Add>
void expectUndone(Add add) {
    Sample sample;
    const Contents before = contentsOf(sample.arena);
    {
        Transaction adding(sample.arena);
        add(adding, sample);
    }
    const Contents after = contentsOf(sample.arena);
    EXPECT_EQ(after.listing, before.listing);
    EXPECT_EQ(after.names, before.names);
    EXPECT_EQ(after.folders, before.folders);
    EXPECT_EQ(after.formerFiles, before.formerFiles);
    // Nothing of what was dropped is found, and the same can be added.
    EXPECT_FALSE(find(sample.arena, PathArena::kRoot, "new").isThere());
    EXPECT_FALSE(find(sample.arena, sample.wide, "new").isThere());
    EXPECT_EQ(find(sample.arena, sample.wide, "n7").file, (Place{sample.run, 7}));
    EXPECT_EQ(find(sample.arena, sample.small, "b").file, (Place{sample.smallRun, 1}));
    Sample other;
    Transaction first(sample.arena);
    add(first, sample);
    first.commit();
    Transaction second(other.arena);
    add(second, other);
    second.commit();
    EXPECT_EQ(listing(sample.arena), listing(other.arena));
}

TEST(PathArenaTransaction, isAsItWasWithoutTheFilesOfATransactionThatWasNotCommitted) {
    expectUndone([](Transaction& adding, const Sample& sample) {
        append(adding, sample.small, {"new"});  // the run at the end grows
        append(adding, sample.wide, {"new"});
        append(adding, sample.small, numberedNames(30));
        append(adding, PathArena::kRoot, {"new"});
        append(adding, PathArena::kRoot, {"new", "more"});
    });
}

TEST(PathArenaTransaction, isAsItWasWithoutTheFoldersOfATransactionThatWasNotCommitted) {
    expectUndone([](Transaction& adding, const Sample& sample) {
        const Id folder = adding.makeFolder(PathArena::kRoot, stored("new").values());
        append(adding, adding.makeFolder(folder, stored("new").values()), {"new"});
        for (const std::string& name : numberedNames(40))
            adding.makeFolder(sample.wide, stored("folder" + name).values());
        adding.makeFolder(sample.wide, stored("new").values());
    });
}

TEST(PathArenaTransaction, isAsItWasWithoutTheFormerFilesOfATransactionThatWasNotCommitted) {
    expectUndone([](Transaction& adding, const Sample& sample) {
        append(adding, adding.makeFolderOf({sample.run, 7}), {"new"});
        append(adding, adding.makeFolderOf({sample.run, 70}), {"new"});
        append(adding, adding.makeFolderOf({sample.smallRun, 1}), {"new"});
    });
}

TEST(PathArenaTransaction, isAsItWasWithoutATransactionThatFoundNoRoom) {
    Sample sample;
    const Contents before = contentsOf(sample.arena);
    const std::size_t nameBytes = sample.arena.arrays().names.size();
    for (std::size_t room = 0; room < 120; ++room) {
        sample.arena.limitTo(nameBytes + room, 1000);
        Transaction adding(sample.arena);
        EXPECT_THROW(
            {
                append(adding, sample.small, {"d"});
                const Id folder = adding.makeFolder(sample.wide, stored("new").values());
                append(adding, folder, {"e", "f"});
                append(adding, sample.wide, numberedNames(40));
            },
            SetTooLargeException)
            << room;
    }
    EXPECT_EQ(contentsOf(sample.arena), before);
    sample.arena.limitTo(nameBytes + 1000, 3);
    {
        Transaction adding(sample.arena);
        EXPECT_THROW(adding.makeFolder(PathArena::kRoot, stored("new").values()),
                     SetTooLargeException);
        EXPECT_THROW(adding.makeFolderOf({sample.run, 0}), SetTooLargeException);
    }
    EXPECT_EQ(contentsOf(sample.arena), before);
}

TEST(PathArenaTransaction, leavesASetWithoutABatchThatFindsNoRoomInItsMiddle) {
    const TextEntries had{{{u"a", u"b"}, {u"c", u"d"}}, {{u"a"}, {u"e"}}};
    const TextEntries more{
        {{u"a", u"b", u"c"}, {u"f"}}, {{u"a"}, {u"g", u"h"}}, {{u"x", u"y", u"z"}, {u"i", u"j"}}};
    HuffmanPathTree set;
    buildSet(set, had);
    addSinglePath(set, {u"a", u"e"});
    const Bytes before = savedForm(set);
    PathArena& arena = HuffmanPathTreePeer::pathTree(set).arena();
    const std::size_t nameBytes = arena.arrays().names.size();
    std::size_t refused = 0;
    for (std::size_t room = 0;; ++room) {
        ASSERT_LT(room, 1000U);
        arena.limitTo(nameBytes + room, 1000);
        try {
            addBatch(set, more);
            break;
        } catch (const SetTooLargeException&) {
            ++refused;
            ASSERT_EQ(savedForm(set), before) << room;
            ASSERT_EQ(set.size(), 4U);
            ASSERT_EQ(pathsByNumber(set, 3), pathsOf(had));
        }
    }
    EXPECT_GT(refused, 30U);
    HuffmanPathTree expected;
    buildSet(expected, had);
    addSinglePath(expected, {u"a", u"e"});
    addBatch(expected, more);
    EXPECT_EQ(savedForm(set), savedForm(expected));
}

}  // namespace
}  // namespace compressedpaths
