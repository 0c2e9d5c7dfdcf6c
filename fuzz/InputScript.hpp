#pragma once
// InputScript reads the bytes of one fuzz input as choices, in order. Past the end every choice
// is 0, so that cutting an input short leaves a valid one:
//
//     InputScript script(data, size);
//     while (!script.isAtEnd()) switch (script.byte() % 3) { ... }
//
// Threads: a script belongs to one thread; the bytes must outlive it.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace fuzzing {

class InputScript {
public:
    InputScript(const std::uint8_t* data, std::size_t size) noexcept : left_(data, size) {}

    bool isAtEnd() const noexcept { return left_.empty(); }

    std::uint8_t byte() noexcept { return static_cast<std::uint8_t>(integer(1)); }

    /// The next `byteCount` (1 to 8) bytes, lowest first.
    std::uint64_t integer(unsigned byteCount) noexcept {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < byteCount && !left_.empty(); ++i, left_ = left_.subspan(1))
            value |= std::uint64_t{left_.front()} << 8 * i;
        return value;
    }

    /// The next `count` bytes, or all that are left.
    std::vector<std::uint8_t> bytes(std::size_t count) {
        const auto taken = left_.first(std::min(count, left_.size()));
        left_ = left_.subspan(taken.size());
        return {taken.begin(), taken.end()};
    }

    std::vector<std::uint8_t> rest() { return bytes(left_.size()); }

private:
    std::span<const std::uint8_t> left_;
};

}  // namespace fuzzing
