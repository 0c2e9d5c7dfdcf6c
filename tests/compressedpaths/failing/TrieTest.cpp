// Lack of memory in operations of the trie by itself.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/compressedpaths/failing/RefusedBlocks.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

struct Trie {
    Trie() {
        for (const char* letters : {"ab", "acd", "e"}) addSingle(tree, path(letters));
        tree.reset();
        Path first;
        tree.getNextPath(first);
        before = state();
    }

    struct State {
        Bytes structure;
        std::vector<Bytes> keys;
        std::vector<Bytes> nodeStack;
        std::vector<Bytes> parentStack;
        Path currentPath;
        bool operator==(const State&) const = default;
    };
    State state() {
        State now;
        tree.serialize(now.structure, now.keys);
        const auto walk = BPathTreePeer::linkedWalk(tree);
        now.nodeStack = keysOf(walk.nodeStack);
        now.parentStack = keysOf(walk.parentStack);
        now.currentPath = walk.currentPath;
        return now;
    }

    BPathTree tree;
    State before;
    Path components = path("acxy");
    std::vector<Bytes> files{key('m'), key('n')};
    Track track{9};
    std::size_t prior = 77;
    Path next = path("kept");
    Bytes structure{5};
    std::vector<Bytes> keys{key('k')};
};

void expectUntouched(Trie& trie) {
    EXPECT_TRUE(trie.state() == trie.before);
    EXPECT_EQ(trie.components, path("acxy"));
    EXPECT_EQ(trie.files, path("mn"));
    EXPECT_EQ(trie.track, (Track{9}));
    EXPECT_EQ(trie.next, path("kept"));
    EXPECT_EQ(trie.structure, (Bytes{5}));
    EXPECT_EQ(trie.keys, path("k"));
}

std::unique_ptr<Trie> someTrie() {
    return std::make_unique<Trie>();
}

TEST(FailingAllocationsOfATrie, addAPathOrNothingOfIt) {
    const std::size_t failures = forEachBlock(
        someTrie, [](Trie& trie) { EXPECT_FALSE(trie.tree.addPath(trie.components, trie.track)); },
        expectUntouched,
        [](Trie& trie) {
            EXPECT_EQ(trie.track, (Track{9, 0, 1}));
            EXPECT_EQ(walked(trie.tree),
                      (std::vector<Path>{path("ab"), path("acd"), path("acxy"), path("e")}));
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocationsOfATrie, addAFolderOrNothingOfIt) {
    const std::size_t failures = forEachBlock(
        someTrie,
        [](Trie& trie) {
            EXPECT_FALSE(trie.tree.addPath(trie.components, trie.files, trie.track, trie.prior));
        },
        expectUntouched,
        [](Trie& trie) {
            EXPECT_EQ(trie.track, (Track{9, 0, 1, 1, 0}));
            EXPECT_EQ(walked(trie.tree), (std::vector<Path>{path("ab"), path("acd"), path("acxym"),
                                                            path("acxyn"), path("e")}));
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocationsOfATrie, stepOnOrStandStill) {
    const std::size_t failures = forEachBlock(
        someTrie, [](Trie& trie) { trie.tree.getNextPath(trie.next); }, expectUntouched,
        [](Trie& trie) { EXPECT_EQ(trie.next, path("acd")); });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocationsOfATrie, startAWalkOrLeaveTheOneThereWas) {
    forEachBlock(
        someTrie, [](Trie& trie) { trie.tree.reset(); }, expectUntouched,
        [](Trie& trie) {
            Path first;
            trie.tree.getNextPath(first);
            EXPECT_EQ(first, path("ab"));
        });
}

TEST(FailingAllocationsOfATrie, flattenAllOrNothing) {
    const std::size_t failures = forEachBlock(
        someTrie, [](Trie& trie) { trie.tree.serialize(trie.structure, trie.keys); },
        expectUntouched,
        [](Trie& trie) {
            EXPECT_EQ(trie.structure, (Bytes{5, 3, 2, 1, 0, 0}));
            EXPECT_EQ(trie.keys, path("kabcde"));
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocationsOfATrie, areRebuiltOrHarmless) {
    for (const Refused way : kWays) {
        bool hasRefused = true;
        for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
            SCOPED_TRACE(number);
            BPathTree tree;
            Bytes structure{3, 2, 1, 0, 0};
            std::vector<Bytes> keys = path("abcde");
            bool isDone = false;
            {
                const FailingHeap heap(number, way);
                isDone = succeeds([&] { tree.deserialize(structure, keys); });
                hasRefused = heap.hasRefused();
            }
            const std::vector<Path> all{path("ab"), path("acd"), path("e")};
            if (isDone) {
                EXPECT_EQ(walked(tree), all);
            } else {
                EXPECT_LE(walked(tree).size(), all.size());
                addSingle(tree, path("zz"));
                EXPECT_EQ(walked(tree).back(), path("zz"));
            }
        }
        EXPECT_FALSE(hasRefused);
    }
}

TEST(FailingAllocationsOfATrie, copyATrieOrThrow) {
    struct Copying : Trie {
        std::unique_ptr<BPathTree> copy;
    };
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<Copying>(); },
                     [](Copying& trie) { trie.copy = std::make_unique<BPathTree>(trie.tree); },
                     [](Copying& trie) {
                         EXPECT_TRUE(trie.state() == trie.before);
                         EXPECT_EQ(trie.copy, nullptr);
                     },
                     [](Copying& trie) {
                         Path next;
                         trie.copy->getNextPath(next);
                         EXPECT_EQ(next, path("acd"));
                     });
    EXPECT_GT(failures, 0U);
}

}  // namespace
}  // namespace compressedpaths
