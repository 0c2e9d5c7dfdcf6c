#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/task_arena.h>

#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

using testing::ThrowsMessage;

std::u16string numbered(char16_t prefix, std::size_t number) {
    std::u16string text(1, prefix);
    for (const char digit : std::to_string(number)) text.push_back(static_cast<char16_t>(digit));
    return text;
}

TextEntries manyEntries() {
    TextEntries entries;
    for (std::size_t i = 0; i < 300; ++i) {
        TextEntry entry{{u"data", numbered(u'd', i % 90)}, {}};
        for (std::size_t file = 0; file < i % 13; ++file)
            entry.files.push_back(numbered(u'f', i * 100 + file));
        entries.push_back(entry);
    }
    return entries;
}

/// What coding each entry in turn on the calling thread gives.
void addSerially(HuffmanPathTree& set, const TextEntries& entries) {
    for (const TextEntry& entry : entries) {
        std::vector<Bytes> folder;
        std::vector<Bytes> files;
        for (const std::u16string& name : entry.folder) folder.push_back(set.generateCodeFor(name));
        for (const std::u16string& name : entry.files) files.push_back(set.generateCodeFor(name));
        set.addPathToBTree(folder, files);
    }
}

TEST(ParallelCoding, givesTheBytesOfSerialCoding) {
    HuffmanPathTree parallel;
    buildSet(parallel, manyEntries());
    HuffmanPathTree serial;
    makeCode(serial);
    addSerially(serial, manyEntries());
    EXPECT_EQ(savedForm(parallel), savedForm(serial));
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(parallel),
              HuffmanPathTreePeer::maxCodeBytes(serial));
}

TEST(ParallelCoding, givesTheSameBytesWhateverTheNumberOfThreads) {
    HuffmanPathTree serial;
    makeCode(serial);
    addSerially(serial, manyEntries());
    const Bytes expected = savedForm(serial);
    for (const int threads : {1, 2, 3, 16}) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                        static_cast<std::size_t>(threads));
        tbb::task_arena arena(threads);
        arena.execute([&] {
            HuffmanPathTree set;
            buildSet(set, manyEntries());
            EXPECT_EQ(savedForm(set), expected) << threads << " threads";
        });
    }
}

TEST(ParallelCoding, addsEntriesInTheirOrder) {
    HuffmanPathTree set;
    const TextEntries entries = manyEntries();
    buildSet(set, entries);
    const TextPaths expected = pathsOf(entries);
    EXPECT_EQ(pathsByNumber(set, expected.size()), expected);
}

TEST(ParallelCoding, keepsATrueMaximumOfTheCodeBytes) {
    for (const std::size_t longest : {std::size_t{0}, std::size_t{150}, std::size_t{299}}) {
        TextEntries entries(300, {{u"d"}, {u"f"}});
        entries[longest].files.push_back(std::u16string(500, u'a'));
        HuffmanPathTree set;
        buildSet(set, entries);
        const std::size_t expected = set.generateCodeFor(std::u16string(500, u'a')).size();
        EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(set), expected);
    }
}

TEST(ParallelCoding, countsTheFolderComponentsForTheMaximumToo) {
    HuffmanPathTree set;
    buildSet(set, {{{std::u16string(500, u'a')}, {}}, {{u"d"}, {u"f"}}});
    EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(set),
              set.generateCodeFor(std::u16string(500, u'a')).size());
}

TEST(ParallelCoding, bringsTheExceptionOfAWorkerToTheCaller) {
    for (const std::size_t bad : {std::size_t{0}, std::size_t{150}, std::size_t{299}}) {
        HuffmanPathTree set;
        TextEntries entries = manyEntries();
        entries[bad].files.emplace_back(u"A");
        EXPECT_THAT([&] { buildSet(set, entries); },
                    ThrowsMessage<CodeNotFoundException>("Code for the character not found."));
        EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 0U);
        EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(set), 0U);
        EXPECT_TRUE(HuffmanPathTreePeer::folderTracks(set).empty());
        EXPECT_EQ(HuffmanPathTreePeer::asyncFiles(set).size(), entries.size());
    }
}

