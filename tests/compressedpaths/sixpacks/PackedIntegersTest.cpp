#include "compressedpaths/sixpacks/PackedIntegers.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace compressedpaths::sixpacks {
namespace {

using testing::ThrowsMessage;
using Bytes = std::vector<std::uint8_t>;
using Sizes = std::vector<std::size_t>;

constexpr const char* kInvalidWidth = "Invalid uint type conversion.";
constexpr auto kNoWidth = static_cast<PackedSizeT>(4);

Bytes packedVector(const Sizes& values, PackedSizeT elementWidth, PackedSizeT countWidth) {
    Bytes bytes;
    packSizeTVector(values, bytes, elementWidth, countWidth);
    return bytes;
}

TEST(PackedIntegers, takeTheSmallestWidthThatHoldsAValue) {
    const std::vector<std::pair<std::size_t, PackedSizeT>> rows{
        {0, PackedSizeT::Uint8},
        {255, PackedSizeT::Uint8},
        {256, PackedSizeT::Uint16},
        {65535, PackedSizeT::Uint16},
        {65536, PackedSizeT::Uint32},
        {4294967295, PackedSizeT::Uint32},
        {4294967296, PackedSizeT::Uint64},
        {std::numeric_limits<std::size_t>::max(), PackedSizeT::Uint64}};
    for (const auto& [value, width] : rows) {
        Bytes bytes{0xAA};
        EXPECT_EQ(packPackedSizeT(value, bytes), width);
        EXPECT_EQ(bytes, (Bytes{0xAA, static_cast<std::uint8_t>(width)})) << value;
        EXPECT_EQ(widthOf(value), width);
    }
}

TEST(PackedIntegers, haveAByteSize) {
    EXPECT_EQ(byteSizeOf(PackedSizeT::Uint8), 1U);
    EXPECT_EQ(byteSizeOf(PackedSizeT::Uint16), 2U);
    EXPECT_EQ(byteSizeOf(PackedSizeT::Uint32), 4U);
    EXPECT_EQ(byteSizeOf(PackedSizeT::Uint64), 8U);
    EXPECT_THAT([] { byteSizeOf(kNoWidth); },
                ThrowsMessage<InvalidUintConversionException>(kInvalidWidth));
}

TEST(PackedIntegers, standBehindTheirCount) {
    EXPECT_EQ(packedVector({1, 300}, PackedSizeT::Uint16, PackedSizeT::Uint8),
              (Bytes{0x02, 0x01, 0x00, 0x2C, 0x01}));
    EXPECT_EQ(packedVector({1}, PackedSizeT::Uint8, PackedSizeT::Uint16),
              (Bytes{0x01, 0x00, 0x01}));
}

TEST(PackedIntegers, ofAnEmptyVectorAreItsCount) {
    EXPECT_EQ(packedVector({}, PackedSizeT::Uint64, PackedSizeT::Uint8), (Bytes{0}));
    EXPECT_EQ(packedVector({}, PackedSizeT::Uint8, PackedSizeT::Uint32), (Bytes{0, 0, 0, 0}));
    Bytes bytes = packedVector({}, PackedSizeT::Uint64, PackedSizeT::Uint8);
    Sizes values{7};
    auto in = bytes.begin();
    unpackSizeTVector(values, in, PackedSizeT::Uint64, PackedSizeT::Uint8);
    EXPECT_EQ(values, (Sizes{7}));
    EXPECT_EQ(in, bytes.end());
}

TEST(PackedIntegers, loseTheBytesAboveTheirWidth) {
    Bytes bytes = packedVector({300}, PackedSizeT::Uint8, PackedSizeT::Uint8);
    EXPECT_EQ(bytes, (Bytes{0x01, 0x2C}));
    Sizes values;
    auto in = bytes.begin();
    unpackSizeTVector(values, in, PackedSizeT::Uint8, PackedSizeT::Uint8);
    EXPECT_EQ(values, (Sizes{44}));
}

TEST(PackedIntegers, areUnpackedBehindWhatIsThere) {
    Bytes bytes = packedVector({1, 300}, PackedSizeT::Uint32, PackedSizeT::Uint16);
    bytes.push_back(0xEE);
    Sizes values{9};
    auto in = bytes.begin();
    unpackSizeTVector(values, in, PackedSizeT::Uint32, PackedSizeT::Uint16);
    EXPECT_EQ(values, (Sizes{9, 1, 300}));
    EXPECT_EQ(*in, 0xEE);
}

TEST(PackedIntegers, packBytesBehindTheirCount) {
    Bytes data{0xAA, 0xBB};
    Bytes bytes{0x11};
    packVector(data, bytes, PackedSizeT::Uint64);
    EXPECT_EQ(bytes, (Bytes{0x11, 2, 0, 0, 0, 0, 0, 0, 0, 0xAA, 0xBB}));
    Bytes back{0x22};
    auto in = bytes.begin() + 1;
    unpackVector(back, in, PackedSizeT::Uint64);
    EXPECT_EQ(back, (Bytes{0x22, 0xAA, 0xBB}));
    EXPECT_EQ(in, bytes.end());
    EXPECT_EQ(data, (Bytes{0xAA, 0xBB}));
}

TEST(PackedIntegers, refuseAnUnknownWidth) {
    Bytes bytes;
    Bytes data{1};
    Sizes values;
    EXPECT_THAT([&] { packSizeTVector({1}, bytes, PackedSizeT::Uint8, kNoWidth); },
                ThrowsMessage<InvalidUintConversionException>(kInvalidWidth));
    EXPECT_THAT([&] { packVector(data, bytes, kNoWidth); },
                ThrowsMessage<InvalidUintConversionException>(kInvalidWidth));
    EXPECT_EQ(bytes, Bytes{});

    Bytes input{1, 1, 1, 1};
    auto in = input.begin();
    EXPECT_THAT([&] { unpackSizeTVector(values, in, PackedSizeT::Uint8, kNoWidth); },
                ThrowsMessage<InvalidUintConversionException>(kInvalidWidth));
    EXPECT_THAT([&] { unpackVector(data, in, kNoWidth); },
                ThrowsMessage<InvalidUintConversionException>(kInvalidWidth));
    EXPECT_EQ(in, input.begin());
    EXPECT_EQ(values, Sizes{});
    EXPECT_EQ(data, (Bytes{1}));
}

TEST(PackedIntegers, findAnUnknownElementWidthBehindTheCount) {
    Bytes bytes;
    EXPECT_THROW(packSizeTVector({1, 2}, bytes, kNoWidth, PackedSizeT::Uint16),
                 InvalidUintConversionException);
    EXPECT_EQ(bytes, (Bytes{2, 0}));
    Sizes values;
    auto in = bytes.begin();
    EXPECT_THROW(unpackSizeTVector(values, in, kNoWidth, PackedSizeT::Uint16),
                 InvalidUintConversionException);
    EXPECT_EQ(in, bytes.end());
    EXPECT_EQ(values, Sizes{});
}

TEST(PackedIntegers, refuseEveryTagAboveThree) {
    for (unsigned tag = 4; tag < 256; ++tag) {
        EXPECT_THROW(makePackerOfWidth(static_cast<PackedSizeT>(tag)),
                     InvalidUintConversionException);
    }
}

template <class Types>
class PackerOf : public testing::Test {};

template <class U, class T>
struct Types {
    using Stored = U;
    using Value = T;
};

using AllPackers = testing::Types<
    Types<std::uint8_t, unsigned long>, Types<std::uint16_t, unsigned long>,
    Types<std::uint32_t, unsigned long>, Types<std::uint64_t, unsigned long>,
    Types<std::uint8_t, unsigned long long>, Types<std::uint16_t, unsigned long long>,
    Types<std::uint32_t, unsigned long long>, Types<std::uint64_t, unsigned long long>>;
TYPED_TEST_SUITE(PackerOf, AllPackers);

TYPED_TEST(PackerOf, writesTheLowBytesLowestFirstAndReadsThemBack) {
    using U = typename TypeParam::Stored;
    using T = typename TypeParam::Value;
    const auto packer = makePackerUnpacker<U, T>();
    const T value = 0xF1E2D3C4B5A69788;
    Bytes bytes{0x55};
    packer->packValue(value, bytes);
    ASSERT_EQ(bytes.size(), 1 + sizeof(U));
    const Bytes whole{0x88, 0x97, 0xA6, 0xB5, 0xC4, 0xD3, 0xE2, 0xF1};
    EXPECT_TRUE(std::equal(bytes.begin() + 1, bytes.end(), whole.begin()));
    T back = 0;
    auto in = bytes.begin() + 1;
    packer->unpackValue(back, in);
    EXPECT_EQ(back, T{static_cast<U>(value)});
    EXPECT_EQ(in, bytes.end());
}

TYPED_TEST(PackerOf, packsAndUnpacksRuns) {
    using U = typename TypeParam::Stored;
    using T = typename TypeParam::Value;
    const auto packer = makePackerUnpacker<U, T>();
    const std::vector<T> values{0, 1, std::numeric_limits<U>::max(), 127};
    Bytes bytes;
    packer->packValues(values, bytes);
    EXPECT_EQ(bytes.size(), values.size() * sizeof(U));
    std::vector<T> back{5};
    auto in = bytes.begin();
    packer->unpackValues(back, in, 0);
    EXPECT_EQ(back, (std::vector<T>{5}));
    packer->unpackValues(back, in, values.size());
    EXPECT_EQ(in, bytes.end());
    back.erase(back.begin());
    EXPECT_EQ(back, values);
}

TEST(PackedIntegers, areReadUpToTheEndAndNoFurther) {
    const Bytes bytes = packedVector({1, 300, 70000}, PackedSizeT::Uint32, PackedSizeT::Uint16);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        ByteReader reader(std::span<const std::uint8_t>(bytes).first(length));
        Sizes values;
        EXPECT_THROW(unpackSizeTVector(values, reader, PackedSizeT::Uint32, PackedSizeT::Uint16),
                     PrematureEndException);
        EXPECT_EQ(values.capacity(), 0U);
    }
    ByteReader reader(bytes);
    Sizes values;
    unpackSizeTVector(values, reader, PackedSizeT::Uint32, PackedSizeT::Uint16);
    EXPECT_EQ(values, (Sizes{1, 300, 70000}));
    EXPECT_TRUE(reader.isAtEnd());
}

TEST(PackedIntegers, allocateNothingForACountThatCannotBe) {
    const Bytes bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1, 2, 3};
    ByteReader sizesReader(bytes);
    Sizes values;
    EXPECT_THROW(unpackSizeTVector(values, sizesReader, PackedSizeT::Uint64, PackedSizeT::Uint64),
                 PrematureEndException);
    EXPECT_EQ(values.capacity(), 0U);
    ByteReader bytesReader(bytes);
    Bytes back;
    EXPECT_THROW(unpackVector(back, bytesReader, PackedSizeT::Uint64), PrematureEndException);
    EXPECT_EQ(back.capacity(), 0U);
}

}  // namespace
}  // namespace compressedpaths::sixpacks
