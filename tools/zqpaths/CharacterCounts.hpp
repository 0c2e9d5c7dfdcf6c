#pragma once
// CharacterCounts counts the characters of paths as a set codes them: each folder once for each run
// of neighbouring paths in it, each file name.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zqpaths {

class CharacterCounts {
public:
    CharacterCounts();

    /// Takes in the next path, which is not empty and holds no NUL. O(bytes).
    void count(std::string_view path);

    /// Adds counts that are known. Throws Failure kDamaged if the lists differ in length.
    void add(std::u16string_view characters, const std::vector<double>& frequencies);

    /// Those that occur, ascending, and how often. A code needs two characters: where fewer occur,
    /// the least others stand in.
    std::u16string characters() const;
    std::vector<double> frequencies() const;

    /// How often a character occurs.
    std::uint64_t countOf(char16_t character) const { return counts_[character]; }

    std::uint64_t pathCount() const noexcept { return pathCount_; }
    std::uint64_t byteCount() const noexcept { return byteCount_; }  // of the paths

private:
    void countName(std::string_view name);

    std::vector<std::uint64_t> counts_;  // by character
    std::string folder_;                 // of the path before
    std::u16string text_;                // of one name, used again
    std::uint64_t pathCount_ = 0;
    std::uint64_t byteCount_ = 0;
};

}  // namespace zqpaths
