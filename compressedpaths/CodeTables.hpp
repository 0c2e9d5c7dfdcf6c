#pragma once
// What is derived from a coding tree to make coding and decoding fast. No decision is made here:
// the coding tree and its code words say what the bytes are, these tables say it sooner.
//
// CodeWordTable finds a character's code word without hashing. It has two levels, so that an object
// with a small alphabet stays small: pages of 256 characters, and only where there are any.
//
// DecodingTable finds the character that the next bits lead to, many bits at once; code words that
// are longer than a look-up are left to a walk through the coding tree.
//
// Threads: built by one thread, then read by any number.

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace compressedpaths {

class CodeWordTable {
public:
    struct Word {
        static constexpr unsigned kMaxLength = 58;
        static constexpr unsigned kLong = 62;    // the length of a word of more bits than that
        static constexpr unsigned kAbsent = 63;  // the length of no word

        std::uint64_t bits : kMaxLength;  // the first one lowest; none of a long word
        std::uint64_t length : 6;
    };

    /// Stores the code word of a character. Throws only std::bad_alloc. O(code length).
    void set(char16_t character, const std::deque<bool>& word);

    /// The code word of a character. O(1).
    Word find(char16_t character) const noexcept {
        const std::size_t page = pageOf_.empty() ? kNoPage : pageOf_[character >> 8];
        return page == kNoPage ? Word{0, Word::kAbsent} : pages_[page][character & 0xFF];
    }

private:
    using Page = std::array<Word, 256>;
    static constexpr std::uint16_t kNoPage = 0xFFFF;

    std::vector<std::uint16_t> pageOf_;  // by the character's high byte; empty without characters
    std::vector<Page> pages_;
};

class DecodingTable {
public:
    /// Of 8 KiB at most, a table stays in the first-level cache beside what it decodes.
    static constexpr unsigned kMaxWidth = 11;

    struct Step {
        char16_t character;
        std::uint16_t length;  // bits that lead to the character; 0 if more than a look-up has
    };

    /// An empty table: there is nothing to find in it.
    DecodingTable() = default;

    /// A table that is looked up by `width` bits, at most kMaxWidth. Throws only std::bad_alloc.
    explicit DecodingTable(unsigned width);

    /// Stores that the low `step.length` bits of `prefix` lead to a character, whatever follows
    /// them. O(2^(width - length)).
    void fill(std::uint64_t prefix, Step step) noexcept;

    bool isEmpty() const noexcept { return steps_.empty(); }
    unsigned width() const noexcept { return width_; }

    /// Where the low bits of `bits` lead from the root; the bits above width() are ignored. O(1).
    Step find(std::uint64_t bits) const noexcept { return steps_[bits & (steps_.size() - 1)]; }

private:
    std::vector<Step> steps_;  // 2^width_ of them
    unsigned width_ = 0;
};

}  // namespace compressedpaths
