#include "tests/support/FailingHeap.hpp"

#include <cerrno>

// The allocator under the names by which the C library keeps it when a program defines its own.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

thread_local std::size_t asked = 0;
thread_local std::size_t refusedFirst = 0;  // 0 refuses nothing
thread_local bool refusesAllAfter = false;
thread_local bool refusedAny = false;

bool isGranted() noexcept {
    if (refusedFirst == 0) return true;
    ++asked;
    if (asked != refusedFirst && !(refusesAllAfter && asked > refusedFirst)) return true;
    refusedAny = true;
    errno = ENOMEM;
    return false;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) noexcept {
    return isGranted() ? __libc_malloc(size) : nullptr;
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return isGranted() ? __libc_calloc(count, size) : nullptr;
}

void* realloc(void* block, std::size_t size) noexcept {
    return isGranted() ? __libc_realloc(block, size) : nullptr;
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return isGranted() ? __libc_memalign(alignment, size) : nullptr;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    void* const made = memalign(alignment, size);
    if (made == nullptr) return ENOMEM;
    *block = made;
    return 0;
}
}

FailingHeap::FailingHeap(std::size_t number, Refused refused) noexcept {
    asked = 0;
    refusedAny = false;
    refusesAllAfter = refused == Refused::kAllAfter;
    refusedFirst = number;
}

FailingHeap::~FailingHeap() {
    refusedFirst = 0;
}

bool FailingHeap::hasRefused() const noexcept {
    return refusedAny;
}
