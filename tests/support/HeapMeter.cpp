#include "tests/support/HeapMeter.hpp"

#include <malloc.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
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

constexpr std::memory_order kRelaxed = std::memory_order_relaxed;

std::atomic<bool> isCounting{false};
std::atomic<std::ptrdiff_t> live{0};
std::atomic<std::ptrdiff_t> highest{0};

/// Bytes that the allocator takes for a block.
std::ptrdiff_t sizeOf(void* block) noexcept {
    return block == nullptr
               ? 0
               : static_cast<std::ptrdiff_t>(malloc_usable_size(block) + sizeof(std::size_t));
}

/// True if a block has pages of its own. glibc keeps that in the second bit of the word before it.
bool hasOwnPages(void* block) noexcept {
    return (static_cast<const std::size_t*>(block)[-1] & 2) != 0;
}

void add(std::ptrdiff_t size) noexcept {
    const std::ptrdiff_t now = live.fetch_add(size, kRelaxed) + size;
    std::ptrdiff_t seen = highest.load(kRelaxed);
    while (now > seen && !highest.compare_exchange_weak(seen, now, kRelaxed)) {
    }
}

void* counted(void* block) noexcept {
    if (isCounting.load(kRelaxed)) add(sizeOf(block));
    return block;
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
    if (!isCounting.load(kRelaxed)) return __libc_realloc(block, size);
    const std::ptrdiff_t before = sizeOf(block);
    const bool isRemapped = block != nullptr && hasOwnPages(block);
    void* const grown = __libc_realloc(block, size);
    if (grown == nullptr && size > 0) return nullptr;
    const bool isCopied = grown != block && !(isRemapped && grown != nullptr && hasOwnPages(grown));
    if (!isCopied) live.fetch_sub(before, kRelaxed);
    add(sizeOf(grown));
    if (isCopied) live.fetch_sub(before, kRelaxed);
    return grown;
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

// Large arrays of the core have pages of their own.

void* mmap(void* at, std::size_t size, int protection, int flags, int file, off_t offset) noexcept {
    const long pages = syscall(SYS_mmap, at, size, protection, flags, file, offset);
    if (pages != -1 && isCounting.load(kRelaxed)) add(static_cast<std::ptrdiff_t>(size));
    return reinterpret_cast<void*>(pages);
}

void* mremap(void* block, std::size_t oldSize, std::size_t size, int flags, ...) noexcept {
    const long pages = syscall(SYS_mremap, block, oldSize, size, flags);
    if (pages != -1 && isCounting.load(kRelaxed)) {
        live.fetch_sub(static_cast<std::ptrdiff_t>(oldSize), kRelaxed);
        add(static_cast<std::ptrdiff_t>(size));
    }
    return reinterpret_cast<void*>(pages);
}

int munmap(void* block, std::size_t size) noexcept {
    if (isCounting.load(kRelaxed)) live.fetch_sub(static_cast<std::ptrdiff_t>(size), kRelaxed);
    return static_cast<int>(syscall(SYS_munmap, block, size));
}

void free(void* block) noexcept {
    if (isCounting.load(kRelaxed)) live.fetch_sub(sizeOf(block), kRelaxed);
    __libc_free(block);
}
}

namespace compressedpaths {

HeapMeter::HeapMeter() noexcept {
    live = 0;
    highest = 0;
    isCounting = true;
}

HeapMeter::~HeapMeter() {
    isCounting = false;
}

std::size_t HeapMeter::now() const noexcept {
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(live, 0));
}

std::size_t HeapMeter::peak() const noexcept {
    return static_cast<std::size_t>(highest);
}

}  // namespace compressedpaths
