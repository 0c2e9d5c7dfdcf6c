#pragma once
// What a piece of code takes from the heap, and the most that it held at once. The program's malloc
// counts the blocks themselves, so that nothing between two looks is missed:
//
//     HeapUse use;
//     fill(set);
//     use.now();   // bytes that are held beyond those held before
//     use.peak();  // the most of that, at any moment
//
// A block counts with what the allocator takes for it, its header included. One that realloc moves
// is held twice for that moment, but for those with pages of their own, which are remapped. Without
// a HeapUse nothing is counted, so that benchmarks are timed at the speed of the allocator.
//
// Threads: counts all of them. There is one HeapUse at a time.

#include <cstddef>

namespace bench {

class HeapUse {
public:
    HeapUse() noexcept;
    HeapUse(const HeapUse&) = delete;
    HeapUse& operator=(const HeapUse&) = delete;
    ~HeapUse();

    std::ptrdiff_t now() const noexcept;
    std::ptrdiff_t peak() const noexcept;
};

}  // namespace bench
