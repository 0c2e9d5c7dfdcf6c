#include "tests/support/HeapMeter.hpp"

#include <malloc.h>

#include <atomic>
#include <cerrno>

// The allocator under the names by which the C library keeps it when a program defines its own.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<std::size_t> live{0};
std::atomic<std::size_t> highest{0};

void* counted(void* block) noexcept {
    const std::size_t size = malloc_usable_size(block);
    const std::size_t now = live.fetch_add(size) + size;
    for (std::size_t seen = highest; now > seen && !highest.compare_exchange_weak(seen, now);) {
    }
    return block;
}

void uncount(void* block) noexcept {
    live -= malloc_usable_size(block);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) noexcept {
    return counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) noexcept {
    const std::size_t before = malloc_usable_size(block);
    void* const grown = __libc_realloc(block, size);
    if (grown == nullptr && size > 0) return nullptr;
    live -= before;
    return counted(grown);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    *block = counted(__libc_memalign(alignment, size));
    return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) noexcept {
    uncount(block);
    __libc_free(block);
}
}

namespace compressedpaths {

HeapMeter::HeapMeter() noexcept : before_(live) {
    highest = before_;
}

std::size_t HeapMeter::peak() const noexcept {
    return highest - before_;
}

}  // namespace compressedpaths
