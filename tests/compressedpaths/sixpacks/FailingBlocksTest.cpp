// Blocks for which there is no memory: zlib asks for some of its own, and says so in another way.

#include <gtest/gtest.h>

#include <new>
#include <numeric>

#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "tests/support/FailingHeap.hpp"

namespace compressedpaths::sixpacks {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Works with one block of memory after the other refused. Returns how often it threw bad_alloc.
template <class Work>
std::size_t refusals(Work work) {
    std::size_t count = 0;
    for (std::size_t number = 1;; ++number) {
        const FailingHeap heap(number, FailingHeap::Refused::kOne);
        try {
            work();
        } catch (const std::bad_alloc&) {
            ++count;
        }
        if (!heap.hasRefused()) return count;
    }
}

TEST(FailingBlocks, areNeverShorterForLackOfMemory) {
    Bytes bytes(100'000);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    Bytes block = compressUint8(bytes);
    const auto isSame = [](const Bytes& a, const Bytes& b) {
        if (a != b) ADD_FAILURE() << a.size() << " bytes, not " << b.size();
    };
    EXPECT_GE(refusals([&] { isSame(compressUint8(bytes), block); }), 3U);
    EXPECT_GE(refusals([&] {
                  BlockCompressor compressor;
                  compressor.append(bytes);
                  Bytes appended;
                  compressor.appendBlockTo(appended);
                  isSame(appended, block);
              }),
              3U);
    EXPECT_GE(refusals([&] {
                  isSame(decompressUint8(block.begin(), block.size(), bytes.size()), bytes);
              }),
              2U);
    EXPECT_GE(refusals([&] {
                  const InflatedBlock whole = inflateBlock(block, bytes.size());
                  isSame(whole.bytes, bytes);
                  EXPECT_TRUE(whole.isWhole);
              }),
              3U);
}

}  // namespace
}  // namespace compressedpaths::sixpacks
