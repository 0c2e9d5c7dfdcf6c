#pragma once
// A heap that counts the blocks that are asked for and can run out of them, by whatever way they
// are asked for: new, malloc or calloc. The program that links CountedHeap.cpp gets its allocator
// replaced; sanitizers bring one of theirs.
//
//     CountedHeap heap(3);
//     load();  // its fourth block is refused, and all after it
//
// Threads: for programs of one thread.

#include <cstddef>
#include <limits>

class CountedHeap {
public:
    /// Grants so many blocks until this ends.
    explicit CountedHeap(std::size_t granted = std::numeric_limits<std::size_t>::max()) noexcept;
    CountedHeap(const CountedHeap&) = delete;
    CountedHeap& operator=(const CountedHeap&) = delete;
    ~CountedHeap();

    /// Blocks asked for since the start, whether or not they were granted.
    std::size_t asked() const noexcept;
    /// Blocks given back since the start.
    std::size_t freed() const noexcept;
};
