#include "compressedpaths/sixpacks/BitVectors.hpp"

#include <gtest/gtest.h>

namespace compressedpaths::sixpacks {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Bits = std::vector<bool>;

Bytes packed(const Bits& bits) {
    Bytes bytes;
    boolVecToBytes(bytes, bits);
    return bytes;
}

Bits unpacked(const Bytes& bytes) {
    Bits bits;
    bytesToBoolVec(bytes, bits);
    return bits;
}

Bits bitsOf(unsigned value, unsigned count) {
    Bits bits;
    for (unsigned bit = 0; bit < count; ++bit) bits.push_back((value >> bit & 1) != 0);
    return bits;
}

TEST(BitVectors, packOneBit) {
    EXPECT_EQ(packed({true}), (Bytes{0x01, 0x01}));
    EXPECT_EQ(packed({false}), (Bytes{0x00, 0x01}));
}

TEST(BitVectors, packEightBitsWithAnEmptyPartialByte) {
    EXPECT_EQ(packed({true, false, false, false, false, false, false, true}),
              (Bytes{0x81, 0x00, 0x00}));
}

TEST(BitVectors, packNineBits) {
    EXPECT_EQ(packed(Bits(9, true)), (Bytes{0xFF, 0x01, 0x01}));
}

TEST(BitVectors, unpackNineAndEightBits) {
    EXPECT_EQ(unpacked({0xFF, 0x01, 0x01}), Bits(9, true));
    EXPECT_EQ(unpacked({0x81, 0x00, 0x00}), bitsOf(0x81, 8));
}

TEST(BitVectors, packNoBitsIntoNoBytes) {
    EXPECT_EQ(packed({}), Bytes{});
}

TEST(BitVectors, unpackNoBitsFromFewerThanTwoBytes) {
    EXPECT_EQ(unpacked({}), Bits{});
    EXPECT_EQ(unpacked({0x07}), Bits{});
    EXPECT_EQ(unpacked({0xFF}), Bits{});
}

TEST(BitVectors, unpackNoBitsOfAnEmptyPartialByte) {
    EXPECT_EQ(unpacked({0xFF, 0x00}), Bits{});
}

TEST(BitVectors, areAppendedToWhatIsThere) {
    Bytes bytes{0xAA};
    boolVecToBytes(bytes, {true});
    EXPECT_EQ(bytes, (Bytes{0xAA, 0x01, 0x01}));
    boolVecToBytes(bytes, {});
    EXPECT_EQ(bytes.size(), 3U);
    Bits bits{false};
    bytesToBoolVec({0x01, 0x01}, bits);
    EXPECT_EQ(bits, (Bits{false, true}));
}

TEST(BitVectors, unpackAnImpossibleCountAsZerosBehindTheByte) {
    Bits expected = bitsOf(0xFF, 8);
    expected.resize(255, false);
    EXPECT_EQ(unpacked({0xFF, 0xFF}), expected);
    EXPECT_EQ(unpacked({0xA5, 8}), bitsOf(0xA5, 8));
}

TEST(BitVectors, comeBackForAllVectorsOfUpToTwelveBits) {
    for (unsigned count = 0; count <= 12; ++count) {
        for (unsigned value = 0; value < 1U << count; ++value) {
            const Bits bits = bitsOf(value, count);
            const Bytes bytes = packed(bits);
            ASSERT_EQ(bytes.size(), count == 0 ? 0 : count / 8 + 2);
            ASSERT_EQ(unpacked(bytes), bits);
        }
    }
}

TEST(BitVectors, leaveTheBitsAboveTheCountZero) {
    for (unsigned count = 1; count <= 7; ++count) {
        const Bytes bytes = packed(Bits(count, true));
        EXPECT_EQ(bytes, (Bytes{static_cast<std::uint8_t>((1U << count) - 1),
                                static_cast<std::uint8_t>(count)}));
    }
}

}  // namespace
}  // namespace compressedpaths::sixpacks
