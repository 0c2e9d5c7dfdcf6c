#pragma once
// What a piece of code takes from the heap, by whatever way: new, malloc, or zlib's own buffers.
// The program that links HeapMeter.cpp gets its allocator replaced; sanitizers bring one of theirs.
//
//     HeapMeter meter;
//     load();
//     EXPECT_LE(meter.peak(), limit);  // bytes that were held at once beyond those held before
//
// Threads: counts all of them.

#include <cstddef>

namespace compressedpaths {

class HeapMeter {
public:
    HeapMeter() noexcept;

    std::size_t peak() const noexcept;

private:
    std::size_t before_;
};

}  // namespace compressedpaths
