#include <algorithm>
#include <bit>
#include <cstring>

#include "compressedpaths/HuffmanPathTreeExceptions.hpp"
#include "compressedpaths/coding/CodeTableFields.hpp"
#include "compressedpaths/coding/CodeTables.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace compressedpaths {
namespace {

using namespace code_tables;
using sixpacks::loadBits;

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

void CodeTables::appendText(const NameView& name, std::u16string& text) const {
    appendOrRestore<UnitWriter>(arrays_, name, text);
}

void CodeTables::appendText(const NameView& name, std::string& text) const {
    appendOrRestore<ByteWriter>(arrays_, name, text);
}

}  // namespace compressedpaths
