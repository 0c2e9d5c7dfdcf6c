#include "tests/support/CountedHeap.hpp"

#include <cerrno>

// The allocator under the names by which the C library keeps it when a program defines its own.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void __libc_free(void* block);
}

namespace {

constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

std::size_t limit = kUnlimited;
std::size_t askedBlocks = 0;
std::size_t freedBlocks = 0;

bool isGranted() noexcept {
    return askedBlocks++ < limit;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) noexcept {
    if (isGranted()) return __libc_malloc(size);
    errno = ENOMEM;
    return nullptr;
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    if (isGranted()) return __libc_calloc(count, size);
    errno = ENOMEM;
    return nullptr;
}

void free(void* block) noexcept {
    if (block != nullptr) ++freedBlocks;
    __libc_free(block);
}
}

CountedHeap::CountedHeap(std::size_t granted) noexcept {
    askedBlocks = 0;
    freedBlocks = 0;
    limit = granted;
}

CountedHeap::~CountedHeap() {
    limit = kUnlimited;
}

std::size_t CountedHeap::asked() const noexcept {
    return askedBlocks;
}

std::size_t CountedHeap::freed() const noexcept {
    return freedBlocks;
}
