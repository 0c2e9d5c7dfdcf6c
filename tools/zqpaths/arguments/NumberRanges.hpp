#pragma once
// Numbers of paths as people write them: one, or a row of them with both ends.
//
//     NumberRange range = parseNumberRange("10:1:-4", 10);  // 10, 6, 2 of a set of 10 paths
//     range.size();                                          // 3
//     range[1];                                              // 6
//
// "5" is the one number, "2:5" counts up by one, "2:9:3" is 2, 5, 8. Only a step below zero counts
// down: "5:2" says by mistake more often than not what "5:2:-1" says. A number below zero counts
// from the end, and an end that is left out is that of the set. Of 10 paths:
//
//     -1     10              -5:    6, 7, 8, 9, 10
//     :3     1, 2, 3         ::4    1, 5, 9
//     8:     8, 9, 10        ::-1   10, 9 ... 1

#include <cstdint>
#include <string_view>

namespace zqpaths::program {

class NumberRange {
public:
    /// No numbers.
    NumberRange() = default;

    /// The numbers from `first` on, `step` apart, at most up to or down to `last`, which lies in
    /// the direction of the step; both at least 1, the step not 0.
    NumberRange(std::uint64_t first, std::uint64_t last, std::int64_t step) noexcept;

    std::uint64_t size() const noexcept { return size_; }

    /// Requires that `index` is below size().
    std::uint64_t operator[](std::uint64_t index) const noexcept;

private:
    std::uint64_t first_ = 1;
    std::uint64_t stepLength_ = 1;
    bool isDownwards_ = false;
    std::uint64_t size_ = 0;
};

/// The numbers that `text` means in a set of `setSize` paths, all of which it has. There are none
/// only where both ends are left out and the set is empty. Throws Failure kFailed, which tells the
/// text and what is wrong with it, or the number that the set has not, and its size. O(bytes).
NumberRange parseNumberRange(std::string_view text, std::uint64_t setSize);

}  // namespace zqpaths::program
