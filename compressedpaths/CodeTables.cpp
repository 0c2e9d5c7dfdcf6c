#include "compressedpaths/CodeTables.hpp"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>

#include "compressedpaths/HuffmanPathTreeExceptions.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace compressedpaths {
namespace {

using sixpacks::loadBits;
using sixpacks::storeBits;

constexpr std::size_t kPageCount = 256;
constexpr std::size_t kPageSize = 256;
constexpr std::uint16_t kNoPage = 0xFFFF;

constexpr unsigned kWordLengthShift = 58;
constexpr std::uint64_t kWordBits = (std::uint64_t{1} << kWordLengthShift) - 1;
// With the seven bits that a partial byte may hold already, fewer than 64: all can be shifted out.
constexpr unsigned kMaxWordLength = 56;
constexpr std::uint64_t kLongWord = std::uint64_t{62} << kWordLengthShift;
constexpr std::uint64_t kNoWord = std::uint64_t{63} << kWordLengthShift;

constexpr std::size_t kStepCount = std::size_t{1} << CodeTables::kLookUpBits;
constexpr unsigned kMaxStepCharacters = 4;
constexpr unsigned kNoEnd = 15;
constexpr std::uint64_t kOtherStep = std::uint64_t{1} << 63;
constexpr std::uint64_t kWalkStep = std::uint64_t{1} << 8;
constexpr std::uint32_t kLeaf = 0x8000'0000;

constexpr unsigned lengthOf(std::uint64_t word) noexcept {
    return static_cast<unsigned>(word >> kWordLengthShift);
}

// --- Making the tables.

/// Goes through a coding tree in pre-order, once, and writes down what it comes to.
class TableMaker {
public:
    TableMaker(CodeTables::Arrays& arrays, std::u16string_view leaves)
        : arrays_(arrays), leaves_(leaves), targets_(kStepCount) {}

    void make(const std::vector<bool>& shape, bool hasWords) {
        hasWords_ = hasWords;
        bool isComplete = shape.empty();
        for (std::size_t i = 0; i < shape.size() && !isComplete; ++i) {
            if (shape[i]) {
                addLeaf(leaves_[leafCount_++]);
                isComplete = !turnRight();
            } else {
                addBranch();
            }
        }
        assert(isComplete);
        if (!arrays_.branches.isEmpty()) makeSteps();
        arrays_.words.shrink();
        arrays_.longWords.shrink();
        arrays_.longBits.shrink();
        arrays_.branches.shrink();
    }

private:
    /// What a look-up leads to first.
    struct Target {
        std::uint32_t branch;  // as in `branches`
        unsigned length;       // bits to it
    };

    bool lastBit() const noexcept { return (path_[(depth_ - 1) / 8] >> (depth_ - 1) % 8 & 1) != 0; }

    /// Lets the parent and the look-ups lead to what comes next in pre-order.
    void link(std::uint32_t branch) {
        if (depth_ == 0) return;
        arrays_.branches.at(2 * std::size_t{open_.back()} + (lastBit() ? 1 : 0)) = branch;

        constexpr std::size_t kBits = CodeTables::kLookUpBits;
        if (depth_ > kBits || (depth_ < kBits && (branch & kLeaf) == 0)) return;
        const std::size_t distance = std::size_t{1} << depth_;
        for (std::size_t bits = loadBits(path_.data()) & (distance - 1); bits < kStepCount;
             bits += distance)
            targets_[bits] = {branch, static_cast<unsigned>(depth_)};
    }

    void addBranch() {
        const auto branch = static_cast<std::uint32_t>(arrays_.branches.size() / 2);
        assert(branch < kLeaf);
        link(branch);
        arrays_.branches.reserveFor(2);
        arrays_.branches.append(0);
        arrays_.branches.append(0);
        open_.push_back(branch);
        if (depth_ / 8 + sizeof(std::uint64_t) >= path_.size()) path_.resize(2 * path_.size());
        ++depth_;
    }

    void addLeaf(char16_t character) {
        link(kLeaf | character);
        if (!hasWords_) return;
        std::uint64_t& word = wordAt(character);
        if (word == kNoWord) word = depth_ <= kMaxWordLength ? shortWord() : addLongWord();
    }

    /// Goes from a leaf to what follows it in pre-order; false if nothing does.
    bool turnRight() {
        for (; depth_ > 0 && lastBit(); --depth_) {
            path_[(depth_ - 1) / 8] &= static_cast<std::uint8_t>(~(1U << (depth_ - 1) % 8));
            open_.pop_back();
        }
        if (depth_ == 0) return false;
        path_[(depth_ - 1) / 8] |= static_cast<std::uint8_t>(1U << (depth_ - 1) % 8);
        return true;
    }

