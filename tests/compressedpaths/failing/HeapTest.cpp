// The heap that refuses blocks.

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

#include "tests/compressedpaths/failing/RefusedBlocks.hpp"

namespace compressedpaths {
namespace {

TEST(FailingHeap, refusesTheOneBlockOrAllAfterIt) {
    for (const Refused way : kWays) {
        std::array<void*, 4> blocks{};
        {
            const FailingHeap heap(2, way);
            blocks[0] = std::malloc(8);
            blocks[1] = std::realloc(nullptr, 8);
            blocks[2] = std::calloc(1, 8);
            blocks[3] = std::aligned_alloc(64, 64);
            EXPECT_TRUE(heap.hasRefused());
        }
        EXPECT_NE(blocks[0], nullptr);
        EXPECT_EQ(blocks[1], nullptr);
        EXPECT_EQ(blocks[2] == nullptr, way == Refused::kAllAfter);
        EXPECT_EQ(blocks[3] == nullptr, way == Refused::kAllAfter);
        for (void* const block : blocks) std::free(block);
    }
    const FailingHeap heap(1, Refused::kOne);
    EXPECT_FALSE(succeeds([] { Bytes(1000); }));
}

}  // namespace
}  // namespace compressedpaths
