#include <cstring>

#include "compressedpaths/HuffmanPathTreeExceptions.hpp"
#include "compressedpaths/coding/CodeTableFields.hpp"
#include "compressedpaths/coding/CodeTables.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace compressedpaths {
namespace {

using namespace code_tables;
using sixpacks::storeBits;

/// Writes code words, the first bit lowest, and up to eight bytes after them.
class WordWriter {
public:
    explicit WordWriter(std::uint8_t* out) noexcept : begin_(out), out_(out) {}

    /// Appends the low `length` bits, 56 at most, of `bits`, which has no one above them.
    void append(std::uint64_t bits, unsigned length) noexcept {
        held_ |= bits << heldCount_;
        heldCount_ += length;
        storeBits(held_, out_);
        out_ += heldCount_ / 8;
        held_ >>= heldCount_ & ~7U;
        heldCount_ &= 7;
    }

    std::size_t bitCount() const noexcept {
        return 8 * static_cast<std::size_t>(out_ - begin_) + heldCount_;
    }

private:
    std::uint8_t* begin_;
    std::uint8_t* out_;
    std::uint64_t held_ = 0;
    unsigned heldCount_ = 0;  // bits in held_, below 8 between calls
};

/// Finds code words.
class WordFinder {
public:
    explicit WordFinder(const CodeTables::Arrays& arrays) noexcept
        : pageOf_(arrays.pageOf.data()),
          words_(arrays.words.data()),
          pageCount_(arrays.words.size() / kPageSize) {}

    std::uint64_t operator()(char16_t character) const noexcept {
        const std::size_t page = pageOf_[character >> 8];
        return page < pageCount_ ? words_[page * kPageSize + (character & 0xFF)] : kNoWord;
    }

private:
    const std::uint16_t* pageOf_;
    const std::uint64_t* words_;
    std::size_t pageCount_;
};

/// Writes the code words of all characters; false if one has no word of 56 bits or fewer.
bool writeShortWords(const CodeTables::Arrays& arrays, std::u16string_view text,
                     WordWriter& writer) noexcept {
    const WordFinder wordOf(arrays);
    const char16_t* next = text.data();
    const char16_t* const end = next + text.size();
    while (next != end) {
        if (end - next >= 4) {
            // Most words are short: four take one store together, and do not wait for each other.
            const std::uint64_t a = wordOf(next[0]);
            const std::uint64_t b = wordOf(next[1]);
            const std::uint64_t c = wordOf(next[2]);
            const std::uint64_t d = wordOf(next[3]);
            const unsigned two = lengthOf(a) + lengthOf(b);
            const unsigned four = two + lengthOf(c) + lengthOf(d);
            if (four <= kMaxWordLength) {
                const std::uint64_t ab = (a & kWordBits) | (b & kWordBits) << lengthOf(a);
                const std::uint64_t cd = (c & kWordBits) | (d & kWordBits) << lengthOf(c);
                writer.append(ab | cd << two, four);
                next += 4;
                continue;
            }
        }
        const std::uint64_t word = wordOf(*next++);
        if (lengthOf(word) > kMaxWordLength) return false;
        writer.append(word & kWordBits, lengthOf(word));
    }
    return true;
}

/// Appends the bits of a long word to `bits`; false if the arrays have no such word.
bool appendLongWord(const CodeTables::Arrays& arrays, std::uint64_t word, std::vector<bool>& bits) {
    const std::uint64_t entry = 2 * (word & kWordBits);
    if (entry + 2 > arrays.longWords.size()) return false;
    const std::size_t begin = arrays.longWords[entry];
    const std::size_t length = arrays.longWords[entry + 1];
    if (begin + (length + 7) / 8 > arrays.longBits.size()) return false;
    for (std::size_t bit = 0; bit < length; ++bit)
        bits.push_back((arrays.longBits[begin + bit / 8] >> bit % 8 & 1) != 0);
    return true;
}

/// The code words of all characters, however long.
std::vector<bool> wordsOf(const CodeTables::Arrays& arrays, std::u16string_view text) {
    const WordFinder wordOf(arrays);
    std::vector<bool> bits;
    for (const char16_t character : text) {
        const std::uint64_t word = wordOf(character);
        if (lengthOf(word) <= kMaxWordLength) {
            for (unsigned bit = 0; bit < lengthOf(word); ++bit)
                bits.push_back((word >> bit & 1) != 0);
        } else if (lengthOf(word) != lengthOf(kLongWord) || !appendLongWord(arrays, word, bits)) {
            throw CodeNotFoundException();
        }
    }
    return bits;
}

}  // namespace

std::size_t CodeTables::appendCode(std::u16string_view component,
                                   FlatArray<std::uint8_t>& names) const {
    if (component.empty()) throw NoCodeForEmptyString();
    if (arrays_.pageOf.isEmpty()) throw CodeNotFoundException();

    const std::size_t before = names.size();
    const std::size_t room =
        1 + kMaxVarintSize + component.size() * kMaxWordLength / 8 + sizeof(std::uint64_t);
    names.reserveFor(room);
    std::uint8_t* const head = names.extend(room);
    WordWriter writer(head + 1);
    const bool areShort = writeShortWords(arrays_, component, writer);
    const std::size_t bitCount = writer.bitCount();
    if (!areShort || bitCount == 0) {
        names.truncate(before);
        std::vector<std::uint8_t> code;
        sixpacks::boolVecToBytes(code, wordsOf(arrays_, component));
        appendStoredName(code, names);
        return code.size();
    }

    // The head goes before the bits, whose number is not known before: most take one byte.
    std::uint8_t* bits = head + 1;
    if (bitCount < kLongName) {
        *head = static_cast<std::uint8_t>(bitCount);
    } else {
        std::memmove(bits + varintSize(bitCount), bits, (bitCount + 7) / 8);
        *head = kLongName;
        bits = writeVarint(bitCount, bits);
    }
    names.truncate(before + static_cast<std::size_t>(bits - head) + (bitCount + 7) / 8);
    return bitCount / 8 + 2;
}

}  // namespace compressedpaths