    std::uint64_t& wordAt(char16_t character) {
        if (arrays_.pageOf.isEmpty()) arrays_.pageOf.assign(kPageCount, kNoPage);
        std::uint16_t& page = arrays_.pageOf.at(character >> 8);
        if (page == kNoPage) {
            arrays_.words.reserveFor(kPageSize);
            page = static_cast<std::uint16_t>(arrays_.words.size() / kPageSize);
            std::fill_n(arrays_.words.extend(kPageSize), kPageSize, kNoWord);
        }
        return arrays_.words.at(page * kPageSize + (character & 0xFF));
    }

    std::uint64_t shortWord() const noexcept {
        return std::uint64_t{depth_} << kWordLengthShift | loadBits(path_.data());
    }

    std::uint64_t addLongWord() {
        const std::size_t byteSize = (depth_ + 7) / 8;
        const std::size_t position = arrays_.longWords.size() / 2;
        arrays_.longWords.reserveFor(2);
        arrays_.longBits.reserveFor(byteSize);
        arrays_.longWords.append(static_cast<std::uint32_t>(arrays_.longBits.size()));
        arrays_.longWords.append(static_cast<std::uint32_t>(depth_));
        arrays_.longBits.append(path_.data(), byteSize);
        return kLongWord | position;
    }

    void makeSteps() {
        arrays_.steps.reserveFor(kStepCount);
        for (std::size_t bits = 0; bits < kStepCount; ++bits) arrays_.steps.append(stepOf(bits));
    }

    std::uint64_t stepOf(std::size_t bits) const noexcept {
        const Target first = targets_[bits];
        if ((first.branch & kLeaf) == 0)
            return kOtherStep | kWalkStep | std::uint64_t{first.branch} << 32 | first.length;
        const std::uint64_t unit = first.branch & 0xFFFF;
        if (unit >= 0x80) return kOtherStep | unit << 32 | first.length;

        std::uint64_t characters = 0;
        std::uint64_t ends = 0;
        unsigned count = 0;
        unsigned length = 0;
        for (; count < kMaxStepCharacters; ++count) {
            const Target next = targets_[bits >> length];
            const bool isAscii = (next.branch & kLeaf) != 0 && (next.branch & 0xFFFF) < 0x80;
            if (!isAscii || length + next.length > CodeTables::kLookUpBits) break;
            length += next.length;
            characters |= std::uint64_t{next.branch & 0xFF} << 8 * count;
            ends |= std::uint64_t{length} << 4 * count;
        }
        for (unsigned i = count; i < kMaxStepCharacters; ++i)
            ends |= std::uint64_t{kNoEnd} << 4 * i;
        return characters << 32 | ends << 16 | (count - 1) << 8 | length;
    }

    CodeTables::Arrays& arrays_;
    std::u16string_view leaves_;
    bool hasWords_ = true;
    std::size_t leafCount_ = 0;
    std::vector<Target> targets_;
    std::vector<std::uint32_t> open_;  // the branches above the present place, the root first
    // The bits that lead to it; those from depth_ on are zero, and eight bytes can be loaded.
    std::vector<std::uint8_t> path_ = std::vector<std::uint8_t>(16);
    std::size_t depth_ = 0;
};

// --- Coding.

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

// --- Decoding.

constexpr unsigned kLoadedSteps = 4;  // look-ups that the 57 bits of any load are enough for
constexpr unsigned kLoadedBits = kLoadedSteps * CodeTables::kLookUpBits;
constexpr unsigned kRoom = kLoadedSteps * kMaxStepCharacters;  // characters of them
constexpr char16_t kByteEscape = 0xDC00;                       // plus the byte

constexpr unsigned lengthOfStep(std::uint64_t step) noexcept {
    return step & 15;
}
constexpr unsigned countOf(std::uint64_t step) noexcept {
    return (step >> 8 & 3) + 1;
}
constexpr std::uint32_t charactersOf(std::uint64_t step) noexcept {
    return static_cast<std::uint32_t>(step >> 32);
}

/// The characters of a step that end within the first `left` bits.
constexpr unsigned charactersWithin(std::uint64_t step, std::size_t left) noexcept {
    unsigned count = 0;
    for (unsigned i = 0; i < kMaxStepCharacters; ++i) count += (step >> (16 + 4 * i) & 15) <= left;
    return count;
}

// The characters of a step are written as they lie in it.
static_assert(std::endian::native == std::endian::little);

/// Writes at the end of a text, in memory of the text: a copy from a buffer would have to wait
/// until all the small pieces have arrived there.
template <class Character>
class TextWriter {
public:
    explicit TextWriter(std::basic_string<Character>& text) noexcept : text_(text) {}

