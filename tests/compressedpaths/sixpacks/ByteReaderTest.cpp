#include "compressedpaths/sixpacks/ByteReader.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace compressedpaths::sixpacks {
namespace {

using testing::ElementsAre;
using testing::ThrowsMessage;

constexpr const char* kTooEarly = "The serialized bytes end too early.";
constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();

const std::vector<std::uint8_t> kBytes{1, 2, 3, 4, 5, 6, 7, 8, 9};

TEST(ByteReader, readsIntegersLowestByteFirst) {
    ByteReader reader(kBytes);
    EXPECT_EQ(reader.readInteger(1), 0x01U);
    EXPECT_EQ(reader.readInteger(2), 0x0302U);
    EXPECT_EQ(reader.readInteger(4), 0x07060504U);
    ByteReader whole(kBytes);
    EXPECT_EQ(whole.readInteger(8), 0x0807060504030201U);
    EXPECT_EQ(ByteReader(kBytes).readInteger(3), 0x030201U);
}

TEST(ByteReader, staysWhereItIsWhenTooFewBytesAreLeft) {
    ByteReader reader(kBytes);
    reader.readInteger(8);
    EXPECT_THAT([&] { reader.readInteger(2); }, ThrowsMessage<PrematureEndException>(kTooEarly));
    EXPECT_THAT([&] { reader.readBytes(2); }, ThrowsMessage<PrematureEndException>(kTooEarly));
    EXPECT_THAT([&] { reader.readBytes(kHuge); }, ThrowsMessage<PrematureEndException>(kTooEarly));
    EXPECT_EQ(reader.position(), kBytes.data() + 8);
    EXPECT_FALSE(reader.isAtEnd());
    EXPECT_EQ(reader.readInteger(1), 9U);
    EXPECT_TRUE(reader.isAtEnd());
}

TEST(ByteReader, givesAViewOfBytesAndPassesThem) {
    ByteReader reader(kBytes);
    EXPECT_THAT(reader.readBytes(3), ElementsAre(1, 2, 3));
    EXPECT_TRUE(reader.readBytes(0).empty());
    EXPECT_THAT(reader.readBytes(6), ElementsAre(4, 5, 6, 7, 8, 9));
    EXPECT_TRUE(reader.isAtEnd());
}

TEST(ByteReader, isAtTheEndOfNoBytes) {
    ByteReader reader(std::span<const std::uint8_t>{});
    EXPECT_TRUE(reader.isAtEnd());
    EXPECT_TRUE(reader.readBytes(0).empty());
    EXPECT_THROW(reader.readInteger(1), PrematureEndException);
}

TEST(ByteReader, requiresRoomForElements) {
    const ByteReader reader(kBytes);
    reader.requireElements(9, 1);
    reader.requireElements(4, 2);
    reader.requireElements(0, 8);
    EXPECT_THAT([&] { reader.requireElements(10, 1); },
                ThrowsMessage<PrematureEndException>(kTooEarly));
    EXPECT_THROW(reader.requireElements(5, 2), PrematureEndException);
    EXPECT_THROW(reader.requireElements(2, 8), PrematureEndException);
}

// Multiplied, these would wrap around to something small.
TEST(ByteReader, requiresRoomForCountsWhoseBytesOverflow) {
    const ByteReader reader(kBytes);
    EXPECT_THROW(reader.requireElements(kHuge, 8), PrematureEndException);
    EXPECT_THROW(reader.requireElements(std::uint64_t{1} << 61, 8), PrematureEndException);
    EXPECT_THROW(reader.requireElements(std::uint64_t{1} << 63, 2), PrematureEndException);
}

TEST(ByteReader, seesNoEndWhenItTrusts) {
    ByteReader reader = ByteReader::trusting(kBytes.data());
    reader.requireElements(1'000'000, 8);
    EXPECT_EQ(reader.readInteger(8), 0x0807060504030201U);
    EXPECT_FALSE(reader.isAtEnd());
    EXPECT_EQ(reader.readInteger(1), 9U);
    EXPECT_FALSE(reader.isAtEnd());
}

}  // namespace
}  // namespace compressedpaths::sixpacks
