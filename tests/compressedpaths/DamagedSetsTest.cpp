// A damaged set is refused with an exception, or it is a set: one that can be walked to its end,
// asked for numbers and saved. Nothing else happens to any damage of one byte or any cut.

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>

#include "tests/support/DamagedForms.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

struct Tally {
    std::size_t refused = 0;
    std::size_t loaded = 0;
};

/// Walks to the end and returns the number of paths; a walk that does not end fails.
std::size_t walkToTheEnd(HuffmanPathTree& set, std::size_t mostPaths) {
    std::size_t paths = 0;
    set.resetPathsToBTree();
    for (; set.hasNextPathFromBTree() && paths <= mostPaths; ++paths) {
        Path path;
        set.getNextPathFromBTree(path);
        EXPECT_FALSE(path.empty());
        for (const Bytes& component : path) {
            try {
                set.generatePathFrom(component);
            } catch (const std::exception&) {
                continue;  // damage in the key or in the coding tree
            }
        }
    }
    EXPECT_LE(paths, mostPaths);
    return paths;
}

/// Asks for each of the first numbers on its own and for all together.
void askForNumbers(HuffmanPathTree& set) {
    const std::size_t count = std::min<std::size_t>(HuffmanPathTreePeer::pathCount(set), 400);
    std::vector<double> all;
    const auto ask = [&](const std::vector<double>& numbers) {
        std::vector<Path> folders;
        std::vector<Path> files;
        try {
            set.getPath(folders, files, numbers);
        } catch (const std::exception&) {
            EXPECT_TRUE(folders.empty());
            EXPECT_TRUE(files.empty());
        }
    };
    for (std::size_t number = 1; number <= count; ++number) {
        ask({static_cast<double>(number)});
        all.push_back(static_cast<double>(number));
    }
    ask(all);
    ask({static_cast<double>(HuffmanPathTreePeer::pathCount(set))});
}

void inflateWith(HuffmanPathTree& set, const std::u16string& treeString) {
    try {
        set.inflateHuffman(treeString);
    } catch (const std::exception&) {
        EXPECT_TRUE(HuffmanPathTreePeer::nodes(set).empty());  // the shape is damaged
    }
}

/// What is true of a set however it came about.
void expectASet(HuffmanPathTree& set, const std::u16string& treeString) {
    inflateWith(set, treeString);
    Bytes structure;
    std::vector<Bytes> keys;
    set.serializePathTree(structure, keys);
    const std::size_t mostPaths = structure.size() + HuffmanPathTreePeer::pathTracks(set).size();
    const std::size_t paths = walkToTheEnd(set, mostPaths);
    askForNumbers(set);

    HuffmanPathTree again;
    Bytes saved = savedForm(set);
    again.deserialize(saved, false);
    inflateWith(again, treeString);
    EXPECT_EQ(walkToTheEnd(again, mostPaths), paths);
}

void loadDamaged(Bytes bytes, bool compressed, const std::u16string& treeString, Tally& tally) {
    HuffmanPathTree set;
    try {
        set.deserialize(bytes, compressed);
        ++tally.loaded;
    } catch (const std::exception&) {
        ++tally.refused;
        // What was read up to the damage stays: also that must be safe to use and to free.
        inflateWith(set, treeString);
        walkToTheEnd(set, bytes.size() * 1100);
        askForNumbers(set);
        return;
    }
    expectASet(set, treeString);
}

class DamagedSets : public testing::TestWithParam<SavedSample> {};

TEST_P(DamagedSets, loadUndamaged) {
    const SavedSample& sample = GetParam();
    Tally tally;
    loadDamaged(sample.plain, false, sample.treeString, tally);
    loadDamaged(sample.compressed, true, sample.treeString, tally);
    EXPECT_EQ(tally.loaded, 2U);
}

TEST_P(DamagedSets, areRefusedOrAreSetsWhenPlain) {
    const SavedSample& sample = GetParam();
    Tally tally;
    forAllDamages(sample.plain, [&](const Bytes& damaged) {
        loadDamaged(damaged, false, sample.treeString, tally);
    });
    EXPECT_EQ(tally.loaded + tally.refused, 11 * sample.plain.size());
    EXPECT_GE(tally.loaded, 8U * 8U);  // the length ahead of the body is not used
    EXPECT_GE(tally.refused, 8U);
}

TEST_P(DamagedSets, areRefusedOrAreSetsWhenCompressed) {
    const SavedSample& sample = GetParam();
    Tally tally;
    forAllDamages(sample.compressed, [&](const Bytes& damaged) {
        loadDamaged(damaged, true, sample.treeString, tally);
    });
    EXPECT_EQ(tally.loaded + tally.refused, 11 * sample.compressed.size());
    EXPECT_GE(tally.refused, 8U);
}

TEST_P(DamagedSets, areRefusedOrAreSetsWhenTakenForTheOtherForm) {
    const SavedSample& sample = GetParam();
    Tally tally;
    loadDamaged(sample.plain, true, sample.treeString, tally);
    loadDamaged(sample.compressed, false, sample.treeString, tally);
    EXPECT_GE(tally.refused, 1U);
}

std::string nameOf(const testing::TestParamInfo<SavedSample>& sample) {
    std::string name = sample.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(, DamagedSets, testing::ValuesIn(savedSamples()), nameOf);

}  // namespace
}  // namespace compressedpaths
