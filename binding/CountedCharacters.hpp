#pragma once
// CountedCharacters counts the characters of names.

#include <string_view>
#include <unordered_map>
#include <vector>

namespace binding {

class CountedCharacters {
public:
    CountedCharacters();

    /// O(characters).
    void count(std::u16string_view name);

    /// How often each character occurred. Characters are put in as they were first met: on equal
    /// frequencies the order inside the map decides the code words.
    std::unordered_map<char16_t, double> frequencies() const;

private:
    std::vector<double> counts_;  // by character; an array: every character of a set passes through
    std::vector<char16_t> met_;   // in the order of first meeting
};

}  // namespace binding
