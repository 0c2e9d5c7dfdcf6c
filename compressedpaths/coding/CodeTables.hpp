#pragma once
// What is derived from a coding tree to make coding and decoding fast: flat arrays, which an image
// holds as they are. No decision is made here: the coding tree says what the code words are, these
// tables say it sooner.
//
//     CodeTables tables(shape, leaves);               // of a coding tree in pre-order
//     FlatArray<std::uint8_t> names;
//     tables.appendCode(u"readme", names);            // as StoredName.hpp says
//     std::string text;
//     tables.appendText(viewName(names.data(), names.end()), text);
//
// Coding looks a character's code word up without hashing, in pages of 256 characters of which
// there are only those that are needed. Decoding looks up kLookUpBits bits at a time and gets up to
// four ASCII characters that end within them; code words that are longer are walked through the
// coding tree from there.
//
// The fields of the integers below live in images; a field's first bit is given, and its width:
//
//     word     bits 0:58, length 58:6; a length of 62 means: `bits` is a position in longWords;
//              63: the character has no code word
//     long     two integers: where in longBits its bytes begin, and its length in bits
//     step     length 0:4 of all its characters together, or of the bits that lead on; then
//              ASCII characters: one less than their number 8:2, where each of four ends 16:4 to
//              28:4 (15: it is not there), and they themselves 32:8 to 56:8; bit 63 is zero
//              others, bit 63 is one: bit 8 zero: the character 32:16; one: the branch 32:31
//     branch   two integers: where bit 0 and bit 1 lead, to a branch, or, with the top bit set, to
//              the character in the low 16 bits; branches are in pre-order, the first is the root
//
// Threads: built by one thread, then read by any number.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "compressedpaths/store/FlatArray.hpp"
#include "compressedpaths/store/StoredName.hpp"

namespace compressedpaths {

class CodeTables {
public:
    static constexpr unsigned kLookUpBits = 12;

    /// The arrays, for who writes and reads images. All are empty without a code. Those of a code
    /// of a single leaf, which no bit leads to, have no steps and branches.
    struct Arrays {
        FlatArray<std::uint16_t> pageOf;     // by the character's high byte; 0xFFFF where none is
        FlatArray<std::uint64_t> words;      // 256 a page
        FlatArray<std::uint32_t> longWords;  // of more bits than a word has room for
        FlatArray<std::uint8_t> longBits;
        FlatArray<std::uint64_t> steps;  // by the next kLookUpBits bits
        FlatArray<std::uint32_t> branches;
    };

    CodeTables() = default;

    /// Of a coding tree of well-formed shape, true is a leaf, and with a character for each leaf.
    /// Of a repeated character the first leaf has the code word. Requires that all code words
    /// together take less than 4 GiB. Throws only std::bad_alloc. O(shape + bits of all code
    /// words).
    CodeTables(const std::vector<bool>& shape, std::u16string_view leaves);

    /// The same without code words: nothing can be coded. O(shape).
    static CodeTables forDecoding(const std::vector<bool>& shape, std::u16string_view leaves);

    /// Tables on arrays from outside. What they hold is checked where it is used; arrays of sizes
    /// that no coding tree gives are dropped, so that there is nothing to code or decode with.
    explicit CodeTables(Arrays arrays) noexcept;

    const Arrays& arrays() const noexcept { return arrays_; }

    /// True if there are two leaves or more, so that bits lead to characters.
    bool canDecode() const noexcept { return !arrays_.branches.isEmpty(); }

    /// Appends the stored form of a component's code bytes and returns the size of these code
    /// bytes. Throws NoCodeForEmptyString, CodeNotFoundException and std::bad_alloc; nothing has
    /// changed then. O(characters + bits).
    std::size_t appendCode(std::u16string_view component, FlatArray<std::uint8_t>& names) const;

    /// Appends the characters of a stored name. Bits after the last whole code word are dropped.
    /// Requires FlatArray's kReadableBytes after the name. Throws NoUsableCodingTreeException, and
    /// InvalidCodeException if the name is no code bytes or leads to no character; part may have
    /// been appended then. O(bits).
    void appendText(const NameView& name, std::u16string& text) const;

    /// The same as bytes: UTF-8, and of 0xDC80 to 0xDCFF, where they are no second half of a pair,
    /// the one byte that they stand for. Other lone surrogates take the three bytes of their
    /// number.
    void appendText(const NameView& name, std::string& text) const;

private:
    Arrays arrays_;
};

}  // namespace compressedpaths
