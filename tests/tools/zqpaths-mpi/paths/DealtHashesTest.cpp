#include "tools/zqpaths-mpi/paths/DealtHashes.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace zqpaths::program::mpi {
namespace {

using Numbers = std::vector<std::uint64_t>;

XXH128_hash_t hashOf(const std::string& path) {
    return XXH3_128bits(path.data(), path.size());
}

TEST(DealtHashes, tellWhatOnlyOneSideHas) {
    DealtHashes hashes;
    hashes.add(hashOf("both"), Side::kFirst, 1);
    hashes.add(hashOf("a"), Side::kFirst, 2);
    hashes.add(hashOf("b"), Side::kSecond, 3);
    hashes.add(hashOf("both"), Side::kSecond, 4);
    EXPECT_EQ(hashes.numbersOnlyIn(Side::kFirst), Numbers{2});
    EXPECT_EQ(hashes.numbersOnlyIn(Side::kSecond), Numbers{3});
}

TEST(DealtHashes, giveAPathThatOccursAgainItsLowestNumber) {
    DealtHashes hashes;
    for (const std::uint64_t number : {9U, 4U, 7U}) {
        hashes.add(hashOf("a"), Side::kFirst, number);
        hashes.add(hashOf("both"), Side::kFirst, number + 1);
        hashes.add(hashOf("both"), Side::kSecond, number);
    }
    EXPECT_EQ(hashes.numbersOnlyIn(Side::kFirst), Numbers{4});
    EXPECT_EQ(hashes.numbersOnlyIn(Side::kSecond), Numbers{});
}

TEST(DealtHashes, takeAHashOfZeroForWhatItIs) {
    DealtHashes hashes;
    hashes.add({0, 0}, Side::kSecond, 5);
    EXPECT_EQ(hashes.numbersOnlyIn(Side::kSecond), Numbers{5});
    hashes.add({0, 0}, Side::kFirst, 5);
    EXPECT_EQ(hashes.numbersOnlyIn(Side::kSecond), Numbers{});
}

TEST(DealtHashes, keepAllWhenTheTableGrows) {
    DealtHashes hashes;
    Numbers odd;
    Numbers even;
    for (std::uint64_t number = 20000; number > 0; --number) {
        const XXH128_hash_t hash = hashOf(std::to_string(number));
        hashes.add(hash, number % 2 == 1 ? Side::kFirst : Side::kSecond, number);
        (number % 2 == 1 ? odd : even).push_back(number);
    }
    std::ranges::reverse(odd);
    std::ranges::reverse(even);
    EXPECT_EQ(hashes.numbersOnlyIn(Side::kFirst), odd);
    EXPECT_EQ(hashes.numbersOnlyIn(Side::kSecond), even);
}

TEST(DealtHashes, areDealtToAllRanksAlike) {
    std::vector<int> counts(3);
    for (int i = 0; i < 3000; ++i)
        ++counts.at(static_cast<std::size_t>(rankOf(hashOf(std::to_string(i)), 3)));
    for (const int count : counts) EXPECT_NEAR(count, 1000, 150);
}

}  // namespace
}  // namespace zqpaths::program::mpi
