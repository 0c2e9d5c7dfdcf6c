#include "compressedpaths/CodeTables.hpp"

#include <cassert>

namespace compressedpaths {

void CodeWordTable::set(char16_t character, const std::deque<bool>& word) {
    if (pageOf_.empty()) pageOf_.assign(256, kNoPage);
    std::uint16_t& page = pageOf_[character >> 8];
    if (page == kNoPage) {
        pages_.emplace_back().fill({0, Word::kAbsent});
        page = static_cast<std::uint16_t>(pages_.size() - 1);
    }

    Word& stored = pages_[page][character & 0xFF];
    if (word.size() > Word::kMaxLength) {
        stored = {0, Word::kLong};
        return;
    }
    std::uint64_t bits = 0;
    for (auto bit = word.rbegin(); bit != word.rend(); ++bit)
        bits = bits << 1 | static_cast<std::uint64_t>(*bit);
    stored.bits = bits & ((std::uint64_t{1} << Word::kMaxLength) - 1);
    stored.length = word.size() & 0x3F;
}

DecodingTable::DecodingTable(unsigned width) : steps_(std::size_t{1} << width), width_(width) {
    assert(width <= kMaxWidth);
}

void DecodingTable::fill(std::uint64_t prefix, Step step) noexcept {
    const std::size_t distance = std::size_t{1} << step.length;
    for (std::size_t position = prefix; position < steps_.size(); position += distance)
        steps_[position] = step;
}

}  // namespace compressedpaths
