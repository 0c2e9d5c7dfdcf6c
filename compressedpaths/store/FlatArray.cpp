#include "compressedpaths/store/FlatArray.hpp"

#include <sys/mman.h>

namespace compressedpaths {
namespace {

bool isMapped(std::size_t byteSize) noexcept {
    return byteSize >= kMappedSize;
}

// The thread sanitizer does not see that mremap gives an address to other pages: what a thread
// wrote to those that were there before looks like a race.
#ifdef __SANITIZE_THREAD__
constexpr bool kMayRemap = false;
#else
constexpr bool kMayRemap = true;
#endif

/// The block, or null where there is no memory.
void* tryNewBlock(std::size_t byteSize) noexcept {
    if (!isMapped(byteSize)) return std::malloc(byteSize);
    void* const pages =
        mmap(nullptr, byteSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

void* tryResize(void* block, std::size_t oldByteSize, std::size_t byteSize) noexcept {
    if (kMayRemap && isMapped(oldByteSize) && isMapped(byteSize)) {
        void* const pages = mremap(block, oldByteSize, byteSize, MREMAP_MAYMOVE);
        return pages == MAP_FAILED ? nullptr : pages;
    }
    if (!isMapped(oldByteSize) && !isMapped(byteSize)) return std::realloc(block, byteSize);

    void* const moved = tryNewBlock(byteSize);
    if (moved == nullptr) return nullptr;
    if (block != nullptr) std::memcpy(moved, block, std::min(oldByteSize, byteSize));
    freeBlock(block, oldByteSize);
    return moved;
}

}  // namespace

void* resizeBlock(void* block, std::size_t oldByteSize, std::size_t byteSize) {
    if (byteSize == 0) {
        freeBlock(block, oldByteSize);
        return nullptr;
    }
    while (true) {
        void* const resized = tryResize(block, oldByteSize, byteSize);
        if (resized != nullptr) return resized;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) throw std::bad_alloc();
        handler();
    }
}

void freeBlock(void* block, std::size_t byteSize) noexcept {
    if (isMapped(byteSize))
        munmap(block, byteSize);
    else
        std::free(block);
}

}  // namespace compressedpaths
