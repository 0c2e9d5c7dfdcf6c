// Lack of memory while paths are added, or taken over from another set.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "compressedpaths/coding/CodedBatch.hpp"
#include "tests/compressedpaths/failing/FailingSets.hpp"

namespace compressedpaths {
namespace {

using Peer = HuffmanPathTreePeer;

/// `add` adds all of `added` to a set.
template <class Add>
void expectAddsAllOrNothing(Add add, const TextEntries& added) {
    const std::size_t failures = forEachBlock(
        [] { return std::make_unique<Subject>(); }, [&](Subject& subject) { add(*subject.set); },
        [](Subject& subject) { EXPECT_TRUE(stateOf(*subject.set) == subject.before); },
        [&](Subject& subject) {
            // The two single paths stand between, so that numbers are those of the entries after.
            const std::size_t start = Peer::partitionEnds(*subject.set).at(kEntries.size() - 1);
            EXPECT_EQ(pathsByNumber(*subject.set, start), pathsOf(kEntries));
            const auto ends = Peer::partitionEnds(*subject.set);
            ASSERT_EQ(ends.size(), kEntries.size() + added.size());
            EXPECT_EQ(ends.back(), start + 2 + pathsOf(added).size());
            std::size_t found = 0;
            for (const TextPath& path : walkedPaths(*subject.set))
                for (const TextPath& expected : pathsOf(added)) found += path == expected ? 1 : 0;
            EXPECT_EQ(found, pathsOf(added).size());
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocations, addABatchOrNothingOfIt) {
    std::vector<Names> folders;
    std::vector<Names> files;
    for (const TextEntry& entry : kMore) {
        folders.push_back(entry.folder);
        files.push_back(entry.files);
    }
    expectAddsAllOrNothing(
        [&](HuffmanPathTree& set) { set.generateCodeAsyncAndAddPaths(folders, files); }, kMore);
}

TEST(FailingAllocations, addACodedBatchOrNothingOfIt) {
    HuffmanPathTree coder;
    makeCode(coder);
    CodedBatch batch(coder);
    for (const TextEntry& entry : kMore) {
        batch.beginEntry(0);
        for (const std::u16string& name : entry.folder) batch.appendFolder(name);
        for (const std::u16string& name : entry.files) batch.appendFile(name);
    }
    expectAddsAllOrNothing([&](HuffmanPathTree& set) { set.addCodedBatch(batch); }, kMore);
}

TEST(FailingAllocations, addAnEntryOrNothingOfIt) {
    for (const TextEntry& entry : kMore) {
        struct Adding : Subject {
            Path folder;
            std::vector<Bytes> files;
            Path givenFolder;
            std::vector<Bytes> givenFiles;
        };
        const std::size_t failures = forEachBlock(
            [&] {
                auto adding = std::make_unique<Adding>();
                adding->folder = codedLists(*adding->set, {entry}, false)[0];
                adding->files = codedLists(*adding->set, {entry}, true)[0];
                adding->givenFolder = adding->folder;
                adding->givenFiles = adding->files;
                adding->before = stateOf(*adding->set);
                return adding;
            },
            [](Adding& adding) { adding.set->addPathToBTree(adding.folder, adding.files); },
            [](Adding& adding) {
                EXPECT_TRUE(stateOf(*adding.set) == adding.before);
                EXPECT_EQ(adding.folder, adding.givenFolder);
                EXPECT_EQ(adding.files, adding.givenFiles);
            },
            [&](Adding& adding) {
                EXPECT_EQ(adding.files, std::vector<Bytes>(entry.files.size()));
                EXPECT_EQ(Peer::partitionEnds(*adding.set).size(), kEntries.size() + 1);
                const TextPaths walked = walkedPaths(*adding.set);
                for (const TextPath& path : pathsOf({entry}))
                    EXPECT_EQ(std::count(walked.begin(), walked.end(), path), 1);
            });
        EXPECT_GT(failures, 0U);
    }
}

TEST(FailingAllocations, addAPathOrNothingOfIt) {
    for (const TextPath& path : {TextPath{u"a", u"c", u"new", u"one"}, TextPath{u"a", u"b", u"d"},
                                 TextPath{u"z"}, TextPath{u"a", u"z"}}) {
        struct Adding : Subject {
            Path coded;
            Path given;
        };
        const bool isThere = path == TextPath{u"a", u"b", u"d"};
        forEachBlock(
            [&] {
                auto adding = std::make_unique<Adding>();
                adding->coded = codedLists(*adding->set, {{path, {}}}, false)[0];
                adding->given = adding->coded;
                adding->before = stateOf(*adding->set);
                return adding;
            },
            [](Adding& adding) { adding.set->addPathToBTree(adding.coded); },
            [](Adding& adding) {
                EXPECT_TRUE(stateOf(*adding.set) == adding.before);
                EXPECT_EQ(adding.coded, adding.given);
            },
            [&](Adding& adding) {
                const std::size_t number = adding.before.counters[4] + 1;
                EXPECT_EQ(Peer::pathCount(*adding.set), number);
                EXPECT_EQ(adding.set->hasDuplicate(number), isThere);
                const TextPaths walked = walkedPaths(*adding.set);
                EXPECT_EQ(std::count(walked.begin(), walked.end(), path), isThere ? 2 : 1);
            });
    }
}

TEST(FailingAllocations, takeACopyOrKeepWhatThereWas) {
    HuffmanPathTree other;
    buildSet(other, kMore);
    addSinglePath(other, {u"s"});
    addSinglePath(other, {u"s"});
    other.resetPathsToBTree();
    const SetState expected = stateOf(other);
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<Subject>(); },
                     [&](Subject& subject) { subject.set->copyTree(other); },
                     [](Subject& subject) { EXPECT_TRUE(stateOf(*subject.set) == subject.before); },
                     [&](Subject& subject) { EXPECT_TRUE(stateOf(*subject.set) == expected); });
    EXPECT_GT(failures, 0U);
    EXPECT_TRUE(stateOf(other) == expected);
}

}  // namespace
}  // namespace compressedpaths
