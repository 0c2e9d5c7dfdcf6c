#include "compressedpaths/store/BitPattern.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace compressedpaths {
namespace {

using Bits = std::vector<bool>;

/// Bits in bytes, the first one lowest, and what may be read after them.
std::vector<std::uint8_t> bytesOf(const Bits& bits, std::uint8_t after = 0) {
    std::vector<std::uint8_t> bytes((bits.size() + 7) / 8, 0);
    for (std::size_t i = 0; i < bits.size(); ++i)
        bytes[i / 8] = static_cast<std::uint8_t>(bytes[i / 8] | (bits[i] ? 1U : 0U) << i % 8);
    bytes.insert(bytes.end(), 16, after);
    return bytes;
}

Bits randomBits(std::mt19937& random, std::size_t count) {
    Bits bits;
    while (bits.size() < count) bits.push_back(random() % 2 == 0);
    return bits;
}

/// The byte that `text` begins in first, bit by bit, from a byte on.
std::size_t slowFind(const Bits& text, const Bits& bits, std::size_t fromByte) {
    for (std::size_t begin = 8 * fromByte; begin + text.size() <= bits.size(); ++begin)
        if (std::equal(text.begin(), text.end(), bits.begin() + static_cast<std::ptrdiff_t>(begin)))
            return begin / 8;
    return bits.size() / 8;
}

NameView viewOf(const std::vector<std::uint8_t>& bytes, std::size_t bitCount) {
    return {bytes.data(), bitCount, false};
}

TEST(BitPattern, findsTextsOfEveryLengthAtEveryBit) {
    std::mt19937 random(3);
    for (std::size_t length = 1; length <= 130; ++length) {
        const Bits text = randomBits(random, length);
        const auto textBytes = bytesOf(text);
        const BitPattern pattern(viewOf(textBytes, length));
        for (std::size_t begin = 0; begin < 80; ++begin) {
            Bits bits(begin + length + 24, false);
            bits.resize((bits.size() + 7) / 8 * 8);
            std::copy(text.begin(), text.end(), bits.begin() + static_cast<std::ptrdiff_t>(begin));
            const auto bytes = bytesOf(bits);
            const std::uint8_t* const end = bytes.data() + bits.size() / 8;
            const std::uint8_t* const hit = pattern.find(bytes.data(), end);
            ASSERT_LE(hit - bytes.data(), static_cast<std::ptrdiff_t>(begin / 8))
                << length << " bits at " << begin;
        }
    }
}

// Up to 56 bits are compared, so that what is found is there.
TEST(BitPattern, findsWhatIsThereAndNothingElse) {
    std::mt19937 random(4);
    std::size_t hits = 0;
    for (int round = 0; round < 3000; ++round) {
        const Bits bits = randomBits(random, 8 * (1 + random() % 60));
        const std::size_t length = 1 + random() % std::min<std::size_t>(56, bits.size());
        Bits text = randomBits(random, length);
        if (round % 2 == 0) {
            const auto begin =
                bits.begin() + static_cast<std::ptrdiff_t>(random() % (bits.size() - length + 1));
            text.assign(begin, begin + static_cast<std::ptrdiff_t>(length));
        }
        const auto textBytes = bytesOf(text);
        const BitPattern pattern(viewOf(textBytes, length));
        // What stands after the end is none of it.
        const auto bytes = bytesOf(bits, static_cast<std::uint8_t>(random()));
        const std::uint8_t* const end = bytes.data() + bits.size() / 8;
        for (std::size_t from = 0; from <= bits.size() / 8; ++from) {
            const auto hit =
                static_cast<std::size_t>(pattern.find(bytes.data() + from, end) - bytes.data());
            const std::size_t expected = slowFind(text, bits, from);
            ASSERT_LE(hit, expected) << round;
            // It may begin before the end and go on after it.
            if (hit != expected) {
                ASSERT_GT(8 * hit + 7 + length, bits.size()) << round;
            }
            hits += hit == expected && hit < bits.size() / 8;
        }
    }
    EXPECT_GT(hits, 10000U);
}

TEST(BitPattern, findsNothingInNoBytes) {
    const auto text = bytesOf({true, false, true});
    const BitPattern pattern(viewOf(text, 3));
    EXPECT_EQ(pattern.find(text.data(), text.data()), text.data());
}

TEST(BitPattern, tellsHowManyBytesItsTextIsIn) {
    const auto text = bytesOf(Bits(17, true));
    EXPECT_EQ(BitPattern(viewOf(text, 1)).byteSize(), 1U);
    EXPECT_EQ(BitPattern(viewOf(text, 2)).byteSize(), 2U);  // one bit in either
    EXPECT_EQ(BitPattern(viewOf(text, 17)).byteSize(), 3U);
}

}  // namespace
}  // namespace compressedpaths
