#include "host/foundation/Memory.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/CountedHeap.hpp"

namespace {

TEST(Memory, isGivenBackToTheAllocatorOfC) {
    void* const block = std::calloc(1, 100);
    const CountedHeap heap;
    utFree(block);
    const std::size_t freed = heap.freed();
    EXPECT_EQ(freed, 1U);
}

TEST(Memory, ignoresNull) {
    const CountedHeap heap;
    utFree(nullptr);
    const std::size_t freed = heap.freed();
    EXPECT_EQ(freed, 0U);
}

}  // namespace
