#pragma once
// CharacterCounts is how often each UTF-16 character occurs in components: what a code is made of.
//
//     CharacterCounts counts;
//     counts.count("usr/");
//     counts.characters();   // u"/rsu", with a frequency for each
//
// Threads: belongs to one thread at a time; several are added up.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zqpaths {

class CharacterCounts {
public:
    CharacterCounts();

    /// Counts the characters of a component, given as bytes. O(bytes).
    void count(std::string_view component);

    void add(const CharacterCounts& other) noexcept;

    /// The characters that occur, ascending. A code needs two: where there are fewer, others that
    /// occur nowhere stand in. O(characters of UTF-16), as the next.
    std::u16string characters() const;
    /// How often each of them occurs.
    std::vector<double> frequencies() const;

private:
    std::vector<std::uint64_t> counts_;  // by character
    std::u16string text_;
};

}  // namespace zqpaths
