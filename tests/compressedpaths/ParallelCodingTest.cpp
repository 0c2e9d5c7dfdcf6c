#include <gmock/gmock.h>
#include <gtest/gtest.h>

#ifndef ZQ_PLAIN_THREADS
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/task_arena.h>
#endif

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

FolderEntries manyEntries() {
    FolderEntries entries;
    for (std::size_t i = 0; i < 300; ++i) {
        FolderEntry entry{{u"data", numbered(u'd', i % 90)}, {}};
        for (std::size_t file = 0; file < i % 13; ++file)
            entry.files.push_back(numbered(u'f', i * 100 + file));
        entries.push_back(entry);
    }
    return entries;
}

/// What coding each entry in turn on the calling thread gives.
void addSerially(HuffmanPathTree& set, const FolderEntries& entries) {
    for (const FolderEntry& entry : entries) {
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

#ifndef ZQ_PLAIN_THREADS

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

#endif

TEST(ParallelCoding, addsEntriesInTheirOrder) {
    HuffmanPathTree set;
    const FolderEntries entries = manyEntries();
    buildSet(set, entries);
    const TextPaths expected = pathsOf(entries);
    EXPECT_EQ(pathsByNumber(set, expected.size()), expected);
}

TEST(ParallelCoding, keepsATrueMaximumOfTheCodeBytes) {
    for (const std::size_t longest : {std::size_t{0}, std::size_t{150}, std::size_t{299}}) {
        FolderEntries entries(300, {{u"d"}, {u"f"}});
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
        FolderEntries entries = manyEntries();
        entries[bad].files.emplace_back(u"A");
        EXPECT_THAT([&] { buildSet(set, entries); },
                    ThrowsMessage<CodeNotFoundException>("Code for the character not found."));
        EXPECT_EQ(HuffmanPathTreePeer::pathCount(set), 0U);
        EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(set), 0U);
        EXPECT_TRUE(HuffmanPathTreePeer::folderTracks(set).empty());
        EXPECT_EQ(HuffmanPathTreePeer::asyncFiles(set).size(), entries.size());
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