    /// Where the characters of a name begin.
    Character* begin(std::size_t bitCount) {
        return grow(text_.size(), bitCount / kExpectedLength);
    }

    /// Where to write kRoom characters and one more of any kind, after those before `out`.
    Character* makeRoom(Character* out) {
        if (out <= limit_) return out;
        return grow(sizeTo(out), sizeTo(out));
    }

    /// Drops what is left from `out` on.
    void finish(const Character* out) noexcept { text_.resize(sizeTo(out)); }

protected:
    std::size_t sizeTo(const Character* out) const noexcept {
        return static_cast<std::size_t>(out - text_.data());
    }

private:
    static constexpr std::size_t kExpectedLength = 4;  // bits of a character; names have more
    static constexpr std::size_t kSlack = kRoom + 8;
    /// Of what is added at once: sizes that vary less are faster to fill.
    static constexpr std::size_t kStride = 64 / sizeof(Character);

    Character* grow(std::size_t size, std::size_t expected) {
        text_.resize(size + (expected + kSlack) / kStride * kStride + kStride);
        limit_ = text_.data() + text_.size() - kSlack;
        return text_.data() + size;
    }

    std::basic_string<Character>& text_;
    Character* limit_ = nullptr;
};

class UnitWriter : public TextWriter<char16_t> {
public:
    using TextWriter::TextWriter;

    /// Writes four characters, of which the first is in the low byte.
    static void writeAscii(std::uint32_t characters, char16_t* out) noexcept {
        std::uint64_t units = (characters | std::uint64_t{characters} << 16) & 0x0000FFFF0000FFFF;
        units = (units | units << 8) & 0x00FF00FF00FF00FF;
        std::memcpy(out, &units, sizeof units);
    }

    char16_t* write(char16_t unit, char16_t* out) noexcept {
        *out++ = unit;
        return out;
    }
};

class ByteWriter : public TextWriter<char> {
public:
    using TextWriter::TextWriter;

    static void writeAscii(std::uint32_t characters, char* out) noexcept {
        std::memcpy(out, &characters, sizeof characters);
    }

    char* write(char16_t unit, char* out) noexcept {
        if ((unit & 0xFC00) == 0xDC00 && sizeTo(out) == endOfHigh_) {
            const std::uint32_t high = high_ & 0x3FFU;
            return writeNumber(0x10000U + (high << 10) + (unit & 0x3FFU), out - 3);
        }
        if (unit >= kByteEscape + 0x80 && unit <= kByteEscape + 0xFF) {
            *out++ = static_cast<char>(unit - kByteEscape);
            return out;
        }
        out = writeNumber(unit, out);
        if ((unit & 0xFC00) == 0xD800) {
            high_ = unit;
            endOfHigh_ = sizeTo(out);
        }
        return out;
    }

private:
    static char* writeNumber(std::uint32_t number, char* out) noexcept {
        if (number < 0x80) {
            *out++ = static_cast<char>(number);
            return out;
        }
        const unsigned size = number < 0x800 ? 2 : number < 0x10000 ? 3 : 4;
        for (unsigned i = size - 1; i > 0; --i, number >>= 6)
            out[i] = static_cast<char>(0x80 | (number & 0x3F));
        out[0] = static_cast<char>((0xF00U >> size) | number);
        return out + size;
    }

    // The first half of a pair that was written last, and the size of the text with it.
    std::size_t endOfHigh_ = std::string::npos;
    char16_t high_ = 0;
};

constexpr std::uint32_t kNoCharacter = 0xFFFF'FFFF;

/// The character that the bits from `position` on lead to from a branch, or kNoCharacter if they
/// end before; `position` then follows the last bit that was taken.
std::uint32_t walk(const FlatArray<std::uint32_t>& branches, std::uint32_t branch,
                   const NameView& name, std::size_t& position) {
    while (position < name.length) {
        const std::size_t bit = name.data[position / 8] >> position % 8 & 1;
        ++position;
        const std::size_t slot = 2 * std::size_t{branch} + bit;
        if (slot >= branches.size()) throw InvalidCodeException();
        branch = branches[slot];
        if ((branch & kLeaf) != 0) return branch & 0xFFFF;
    }
    return kNoCharacter;
}

/// The bits of a name, taken from the front. What stands after the name is read and means nothing.
class BitReader {
public:
    explicit BitReader(const NameView& name) noexcept : name_(name), left_(name.length) {
        skipTo(0);
    }