void expectNothingKeptAside(const HuffmanPathTree& set) {
    EXPECT_TRUE(HuffmanPathTreePeer::asyncFolders(set).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::asyncFiles(set).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::asyncCodedFolders(set).empty());
    EXPECT_TRUE(HuffmanPathTreePeer::asyncCodedFiles(set).empty());
}

TEST(ParallelCoding, keepsABatchThatFailsAsideUntilTheNext) {
    for (const std::size_t count : {std::size_t{1}, std::size_t{300}}) {
        HuffmanPathTree set;
        TextEntries entries(count, {{u"d"}, {u"f", u"g"}});
        entries.back().files.emplace_back(u"");
        EXPECT_THAT([&] { buildSet(set, entries); },
                    ThrowsMessage<NoCodeForEmptyString>("No code for an empty string."));
        ASSERT_EQ(HuffmanPathTreePeer::asyncFolders(set).size(), count);
        EXPECT_EQ(HuffmanPathTreePeer::asyncFolders(set).back(), entries.back().folder);
        EXPECT_EQ(HuffmanPathTreePeer::asyncFiles(set).back(), entries.back().files);
        EXPECT_EQ(HuffmanPathTreePeer::asyncCodedFolders(set).size(), count);
        EXPECT_TRUE(HuffmanPathTreePeer::asyncCodedFiles(set).back().empty());
        EXPECT_THROW(set.addPathToBTreeFromAsyncData(), IncompleteBatchException);
        EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 0U);

        entries.back().files.pop_back();
        addBatch(set, entries);
        EXPECT_EQ(pathsByNumber(set, 2 * count), pathsOf(entries));
        expectNothingKeptAside(set);
    }
}

TEST(ParallelCoding, leavesTheListsOfTheCallerAlone) {
    std::vector<Names> folders(100, {u"usr", u"lib"});
    std::vector<Names> files(100, {u"a", u"b"});
    HuffmanPathTree set;
    makeCode(set);
    set.generateCodeAsyncAndAddPaths(folders, files);
    EXPECT_EQ(folders, std::vector<Names>(100, {u"usr", u"lib"}));
    EXPECT_EQ(files, std::vector<Names>(100, {u"a", u"b"}));
    expectNothingKeptAside(set);
}

TEST(ParallelCoding, codesFoldersThatRepeatTheOneBeforeLikeAnyOther) {
    const std::vector<Names> folders{
        {u"a"}, {u"a"}, {u"a", u"b"}, {u"a", u"b", u"c"}, {u"a", u"b"}, {u"a", u"c"}, {u"b"},
        {},     {u"b"}, {u"b", u"b"}, {u"b", u"b"},       {u"ab"},      {u"a", u"b"}, {},
        {}};
    for (const std::size_t rounds : {std::size_t{1}, std::size_t{2}, std::size_t{30}}) {
        TextEntries entries;
        for (std::size_t round = 0; round < rounds; ++round)
            for (const Names& folder : folders)
                entries.push_back({folder, {numbered(u'f', entries.size())}});
        HuffmanPathTree parallel;
        buildSet(parallel, entries);
        HuffmanPathTree serial;
        makeCode(serial);
        addSerially(serial, entries);
        EXPECT_EQ(savedForm(parallel), savedForm(serial));
        EXPECT_EQ(pathsByNumber(parallel, entries.size()), pathsOf(entries));
    }
}

TEST(ParallelCoding, startsNoWorkForAnEmptyBatch) {
    HuffmanPathTree set;
    addBatch(set, {});
    EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 0U);
    EXPECT_TRUE(HuffmanPathTreePeer::partitionEnds(set).empty());
}

}  // namespace
}  // namespace compressedpaths
