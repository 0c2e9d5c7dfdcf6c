#include "tools/zqpaths-mpi/paths/NumberPieces.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace zqpaths::program::mpi {
namespace {

TEST(NumberPieces, haveEachNumberOnce) {
    for (std::uint64_t total = 0; total < 20; ++total) {
        for (std::uint64_t size = 1; size < 22; ++size) {
            const NumberPieces pieces(total, size);
            std::uint64_t next = 1;
            for (std::uint64_t piece = 0; piece < pieces.count(); ++piece) {
                EXPECT_EQ(pieces.numbers(piece).first, next);
                EXPECT_GE(pieces.numbers(piece).last, next);
                EXPECT_EQ(pieces.begin(piece), next - 1);
                next = pieces.numbers(piece).last + 1;
                EXPECT_LE(pieces.size(piece), size);
            }
            EXPECT_EQ(next, total + 1);
        }
    }
}

TEST(NumberPieces, canBeOfAsManyNumbersAsThereAre) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    const NumberPieces pieces(kMost, std::uint64_t{1} << 62);
    EXPECT_EQ(pieces.count(), 4U);
    EXPECT_EQ(pieces.end(3), kMost);
}

TEST(NumberPieces, areNeitherTooSmallNorTooLarge) {
    EXPECT_EQ(searchedAtOnce(0, 1), 1U << 14);
    EXPECT_EQ(searchedAtOnce(1U << 24, 4), 1U << 18);
    EXPECT_EQ(searchedAtOnce(std::uint64_t{1} << 40, 4), 1U << 20);
}

}  // namespace
}  // namespace zqpaths::program::mpi
