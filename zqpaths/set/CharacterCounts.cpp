#include "zqpaths/set/CharacterCounts.hpp"

#include <cstddef>
#include <limits>

#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kCharacterCount = std::size_t{std::numeric_limits<char16_t>::max()} + 1;
constexpr std::size_t kLeastCharacters = 2;

}  // namespace

CharacterCounts::CharacterCounts() : counts_(kCharacterCount) {}

void CharacterCounts::count(std::string_view component) {
    std::size_t position = 0;
    for (; position < component.size() && isAscii(component[position]); ++position)
        ++counts_[static_cast<unsigned char>(component[position])];
    if (position == component.size()) return;

    text_.clear();
    appendUtf16(component.substr(position), text_);
    for (const char16_t character : text_) ++counts_[character];
}

void CharacterCounts::add(const CharacterCounts& other) noexcept {
    for (std::size_t character = 0; character < kCharacterCount; ++character)
        counts_[character] += other.counts_[character];
}

std::u16string CharacterCounts::characters() const {
    std::u16string found;
    for (std::size_t character = 0; character < kCharacterCount; ++character)
        if (counts_[character] > 0) found.push_back(static_cast<char16_t>(character));
    for (char16_t standIn = 0; found.size() < kLeastCharacters; ++standIn)
        if (counts_[standIn] == 0) found.insert(found.begin() + standIn, standIn);
    return found;
}

std::vector<double> CharacterCounts::frequencies() const {
    std::vector<double> found;
    for (const char16_t character : characters())
        found.push_back(static_cast<double>(counts_[character]));
    return found;
}

}  // namespace zqpaths