    /// Bits of the name that have not been taken.
    std::size_t left() const noexcept { return left_; }
    std::size_t position() const noexcept { return name_.length - left_; }

    /// The next kLoadedBits bits and some more, the first one lowest. The load waits only for the
    /// one before, not for what was found in the bits since then.
    std::uint64_t load() noexcept {
        bits_ |= loadBits(next_) << held_;
        next_ += (63 - held_) / 8;
        held_ |= 56;
        return bits_;
    }

    /// Takes bits, kLoadedBits at most and not more than are left.
    void take(unsigned count) noexcept {
        bits_ >>= count;
        held_ -= count;
        left_ -= count;
    }

    void skipTo(std::size_t position) noexcept {
        next_ = name_.data + position / 8;
        bits_ = loadBits(next_) >> position % 8;
        held_ = 56 - position % 8;
        next_ += 7;
        left_ = name_.length - position;
    }

private:
    const NameView& name_;
    const std::uint8_t* next_ = nullptr;
    std::uint64_t bits_ = 0;
    unsigned held_ = 0;  // bits of bits_ that load need not bring
    std::size_t left_;
};

/// Each look-up waits for the one before, so there is little else in their loop: four characters
/// are written whether or not a step has them, and what arrays from outside may hold is asked once
/// a load. Benchmark: coding.cpp.
template <class Writer, class Text>
void decode(const CodeTables::Arrays& arrays, const NameView& name, Text& text) {
    if (arrays.branches.isEmpty()) throw NoUsableCodingTreeException();
    if (name.data == nullptr || name.isAnyKey) throw InvalidCodeException();

    const std::uint64_t* const steps = arrays.steps.data();
    Writer writer(text);
    auto* out = writer.begin(name.length);
    BitReader reader(name);
    while (true) {
        out = writer.makeRoom(out);
        std::uint64_t bits = reader.load();
        unsigned taken = 0;
        for (unsigned i = 0; i < kLoadedSteps; ++i) {
            const std::uint64_t step = steps[bits % kStepCount];
            const bool isAscii = (step & kOtherStep) == 0;
            writer.writeAscii(charactersOf(step), out);
            const unsigned before = taken;
            taken += lengthOfStep(step);
            bits >>= step & 63;  // the length; needs no instruction to cut it out
            if (taken > reader.left()) {
                if (isAscii) out += charactersWithin(step, reader.left() - before);
                return writer.finish(out);
            }
            if (isAscii) {
                out += countOf(step);
                continue;
            }
            std::uint32_t unit = charactersOf(step);
            if ((step & kWalkStep) == 0) {
                out = writer.write(static_cast<char16_t>(unit), out);
                continue;
            }
            std::size_t position = reader.position() + taken;
            unit = walk(arrays.branches, unit & ~kLeaf, name, position);
            if (unit == kNoCharacter) return writer.finish(out);
            out = writer.write(static_cast<char16_t>(unit), out);
            reader.skipTo(position - 1);
            taken = 1;  // the last bit of the walk is taken like those of any step
            break;
        }
        if (taken == 0 || taken > kLoadedBits) throw InvalidCodeException();
        reader.take(taken);
    }
}

template <class Writer, class Text>
void appendOrRestore(const CodeTables::Arrays& arrays, const NameView& name, Text& text) {
    const std::size_t size = text.size();
    try {
        decode<Writer>(arrays, name, text);
    } catch (...) {
        text.resize(size);
        throw;
    }
}

}  // namespace

CodeTables::CodeTables(const std::vector<bool>& shape, std::u16string_view leaves) {
    TableMaker(arrays_, leaves).make(shape, true);
}

CodeTables CodeTables::forDecoding(const std::vector<bool>& shape, std::u16string_view leaves) {
    CodeTables tables;
    TableMaker(tables.arrays_, leaves).make(shape, false);
    return tables;
}

CodeTables::CodeTables(Arrays arrays) noexcept {
    if (arrays.pageOf.size() == kPageCount) {
        arrays_.pageOf.swap(arrays.pageOf);
        arrays_.words.swap(arrays.words);
        arrays_.longWords.swap(arrays.longWords);
        arrays_.longBits.swap(arrays.longBits);
    }
    if (arrays.steps.size() == kStepCount) {
        arrays_.steps.swap(arrays.steps);
        arrays_.branches.swap(arrays.branches);
    }
}

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

void CodeTables::appendText(const NameView& name, std::u16string& text) const {
    appendOrRestore<UnitWriter>(arrays_, name, text);
}

void CodeTables::appendText(const NameView& name, std::string& text) const {
    appendOrRestore<ByteWriter>(arrays_, name, text);
}

}  // namespace compressedpaths
