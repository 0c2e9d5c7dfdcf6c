// Loading takes memory in proportion to the bytes that are given, not to what they announce.

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <memory>

#include "tests/support/DamagedForms.hpp"
#include "tests/support/HeapMeter.hpp"

namespace compressedpaths {
namespace {

/// Allows for zlib's own buffers, and for deflate, which expands no byte to more than 1,032.
constexpr std::size_t kFixedBytes = std::size_t{64} * 1024;
constexpr std::size_t kBytesForEachByte = 1'100;

std::size_t peakOfLoading(const Bytes& bytes, bool compressed) {
    Bytes input = bytes;
    const HeapMeter meter;
    HuffmanPathTree set;
    try {
        set.deserialize(input, compressed);
    } catch (const std::exception&) {
        return meter.peak();
    }
    return meter.peak();
}

TEST(HeapMeter, seesWhatIsTakenAndGivenBackAgain) {
    const HeapMeter meter;
    {
        const Bytes block(100'000);
        EXPECT_GE(meter.peak(), 100'000U);
    }
    EXPECT_LT(meter.peak(), 110'000U);
    EXPECT_LT(HeapMeter().peak(), 1'000U);
}

TEST(DamagedSetsMemory, staysInProportionToTheInput) {
    for (const SavedSample& sample : savedSamples()) {
        for (const bool compressed : {false, true}) {
            forAllDamages(compressed ? sample.compressed : sample.plain, [&](const Bytes& damaged) {
                const std::size_t peak = peakOfLoading(damaged, compressed);
                ASSERT_LE(peak, kFixedBytes + kBytesForEachByte * damaged.size()) << sample.name;
            });
        }
    }
}

TEST(DamagedSetsMemory, isNotTakenForCountsThatCannotBe) {
    const std::uint64_t kCounts[] = {1'000'000, std::uint64_t{1} << 32, std::uint64_t{1} << 62,
                                     ~std::uint64_t{0}};
    for (const SavedSample& sample : savedSamples()) {
        for (const std::uint64_t count : kCounts) {
            for (std::size_t position = 0; position + 8 <= sample.plain.size(); ++position) {
                Bytes damaged = sample.plain;
                for (unsigned byte = 0; byte < 8; ++byte)
                    damaged[position + byte] = static_cast<std::uint8_t>(count >> 8 * byte);
                ASSERT_LE(peakOfLoading(damaged, false),
                          kFixedBytes + kBytesForEachByte * damaged.size())
                    << sample.name;
            }
        }
    }
}

}  // namespace
}  // namespace compressedpaths
