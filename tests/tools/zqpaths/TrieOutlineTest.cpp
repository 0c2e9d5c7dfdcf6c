#include "tools/zqpaths/TrieOutline.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace zqpaths {
namespace {

using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

/// The structure of one folder for each count, side by side, with so many files.
Bytes foldersOf(const std::vector<std::size_t>& fileCounts) {
    Bytes structure;
    for (const std::size_t count : fileCounts) {
        structure.push_back(3);
        structure.insert(structure.end(), count - 1, 2);
        structure.push_back(0);
    }
    structure.push_back(0);  // a file at the top
    return structure;
}

TEST(TrieOutline, findsTheLargestFoldersInTheirOrder) {
    const TrieOutline outline = outlineTrie(foldersOf({2, 5, 1, 5, 3}), 3);
    ASSERT_EQ(outline.largestFolders.size(), 3U);
    EXPECT_EQ(outline.largestFolders[0].fileCount, 5U);
    EXPECT_THAT(outline.largestFolders[0].track, ElementsAre(3));
    EXPECT_THAT(outline.largestFolders[1].track, ElementsAre(11));
    EXPECT_EQ(outline.largestFolders[2].fileCount, 3U);
    EXPECT_THAT(outline.largestFolders[2].track, ElementsAre(17));
    EXPECT_EQ(outline.folderCount, 5U);
    EXPECT_EQ(outline.widest, 6U);
}

TEST(TrieOutline, countsFilesWithoutFolderToTheRoot) {
    const TrieOutline outline = outlineTrie(Bytes{2, 2, 0}, 3);
    ASSERT_EQ(outline.largestFolders.size(), 1U);
    EXPECT_TRUE(outline.largestFolders[0].track.empty());
    EXPECT_EQ(outline.largestFolders[0].fileCount, 3U);
    EXPECT_EQ(outline.folderCount, 0U);
}

TEST(TrieOutline, givesTheWholeTrackOfADeepFolder) {
    constexpr std::size_t kLevels = 100'000;
    Bytes structure(kLevels, 1);
    structure.push_back(0);
    const TrieOutline outline = outlineTrie(structure, 3);
    EXPECT_EQ(outline.depth, kLevels + 1);
    ASSERT_EQ(outline.largestFolders.size(), 1U);
    EXPECT_EQ(outline.largestFolders[0].track.size(), kLevels);
}

}  // namespace
}  // namespace zqpaths
