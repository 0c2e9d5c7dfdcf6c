#pragma once
// A heap that refuses chosen blocks, by whatever way they are asked for: new, malloc, calloc,
// realloc or aligned. The program that links FailingHeap.cpp gets its allocator replaced;
// sanitizers bring one of theirs.
//
//     FailingHeap heap(3, FailingHeap::Refused::kOne);
//     load();                     // its third block is refused
//     heap.hasRefused();          // or it never asked for a third
//
// Threads: refuses and counts only what the thread that made it asks for.

#include <cstddef>

class FailingHeap {
public:
    enum class Refused {
        kOne,       // the one block
        kAllAfter,  // the block and all after it
    };

    /// Refuses the block with this number, counted from 1, until this ends.
    FailingHeap(std::size_t number, Refused refused) noexcept;
    FailingHeap(const FailingHeap&) = delete;
    FailingHeap& operator=(const FailingHeap&) = delete;
    ~FailingHeap();

    bool hasRefused() const noexcept;
};
