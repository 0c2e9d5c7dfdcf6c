#include "tools/zqpaths-mpi/communication/ResultOrder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zqpaths::program::mpi {
namespace {

/// All that can be taken, in its order.
std::string takeAll(ResultOrder& order) {
    std::string bytes;
    while (const auto part = order.next()) bytes += part->bytes;
    return bytes;
}

TEST(ResultOrder, givesPiecesInTheirOrderWhateverOrderTheyCameIn) {
    std::vector<std::uint64_t> pieces{0, 1, 2, 3};
    do {
        ResultOrder order;
        std::string taken;
        for (const std::uint64_t piece : pieces) {
            order.add({piece, 0, std::to_string(piece), true});
            taken += takeAll(order);
        }
        EXPECT_EQ(taken, "0123");
        EXPECT_TRUE(order.isEmpty());
    } while (std::ranges::next_permutation(pieces).found);
}

TEST(ResultOrder, givesThePartsOfTheNextPieceAsTheyCome) {
    ResultOrder order;
    order.add({1, 5, "x", false});
    EXPECT_FALSE(order.next());
    order.add({0, 4, "a", false});
    EXPECT_EQ(order.next()->bytes, "a");
    EXPECT_FALSE(order.next());
    order.add({0, 4, "b", true});
    const auto last = order.next();
    EXPECT_EQ(last->bytes, "b");
    EXPECT_EQ(last->rank, 4);
    EXPECT_TRUE(last->isLast);
    EXPECT_EQ(order.next()->rank, 5);
    EXPECT_TRUE(order.isEmpty());
    order.add({1, 5, "", true});
    order.add({2, 4, "c", true});
    EXPECT_EQ(takeAll(order), "c");
}

TEST(ResultOrder, isNotEmptyWhileAPieceWaitsForOneBefore) {
    ResultOrder order;
    order.add({1, 0, "", true});
    EXPECT_FALSE(order.next());
    EXPECT_FALSE(order.isEmpty());
}

}  // namespace
}  // namespace zqpaths::program::mpi
