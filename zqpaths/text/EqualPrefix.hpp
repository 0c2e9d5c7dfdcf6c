#pragma once
// How far two texts are the same:
//
//     equalPrefix("usr/bin/", "usr/bin/env");  // 8
//
// Threads: a free function without state.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zqpaths {

/// The number of bytes at the front that are equal. Looks at eight at a time: of little-endian
/// words, the lowest bit in which they differ is in the first byte that does. O(equal bytes).
inline std::size_t equalPrefix(std::string_view one, std::string_view other) noexcept {
    const std::size_t size = std::min(one.size(), other.size());
    std::size_t count = 0;
    for (; count + sizeof(std::uint64_t) <= size; count += sizeof(std::uint64_t)) {
        std::uint64_t first = 0;
        std::uint64_t second = 0;
        std::memcpy(&first, one.data() + count, sizeof first);
        std::memcpy(&second, other.data() + count, sizeof second);
        if (first != second)
            return count + static_cast<std::size_t>(std::countr_zero(first ^ second)) / 8;
    }
    while (count < size && one[count] == other[count]) ++count;
    return count;
}

}  // namespace zqpaths
