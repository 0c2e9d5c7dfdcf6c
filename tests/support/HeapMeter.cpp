#include "tests/support/HeapMeter.hpp"

#include <malloc.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

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

void raise(std::size_t size) noexcept {
    const std::size_t now = live.fetch_add(size) + size;
    for (std::size_t seen = highest; now > seen && !highest.compare_exchange_weak(seen, now);) {
    }
}

void* counted(void* block) noexcept {
    raise(malloc_usable_size(block));
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

// Large arrays of the core have pages of their own.

void* mmap(void* at, std::size_t size, int protection, int flags, int file, off_t offset) noexcept {
    const long pages = syscall(SYS_mmap, at, size, protection, flags, file, offset);
    if (pages != -1) raise(size);
    return reinterpret_cast<void*>(pages);
}

void* mremap(void* block, std::size_t oldSize, std::size_t size, int flags, ...) noexcept {
    const long pages = syscall(SYS_mremap, block, oldSize, size, flags);
    if (pages == -1) return MAP_FAILED;
    live -= oldSize;
    raise(size);
    return reinterpret_cast<void*>(pages);
}

int munmap(void* block, std::size_t size) noexcept {
    live -= size;
    return static_cast<int>(syscall(SYS_munmap, block, size));
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
