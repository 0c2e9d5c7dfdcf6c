#pragma once
// What a piece of code takes from the heap, by whatever way: new, malloc, zlib's own buffers, or
// pages of their own; and the most that it held at once. The program that links HeapMeter.cpp gets
// its allocator replaced, so that nothing between two looks is missed; sanitizers bring one of
// theirs.
//
//     HeapMeter meter;
//     load();
//     meter.now();   // bytes that are held beyond those held before
//     meter.peak();  // the most of that, at any moment
//
// A block counts with what the allocator takes for it, its header included. One that realloc moves
// is held twice for that moment, but for those with pages of their own, which are remapped. Without
// a HeapMeter nothing is counted, so that benchmarks are timed at the speed of the allocator.
//
// Threads: counts all of them. There is one HeapMeter at a time.

#include <cstddef>

namespace compressedpaths {

class HeapMeter {
public:
    HeapMeter() noexcept;
    HeapMeter(const HeapMeter&) = delete;
    HeapMeter& operator=(const HeapMeter&) = delete;
    ~HeapMeter();

    std::size_t now() const noexcept;
    std::size_t peak() const noexcept;
};

}  // namespace compressedpaths
