#pragma once
// BitPattern finds the code bits of a text in coded names, wherever in a byte they begin, without
// decoding:
//
//     const BitPattern pattern(viewName(coded.data(), coded.end()));
//     const std::uint8_t* hit = pattern.find(names, names + size);  // the byte that it begins in
//
// What is found may still be bits that no character begins with: who wants to know decodes the
// name. Names in which nothing is found do not hold the text.
//
// Words of two bytes are looked up among those that can be there if the text is near, as far apart
// as the length of the text allows. Of 30 bits, one word in three bytes is enough:
//
//     looked up     ████████ ████████          ████████ ████████          ████████ ████████
//     the text             x xxxxxxxx xxxxxxxx xxxxxxxx xxxxx...
//
// For each of the 24 bits that it can begin at, one of the words that it reaches into has twelve
// bits of it or more. Every word with these bits is among those that are looked for, whatever its
// other bits are.
//
// Threads: never changes; any number of threads may read it.

#include <bitset>
#include <cstddef>
#include <cstdint>

#include "compressedpaths/store/StoredName.hpp"

namespace compressedpaths {

class BitPattern {
public:
    /// Of a text of at least one bit. O(1): some ten thousand steps for a text of few bits, a
    /// thousand for others.
    explicit BitPattern(const NameView& text);

    /// The first byte from `from` on that a text which ends before `end` can begin in, or `end`.
    /// Sixteen bytes past `end` are readable. O(bytes).
    const std::uint8_t* find(const std::uint8_t* from, const std::uint8_t* end) const noexcept;

    /// The most bytes that the text has bits in.
    std::size_t byteSize() const noexcept { return byteSize_; }

private:
    static constexpr std::size_t kWordBits = 16;

    /// The bits of the text that a word has.
    struct FixedBits {
        std::uint64_t bits;
        std::uint64_t mask;
    };
    FixedBits bestWord(std::size_t step, std::size_t begin) const noexcept;
    std::size_t wordCountAtSteps(std::size_t step) const noexcept;
    void listWords();
    const std::uint8_t* beginNear(const std::uint8_t* from, const std::uint8_t* word,
                                  const std::uint8_t* end) const noexcept;
    bool canBeginIn(const std::uint8_t* byte) const noexcept;

    std::uint64_t bits_ = 0;  // of the text, the first ones
    std::uint64_t mask_ = 0;  // one for each of them
    std::size_t bitCount_;    // so many
    std::size_t byteSize_;
    std::size_t step_ = 1;  // bytes from one word that is looked up to the next
    std::bitset<std::size_t{1} << kWordBits> words_;
};

}  // namespace compressedpaths
