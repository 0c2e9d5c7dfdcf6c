#include "compressedpaths/sixpacks/CompressedBlocks.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace compressedpaths::sixpacks {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes inflated(Bytes block, std::uint64_t length) {
    return decompressUint8(block.begin(), block.size(), length);
}

Bytes noise(std::size_t size) {
    std::mt19937 random(1);
    Bytes bytes(size);
    std::generate(bytes.begin(), bytes.end(),
                  [&] { return static_cast<std::uint8_t>(random() & 0xFF); });
    return bytes;
}

TEST(CompressedBlocks, holdNothingInAFewBytes) {
    Bytes nothing;
    const Bytes block = compressUint8(nothing);
    EXPECT_GE(block.size(), 6U);  // a header of two bytes, a checksum of four
    EXPECT_LE(block.size(), 16U);
    EXPECT_EQ(inflated(block, 0), Bytes{});
}

TEST(CompressedBlocks, giveBackWhatTheyHold) {
    for (const std::size_t size : {1U, 2U, 100U, 65535U, 65536U, 300000U}) {
        Bytes zeros(size, 0);
        EXPECT_EQ(inflated(compressUint8(zeros), size), zeros);
        Bytes random = noise(size);
        EXPECT_EQ(inflated(compressUint8(random), size), random);
    }
}

TEST(CompressedBlocks, leaveTheInputAlone) {
    Bytes bytes{1, 2, 3};
    compressUint8(bytes);
    EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
}

TEST(CompressedBlocks, takeTheRealLengthWhereALargerOneIsStated) {
    Bytes bytes = noise(1000);
    EXPECT_EQ(inflated(compressUint8(bytes), 5000), bytes);
    Bytes nothing;
    EXPECT_EQ(inflated(compressUint8(nothing), 10), Bytes{});
}

TEST(CompressedBlocks, giveTheBeginningWhereASmallerLengthIsStated) {
    Bytes bytes = noise(1000);
    const Bytes beginning = inflated(compressUint8(bytes), 10);
    EXPECT_EQ(beginning, Bytes(bytes.begin(), bytes.begin() + 10));
}

TEST(CompressedBlocks, giveWhatIsLeftOfADamagedStream) {
    Bytes bytes = noise(1000);
    const Bytes block = compressUint8(bytes);
    for (std::size_t length = 0; length < block.size(); ++length) {
        const Bytes cut =
            inflated(Bytes(block.begin(), block.begin() + std::ptrdiff_t(length)), bytes.size());
        EXPECT_LE(cut.size(), bytes.size());
    }
    EXPECT_LE(inflated(Bytes(100, 0xFF), 50).size(), 50U);
}

TEST(CompressedBlocks, expandNoFurtherThanTheLimit) {
    Bytes zeros(10'000'000, 0);
    const Bytes block = compressUint8(zeros);
    EXPECT_LE(zeros.size(), block.size() * kMaxExpansion);
}

// Noise fills one piece of the block after the other, most of them in the midst of what is given;
// of what is more than is taken at a time there is no such limit.
TEST(BlockCompressor, takesPiecesOfAnySize) {
    const Bytes random = noise(3'000'000);
    const Bytes zeros((std::size_t{1} << 25) + 1, 0);
    BlockCompressor compressor;
    Bytes all;
    const auto append = [&](std::span<const std::uint8_t> piece) {
        compressor.append(piece);
        all.insert(all.end(), piece.begin(), piece.end());
    };
    append({});
    for (std::size_t size = 1, begin = 0; begin + size <= random.size(); begin += size, size *= 2)
        append(std::span(random).subspan(begin, size));
    for (std::size_t begin = 0; begin + 50'000 <= random.size(); begin += 50'000)
        append(std::span(random).subspan(begin, 50'000));
    append(zeros);
    Bytes block;
    compressor.appendBlockTo(block);
    const InflatedBlock whole = inflateBlock(block, all.size());
    EXPECT_TRUE(whole.isWhole);
    EXPECT_TRUE(whole.bytes == all);
}

TEST(InflatedBlock, hasNoMoreBytesThanTheLimit) {
    for (const std::size_t size : {1U, 100U, 4096U, 5000U, 300'000U}) {
        Bytes bytes = noise(size);
        const Bytes block = compressUint8(bytes);
        for (const std::size_t limit : {std::size_t{0}, size / 2, size - 1}) {
            const InflatedBlock cut = inflateBlock(block, limit);
            EXPECT_EQ(cut.bytes, Bytes(bytes.begin(), bytes.begin() + std::ptrdiff_t(limit)));
            EXPECT_FALSE(cut.isWhole);
        }
        for (const std::size_t limit : {size, size + 1, 10 * size}) {
            const InflatedBlock whole = inflateBlock(block, limit);
            EXPECT_EQ(whole.bytes, bytes);
            EXPECT_TRUE(whole.isWhole);
        }
    }
}

TEST(InflatedBlock, isNotWholeIfItsChecksumDiffers) {
    Bytes bytes = noise(1000);
    Bytes block = compressUint8(bytes);
    block.back() ^= 1;
    EXPECT_EQ(inflateBlock(block, 1000).bytes, bytes);
    EXPECT_FALSE(inflateBlock(block, 1000).isWhole);
}

}  // namespace
}  // namespace compressedpaths::sixpacks
