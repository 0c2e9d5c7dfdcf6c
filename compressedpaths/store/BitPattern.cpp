#include "compressedpaths/store/BitPattern.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

namespace compressedpaths {
namespace {

constexpr std::size_t kMaxBits = 56;  // of 64 that are loaded, after seven that may precede
constexpr std::size_t kMaxStep = kMaxBits / 8;
constexpr std::size_t kMaxWords = 512;  // that are looked for: one in 128 is met by chance

constexpr std::uint64_t ones(std::size_t count) noexcept {
    return (std::uint64_t{1} << count) - 1;
}

}  // namespace

BitPattern::BitPattern(const NameView& text)
    : bitCount_(std::min(text.length, kMaxBits)), byteSize_((text.length + 7 + 7) / 8) {
    mask_ = ones(bitCount_);
    for (std::size_t bit = 0; bit < bitCount_; ++bit)
        bits_ |= std::uint64_t{text.data[bit / 8] >> bit % 8 & 1U} << bit;
    step_ = kMaxStep;
    while (step_ > 1 && wordCountAtSteps(step_) > kMaxWords) --step_;
    listWords();
}

/// Of two words `step` bytes apart, the one that has more bits of a text which begins so many bits
/// after the first one does, and before the second.
BitPattern::FixedBits BitPattern::bestWord(std::size_t step, std::size_t begin) const noexcept {
    const std::size_t distance = 8 * step;
    const std::size_t end = begin + bitCount_;
    const std::size_t inFirst = begin < kWordBits ? std::min(end, kWordBits) - begin : 0;
    const std::size_t inSecond = end > distance ? std::min(end - distance, kWordBits) : 0;
    if (inFirst >= inSecond) return {(bits_ & ones(inFirst)) << begin, ones(inFirst) << begin};
    return {bits_ >> (distance - begin) & ones(inSecond), ones(inSecond)};
}

/// How many words can be where the text begins or goes on; some are counted more than once.
std::size_t BitPattern::wordCountAtSteps(std::size_t step) const noexcept {
    std::size_t count = 0;
    for (std::size_t begin = 0; begin < 8 * step; ++begin) {
        const auto fixedCount = static_cast<std::size_t>(std::popcount(bestWord(step, begin).mask));
        count += std::size_t{1} << (kWordBits - fixedCount);
    }
    return count;
}

void BitPattern::listWords() {
    for (std::size_t begin = 0; begin < 8 * step_; ++begin) {
        const FixedBits fixed = bestWord(step_, begin);
        // All words with these bits: the others count down from all ones.
        const std::uint64_t free = ones(kWordBits) & ~fixed.mask;
        for (std::uint64_t others = free;; others = (others - 1) & free) {
            words_.set(fixed.bits | others);
            if (others == 0) break;
        }
    }
}

const std::uint8_t* BitPattern::find(const std::uint8_t* from,
                                     const std::uint8_t* end) const noexcept {
    for (const std::uint8_t* word = from; word < end; word += step_) {
        std::uint16_t bits = 0;
        std::memcpy(&bits, word, sizeof bits);
        if (!words_[bits]) continue;
        if (const std::uint8_t* const begin = beginNear(from, word, end)) return begin;
    }
    return end;
}

/// The first byte that a text can begin in which a word is part of; null without one.
const std::uint8_t* BitPattern::beginNear(const std::uint8_t* from, const std::uint8_t* word,
                                          const std::uint8_t* end) const noexcept {
    const std::uint8_t* byte = word - std::min(step_, static_cast<std::size_t>(word - from));
    for (; byte < end && byte <= word + 1; ++byte)
        if (canBeginIn(byte)) return byte;
    return nullptr;
}

bool BitPattern::canBeginIn(const std::uint8_t* byte) const noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, byte, sizeof word);
    for (unsigned shift = 0; shift < 8; ++shift)
        if (((word >> shift ^ bits_) & mask_) == 0) return true;
    return false;
}

}  // namespace compressedpaths
