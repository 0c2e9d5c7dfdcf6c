#include "tools/zqpaths/CharacterCounts.hpp"

#include <limits>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathComponents.hpp"
#include "tools/zqpaths/PathText.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kCharacterCount = std::size_t{std::numeric_limits<char16_t>::max()} + 1;
constexpr std::size_t kLeastCharacters = 2;

}  // namespace

CharacterCounts::CharacterCounts() : counts_(kCharacterCount) {}

void CharacterCounts::count(std::string_view path) {
    const std::string_view folder = path.substr(0, folderLength(path));
    if (pathCount_ == 0 || folder != folder_) {
        folder_ = folder;
        std::vector<std::string_view> components;
        cutFolder(folder, components);
        for (const std::string_view component : components) countName(component);
    }
    countName(path.substr(folder.size()));
    ++pathCount_;
    byteCount_ += path.size();
}

void CharacterCounts::countName(std::string_view name) {
    text_.clear();
    appendUtf16(name, text_);
    for (const char16_t character : text_) ++counts_[character];
}

void CharacterCounts::add(std::u16string_view characters, const std::vector<double>& frequencies) {
    if (characters.size() != frequencies.size())
        throw Failure(ExitStatus::kDamaged,
                      "the set has " + std::to_string(characters.size()) + " characters but " +
                          std::to_string(frequencies.size()) + " frequencies");
    for (std::size_t i = 0; i < characters.size(); ++i)
        counts_[characters[i]] += static_cast<std::uint64_t>(frequencies[i]);
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
