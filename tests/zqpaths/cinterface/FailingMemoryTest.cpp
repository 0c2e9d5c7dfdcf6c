// Lack of memory at every step of the functions for C: a status, and the answer when there is some
// again.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/FailingHeap.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SavedPaths.hpp"
#include "tests/zqpaths/cinterface/OpenedByC.hpp"

namespace zqpaths {
namespace {

using Refused = FailingHeap::Refused;

/// Takes `step`, which gives a status, as often as a block is refused to it, each time a later one,
/// and expects that it says so or succeeds all the same. Returns how often there was no memory.
template <class Step>
std::size_t failEverywhere(Step step) {
    constexpr std::size_t kMostBlocks = 100'000;  // a step that asks for more does not end
    std::size_t failures = 0;
    for (const Refused way : {Refused::kOne, Refused::kAllAfter}) {
        bool hasRefused = true;
        for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
            zqp_status status = ZQP_OK;
            {
                const FailingHeap heap(number, way);
                status = step();
                hasRefused = heap.hasRefused();
            }
            if (status == ZQP_OK) continue;
            ++failures;
            EXPECT_EQ(status, ZQP_NO_MEMORY) << zqp_last_error();
            EXPECT_STREQ(zqp_last_error(), "there is not enough memory");
        }
        EXPECT_FALSE(hasRefused);
    }
    return failures;
}

zqp_status writeOne(const std::string& file) {
    zqp_writer* writer = nullptr;
    zqp_status status = zqp_writer_open(file.c_str(), ZQP_REPLACE, &writer);
    if (status == ZQP_OK) status = zqp_writer_add(writer, "usr/bin/env", 11);
    if (status == ZQP_OK) status = zqp_writer_commit(writer);
    zqp_writer_close(writer);
    return status;
}

zqp_status readOne(const std::string& file) {
    zqp_set* set = nullptr;
    zqp_status status = zqp_open(file.c_str(), &set);
    std::array<char, 100> buffer{};
    std::array<std::size_t, 2> offsets{};
    std::uint64_t number = 1;
    const auto get = [&] { return zqp_get(set, 1, buffer.data(), buffer.size(), offsets.data()); };
    const auto getMany = [&] {
        return zqp_get_many(set, &number, 1, buffer.data(), buffer.size(), offsets.data());
    };
    if (status == ZQP_OK) status = get();
    if (status == ZQP_OK) status = getMany();
    if (status == ZQP_OK) status = zqp_number_of(set, "usr/bin/env", 11, &number);
    if (status == ZQP_OK) status = zqp_count(set, "bin", 3, ZQP_TEXT, &number);
    EXPECT_EQ(number, 1U);
    zqp_close(set);
    return status;
}

TEST(FailingMemory, isAStatusOfAWriter) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    EXPECT_GT(failEverywhere([&] { return writeOne(file); }), 20U);
    EXPECT_EQ(savedPaths(file), std::vector<std::string>{"usr/bin/env"});
}

TEST(FailingMemory, isAStatusOfASet) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    ASSERT_EQ(writeOne(file), ZQP_OK);
    EXPECT_GT(failEverywhere([&] { return readOne(file); }), 20U);
}

/// Everything that visits paths or tells of damage, with a visitor that counts.
zqp_status visitAll(const std::string& file) {
    zqp_set* set = nullptr;
    zqp_status status = zqp_open(file.c_str(), &set);
    int visits = 0;
    const auto count = [](void* visited, std::uint64_t, const char*, std::size_t) {
        ++*static_cast<int*>(visited);
        return 0;
    };
    if (status == ZQP_OK) status = zqp_for_each(set, count, &visits);
    if (status == ZQP_OK) status = zqp_for_range(set, 1, 1, count, &visits);
    if (status == ZQP_OK) status = zqp_under(set, "usr", 3, count, &visits);
    if (status == ZQP_OK) status = zqp_find(set, "bin", 3, ZQP_TEXT, count, &visits);
    if (status == ZQP_OK) status = zqp_walk(set, count, &visits);
    int isGone = 1;
    if (status == ZQP_OK) status = zqp_is_gone(set, 1, &isGone);
    const auto report = [](void*, const char* damage) { ADD_FAILURE() << damage; };
    if (status == ZQP_OK) status = zqp_verify(set, report, nullptr);
    EXPECT_TRUE(status != ZQP_OK || visits == 5) << visits;
    zqp_close(set);
    return status;
}

TEST(FailingMemory, isAStatusOfAllThatVisits) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    ASSERT_EQ(writeOne(file), ZQP_OK);
    EXPECT_GT(failEverywhere([&] { return visitAll(file); }), 50U);
}

TEST(FailingMemory, leavesATextForEachFailure) {
    const FailingHeap heap(1, Refused::kAllAfter);
    zqp_set* set = nullptr;
    EXPECT_EQ(zqp_open(nullptr, &set), ZQP_NO_MEMORY);  // there is none to say what is NULL
    EXPECT_STREQ(zqp_last_error(), "there is not enough memory");
}

}  // namespace
}  // namespace zqpaths
