// Lack of memory while sets are saved and loaded.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/compressedpaths/failing/FailingSets.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

using Peer = HuffmanPathTreePeer;

TEST(FailingAllocations, saveAWholeSetOrNothing) {
    for (const bool compress : {false, true}) {
        struct Saving : Subject {
            Bytes out{1, 2, 3};
        };
        Bytes expected{1, 2, 3};
        someSet()->serialize(expected, compress);
        const std::size_t failures =
            forEachBlock([] { return std::make_unique<Saving>(); },
                         [&](Saving& saving) { saving.set->serialize(saving.out, compress); },
                         [](Saving& saving) {
                             EXPECT_TRUE(stateOf(*saving.set) == saving.before);
                             EXPECT_EQ(saving.out, (Bytes{1, 2, 3}));
                         },
                         [&](Saving& saving) { EXPECT_EQ(saving.out, expected); });
        EXPECT_GT(failures, 0U);
    }
}

/// What was read up to there stays: it can be walked, asked and saved.
void expectHarmless(HuffmanPathTree& set) {
    for (set.resetPathsToBTree(); set.hasNextPathFromBTree();) {
        Path path;
        set.getNextPathFromBTree(path);
        ASSERT_FALSE(path.empty());
    }
    for (std::size_t number = 1; number <= Peer::pathCount(set); ++number) {
        std::vector<Path> folders;
        std::vector<Path> files;
        try {
            set.getPath(folders, files, {static_cast<double>(number)});
        } catch (const std::exception&) {
            EXPECT_TRUE(folders.empty() && files.empty());
        }
    }
    HuffmanPathTree again;
    Bytes bytes = savedForm(set);
    again.deserialize(bytes, false);
    std::vector<std::size_t> track;
    Path components = path("xy");
    Peer::pathTree(set).addPath(components, track);
}

TEST(FailingAllocations, loadASetOrAHarmlessPartOfIt) {
    const std::unique_ptr<HuffmanPathTree> source = someSet();
    for (const bool compressed : {false, true}) {
        const Bytes form = savedForm(*source, compressed);
        std::size_t failures = 0;
        for (const Refused way : kWays) {
            bool hasRefused = true;
            for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
                SCOPED_TRACE(number);
                Bytes bytes = form;
                HuffmanPathTree set;
                bool isDone = false;
                {
                    const FailingHeap heap(number, way);
                    isDone = succeeds([&] { set.deserialize(bytes, compressed); });
                    hasRefused = heap.hasRefused();
                }
                EXPECT_EQ(bytes, form);
                if (isDone) {
                    EXPECT_EQ(savedForm(set), savedForm(*source));
                } else {
                    ++failures;
                    expectHarmless(set);
                }
            }
            EXPECT_FALSE(hasRefused);
        }
        EXPECT_GT(failures, 0U);
    }
}

}  // namespace
}  // namespace compressedpaths
