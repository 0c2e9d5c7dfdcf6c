#include "binding/CountedCharacters.hpp"

#include <limits>

namespace binding {

CountedCharacters::CountedCharacters()
    : counts_(std::size_t{std::numeric_limits<char16_t>::max()} + 1) {}

void CountedCharacters::count(std::u16string_view name) {
    for (const char16_t character : name) {
        if (counts_[character] == 0.0) met_.push_back(character);
        counts_[character] += 1.0;
    }
}

std::unordered_map<char16_t, double> CountedCharacters::frequencies() const {
    std::unordered_map<char16_t, double> frequencyOf;
    for (const char16_t character : met_) frequencyOf.emplace(character, counts_[character]);
    return frequencyOf;
}

}  // namespace binding
