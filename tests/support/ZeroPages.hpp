#pragma once
// Bytes that are all zero and take no memory until they are written, so that what claims to be of
// gigabytes can be tried:
//
//     ZeroPages pages(std::size_t{1} << 35);
//     pages.bytes()[0] = std::byte{1};
//
// Threads: belongs to one thread at a time.

#include <sys/mman.h>

#include <cstddef>
#include <new>
#include <span>

class ZeroPages {
public:
    /// Throws std::bad_alloc if the system has not so many addresses for a process.
    explicit ZeroPages(std::size_t size)
        : begin_(::mmap(nullptr, size, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)),
          size_(size) {
        if (begin_ == MAP_FAILED) throw std::bad_alloc();
    }
    ZeroPages(const ZeroPages&) = delete;
    ZeroPages& operator=(const ZeroPages&) = delete;
    ~ZeroPages() { ::munmap(begin_, size_); }

    std::span<std::byte> bytes() const noexcept { return {static_cast<std::byte*>(begin_), size_}; }

private:
    void* begin_;
    std::size_t size_;
};
