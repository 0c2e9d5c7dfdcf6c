// Arenas on arrays that no arena wrote.

#include <gtest/gtest.h>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "tests/compressedpaths/store/Arenas.hpp"

namespace compressedpaths {
namespace {

using Id = PathArena::Id;
using Link = PathArena::Link;

/// The folders a and b of the root, c in a, and a file in c.
class MadeUpArena : public testing::Test {
protected:
    MadeUpArena() {
        a_ = makeFolder(arena_, PathArena::kRoot, "a");
        b_ = makeFolder(arena_, PathArena::kRoot, "b");
        c_ = makeFolder(arena_, a_, "c");
        addFiles(arena_, c_, {"file"});
    }

    PathArena::Arrays arrays() const { return arena_.arrays(); }

    PathArena arena_;
    Id a_ = 0;
    Id b_ = 0;
    Id c_ = 0;
};

TEST_F(MadeUpArena, isRefusedWhereTheNameOfAFolderHasNoEnd) {
    PathArena::Arrays arrays = this->arrays();
    arrays.names.reserveFor(1);
    arrays.names.append(0x80);
    arrays.folders.at(b_).name = static_cast<std::uint32_t>(arrays.names.size() - 1);
    const PathArena arena(std::move(arrays), 0);
    EXPECT_THROW(arena.positionOf(b_), InvalidImageException);
    EXPECT_THROW(arena.nameOf(b_), InvalidImageException);
    EXPECT_EQ(textOf(arena.nameOf(a_)), "a");
}

TEST_F(MadeUpArena, isRefusedWhereALinkLeadsPastTheNames) {
    const std::size_t size = arrays().names.size();
    for (const std::size_t link : {size, size - 2, std::size_t{0x7FFFFFFE}}) {
        PathArena::Arrays arrays = this->arrays();
        arrays.folders.at(c_).last = static_cast<Link>(link);
        const PathArena arena(std::move(arrays), 0);
        EXPECT_TRUE(arena.hasChildren(c_));
        EXPECT_THROW(arena.firstChild(c_), InvalidImageException);
    }
}

TEST(MadeUpRun, isRefusedIfItsFilesHaveNoPositions) {
    // The item after it, its folder, the position of its first file, and eight files.
    for (const auto& [last, isThere] : {std::pair{0x07, true}, std::pair{0x0F, false}}) {
        PathArena::Arrays arrays;
        for (const int byte : {0, 0, 0, 0, 0, 0xF8, 0xFF, 0xFF, 0xFF, last, 8 << 2, 0, 0})
            arrays.names.push(static_cast<std::uint8_t>(byte));
        const PathArena arena(std::move(arrays), 0);
        if (isThere)
            EXPECT_EQ(arena.runAt(0).first, 0x7FFFFFF8U);
        else
            EXPECT_THROW(arena.runAt(0), InvalidImageException);
    }
}

// All folders are in the root, which is its own parent: it would be gone through without end.
TEST_F(MadeUpArena, hasNoRootInTheRoot) {
    PathArena::Arrays arrays = this->arrays();
    arrays.folders.at(PathArena::kRoot).name = arrays.folders[a_].name;
    arrays.folders.at(PathArena::kRoot).next = PathArena::kFolderLink | PathArena::kRoot;
    arrays.folders.at(PathArena::kRoot).last = PathArena::kFolderLink | PathArena::kRoot;
    const PathArena arena(std::move(arrays), 0);
    ASSERT_EQ(arena.childCount(PathArena::kRoot), 1U);
    EXPECT_THROW(countNodes(arena, 100), InvalidImageException);
}

TEST_F(MadeUpArena, tellsThatFoldersAreOutOfOrder) {
    for (const std::vector<Id>& order :
         {std::vector<Id>{a_, b_, c_}, std::vector<Id>{b_, a_, c_}, std::vector<Id>{a_, c_, b_}}) {
        PathArena arena(arrays(), 0);
        FlatArray<Id> ids;
        for (const Id id : order) ids.push(id);
        arena.setFoldersByName(std::move(ids));
        EXPECT_EQ(arena.isOrderedByName(), order.back() == c_ && order.front() == a_);
    }
}

}  // namespace
}  // namespace compressedpaths
