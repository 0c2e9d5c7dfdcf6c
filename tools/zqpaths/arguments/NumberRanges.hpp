#pragma once
// Numbers of paths as people write them: one, or a row of them with both ends.
//
//     NumberRange range = parseNumberRange("10:1:-4");  // 10, 6, 2
//     range.size();                                      // 3
//     range[1];                                          // 6
//     range.requireIn(10);                               // Failure if a set of 10 has not all
//
// "5" is the one number, "2:5" counts up by one, "2:9:3" is 2, 5, 8. Only a step below zero counts
// down: "5:2" says by mistake more often than not what "5:2:-1" says.

#include <cstdint>
#include <string_view>

namespace zqpaths::program {

class NumberRange {
public:
    /// The numbers from `first` on, `step` apart, at most up to or down to `last`, which lies in
    /// the direction of the step; both at least 1, the step not 0.
    NumberRange(std::uint64_t first, std::uint64_t last, std::int64_t step) noexcept;

    std::uint64_t size() const noexcept { return size_; }  // at least 1

    /// Requires that `index` is below size().
    std::uint64_t operator[](std::uint64_t index) const noexcept;

    /// Throws Failure kFailed, which tells number and size, if a set of this size has not all of
    /// the numbers. O(1).
    void requireIn(std::uint64_t setSize) const;

private:
    std::uint64_t first_;
    std::uint64_t stepLength_;
    bool isDownwards_;
    std::uint64_t size_;
};

/// Throws Failure kFailed, which tells number and size, if a set of this size has no such path.
void requirePathNumber(std::uint64_t number, std::uint64_t setSize);

/// Throws Failure kFailed, which tells the text and what is wrong with it.
NumberRange parseNumberRange(std::string_view text);

}  // namespace zqpaths::program
