#pragma once
// FlatArray is one block of plain values that grows by an eighth, so that little of it stands
// empty, and through realloc, which moves a large block by remapping its pages: no copy of it ever
// stands beside it. It can also borrow its values, from a mapped file for example, until it is
// changed.
//
//     FlatArray<std::uint32_t> offsets;
//     offsets.reserveFor(1);  // the one step that can throw
//     offsets.append(7);
//
// Threads: as a std::vector.

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace compressedpaths {

/// Bytes from which on a block has pages of its own.
inline constexpr std::size_t kMappedSize = std::size_t{1} << 18;

/// A block with another size and the same bytes, or a new one for null and 0. Where there is no
/// memory it asks the new-handler, as operator new does, and throws std::bad_alloc; the block is
/// then as it was. O(byteSize) below kMappedSize, and once above.
void* resizeBlock(void* block, std::size_t oldByteSize, std::size_t byteSize);
void freeBlock(void* block, std::size_t byteSize) noexcept;

template <class T>
class FlatArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    /// Bytes past the last value that may be read, whatever they hold: words are loaded whole.
    static constexpr std::size_t kReadableBytes = 16;

    FlatArray() = default;
    FlatArray(FlatArray&& other) noexcept { swap(other); }
    FlatArray& operator=(FlatArray&& other) noexcept {
        swap(other);
        return *this;
    }
    FlatArray(const FlatArray& other) {
        if (other.size_ == 0) return;
        reserveExactly(other.size_);
        std::memcpy(data_, other.data_, other.size_ * sizeof(T));
        size_ = other.size_;
    }
    FlatArray& operator=(const FlatArray& other) {
        FlatArray copy(other);
        swap(copy);
        return *this;
    }
    ~FlatArray() {
        if (!isBorrowed_) freeBlock(data_, blockSize(capacity_));
    }

    /// An array of values that belong to somebody else and outlive it, with kReadableBytes after
    /// them. It is copied when it is first changed.
    static FlatArray borrowing(std::span<const T> values) noexcept {
        FlatArray array;
        array.data_ = const_cast<T*>(values.data());
        array.size_ = values.size();
        array.isBorrowed_ = true;
        return array;
    }

    std::size_t size() const noexcept { return size_; }
    bool isEmpty() const noexcept { return size_ == 0; }
    bool empty() const noexcept { return size_ == 0; }
    const T* data() const noexcept { return data_; }
    const T* end() const noexcept { return data_ + size_; }
    std::span<const T> values() const noexcept { return {data_, size_}; }
    std::size_t heapByteSize() const noexcept { return capacity_ * sizeof(T); }
    bool isBorrowed() const noexcept { return isBorrowed_; }

    const T& operator[](std::size_t position) const noexcept {
        assert(position < size_);
        return data_[position];
    }

    /// A value to be changed. Requires that the array owns its values.
    T& at(std::size_t position) noexcept {
        assert(position < size_ && !isBorrowed_);
        return data_[position];
    }

    /// Makes the values the array's own. Throws only std::bad_alloc. O(1), or O(size) the first
    /// time.
    void own() {
        if (isBorrowed_) *this = FlatArray(std::as_const(*this));
    }

    /// Makes room for `count` values more. Throws only std::bad_alloc; nothing has changed then.
    /// Amortised O(count).
    void reserveFor(std::size_t count) {
        own();
        if (count <= capacity_ - size_) return;
        reserveExactly(std::max(size_ + count, capacity_ + capacity_ / 8 + kFirstGrowth));
    }

    /// Appends a value that there is room for. O(1).
    void append(const T& value) noexcept {
        assert(size_ < capacity_);
        data_[size_++] = value;
    }

    /// Appends values that there is room for. O(count).
    void append(const T* values, std::size_t count) noexcept {
        assert(count <= capacity_ - size_);
        if (count > 0) std::memcpy(data_ + size_, values, count * sizeof(T));
        size_ += count;
    }

    /// Inserts a value that there is room for. O(values after it).
    void insert(std::size_t position, const T& value) noexcept {
        assert(size_ < capacity_ && position <= size_);
        std::memmove(data_ + position + 1, data_ + position, (size_ - position) * sizeof(T));
        data_[position] = value;
        ++size_;
    }

    /// Appends values that the caller writes, for which there is room, and returns where. O(1).
    T* extend(std::size_t count) noexcept {
        assert(count <= capacity_ - size_);
        size_ += count;
        return data_ + size_ - count;
    }

    void push(const T& value) {
        const T copy = value;  // may stand in this array
        reserveFor(1);
        append(copy);
    }

    /// Drops what stands at `size` and after. O(1).
    void truncate(std::size_t size) noexcept {
        assert(size <= size_);
        size_ = size;
    }

    /// Makes an array of `size` equal values. Throws only std::bad_alloc; nothing has changed then.
    void assign(std::size_t size, const T& value) {
        FlatArray fresh;
        if (size > 0) fresh.reserveExactly(size);
        for (; fresh.size_ < size; ++fresh.size_) fresh.data_[fresh.size_] = value;
        swap(fresh);
    }

    /// Gives room that is not used back to the heap. What cannot be given back stays.
    void shrink() noexcept {
        if (isBorrowed_ || capacity_ == size_) return;
        try {
            resizeTo(size_);
        } catch (const std::bad_alloc&) {
            return;  // no less than what it had
        }
    }

    void swap(FlatArray& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
        std::swap(isBorrowed_, other.isBorrowed_);
    }

private:
    static constexpr std::size_t kFirstGrowth = 4;  // values; an eighth of few is none

    /// Bytes of a block for so many values; none has no block.
    static std::size_t blockSize(std::size_t capacity) noexcept {
        return capacity == 0 ? 0 : capacity * sizeof(T) + kReadableBytes;
    }

    void reserveExactly(std::size_t capacity) {
        if (capacity > (std::numeric_limits<std::size_t>::max() / 2) / sizeof(T))
            throw std::bad_alloc();
        resizeTo(capacity);
    }

    void resizeTo(std::size_t capacity) {
        data_ = static_cast<T*>(resizeBlock(data_, blockSize(capacity_), blockSize(capacity)));
        capacity_ = capacity;
    }

    T* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;  // 0 while the values are borrowed
    bool isBorrowed_ = false;
};

}  // namespace compressedpaths
