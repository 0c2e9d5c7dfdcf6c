#include "zqpaths/set/GonePaths.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "zqpaths/Error.hpp"
#include "zqpaths/file/SetFileDirectory.hpp"

namespace zqpaths {
namespace {

/// Which numbers are gone, plainly: the first one at 0.
using Flags = std::vector<bool>;

/// The runs of a set of gone paths, where a file would have them.
struct StoredRuns {
    explicit StoredRuns(const Flags& flags) : count(flags.size()) {
        GoneMarks marks;
        for (std::size_t i = 0; i < flags.size(); ++i)
            if (flags[i]) marks.markGone(i + 1);
        runs = marks.appliedTo(GonePaths(count));
    }

    GonePaths gone() const { return {runs.bytes, runs.goneCount, count}; }

    std::uint64_t count;
    GoneMarks::Runs runs;
};

void expectThese(const Flags& flags, const GonePaths& gone) {
    std::vector<std::uint64_t> goneNumbers;
    std::vector<std::uint64_t> others;
    GoneCursor cursor(gone);
    for (std::uint64_t number = 1; number <= flags.size(); ++number) {
        ASSERT_EQ(gone.countBelow(number), goneNumbers.size());
        ASSERT_EQ(gone.has(number), flags[number - 1]) << number;
        ASSERT_EQ(cursor.isGone(number), flags[number - 1]) << number;
        (flags[number - 1] ? goneNumbers : others).push_back(number);
    }
    ASSERT_EQ(gone.count(), goneNumbers.size());
    ASSERT_EQ(gone.presentCount(), others.size());
    for (std::size_t i = 0; i < goneNumbers.size(); ++i)
        ASSERT_EQ(gone.goneNumber(i), goneNumbers[i]);
    for (std::size_t i = 0; i < others.size(); ++i) ASSERT_EQ(gone.presentNumber(i), others[i]);
    gone.verify();
}

Flags flagsOf(unsigned bits, unsigned size) {
    Flags flags(size);
    for (unsigned i = 0; i < size; ++i) flags[i] = (bits >> i & 1) != 0;
    return flags;
}

TEST(GonePaths, areRunsThatDoNotTouch) {
    const StoredRuns stored({false, false, true, true, false, true, true});
    const GonePaths gone = stored.gone();
    ASSERT_EQ(gone.runCount(), 2U);
    EXPECT_EQ(gone[0], (GonePaths::Run{3, 4}));
    EXPECT_EQ(gone[1], (GonePaths::Run{6, 7}));
    EXPECT_EQ(stored.runs.bytes.size(), 2 * kGoneRunSize);
}

TEST(GonePaths, areFoundByNumberAndByPlaceInAllSmallSets) {
    constexpr unsigned kSize = 9;
    for (unsigned bits = 0; bits < 1U << kSize && !testing::Test::HasFailure(); ++bits) {
        SCOPED_TRACE(bits);
        const Flags flags = flagsOf(bits, kSize);
        expectThese(flags, StoredRuns(flags).gone());
    }
}

TEST(GonePaths, areNoneInASetThatHasNone) {
    const GonePaths gone(7);
    EXPECT_EQ(gone.presentCount(), 7U);
    EXPECT_EQ(gone.presentNumber(6), 7U);
    EXPECT_FALSE(gone.has(1));
    EXPECT_EQ(gone.countBelow(8), 0U);
}

TEST(GoneMarks, changeAnySmallSetIntoAnyOther) {
    constexpr unsigned kSize = 6;
    for (unsigned from = 0; from < 1U << kSize && !testing::Test::HasFailure(); ++from) {
        const StoredRuns before(flagsOf(from, kSize));
        for (unsigned to = 0; to < 1U << kSize; ++to) {
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            const Flags wanted = flagsOf(to, kSize);
            GoneMarks marks;
            for (unsigned i = kSize; i-- > 0;) {
                if ((from >> i & 1) == (to >> i & 1)) continue;
                if (wanted[i])
                    marks.markGone(i + 1);
                else
                    marks.markPresent(i + 1);
            }
            const GoneMarks::Runs after = marks.appliedTo(before.gone());
            expectThese(wanted, {after.bytes, after.goneCount, kSize});
        }
    }
}

TEST(GoneMarks, areWhatWasMarkedLast) {
    GoneMarks marks;
    marks.markGone(3);
    marks.markPresent(3);
    marks.markGone(2);
    marks.markGone(2);
    marks.markPresent(5);
    marks.markGone(5);
    const GoneMarks::Runs runs = marks.appliedTo(GonePaths(5));
    expectThese({false, true, false, false, true}, {runs.bytes, runs.goneCount, 5});
}

TEST(GoneMarks, takeNumbersThatFollowAllOthers) {
    const StoredRuns before({false, true, true});
    GoneMarks marks;
    for (const std::uint64_t number : {4U, 6U, 7U, 8U, 10U}) marks.appendGone(number);
    marks.markPresent(7);
    marks.markPresent(2);
    marks.markGone(9);
    const GoneMarks::Runs runs = marks.appliedTo(before.gone());
    expectThese({false, false, true, true, false, true, false, true, true, true},
                {runs.bytes, runs.goneCount, 10});
}

// Pairs of integers, as a file has them: where a run begins, and how many are gone before it.
TEST(GonePaths, haveNoNumberForAPlaceBeforeTheirFirstRun) {
    const std::array<std::uint64_t, 2> runs{3, 2};
    const GonePaths gone(std::as_bytes(std::span(runs)), 4, 9);
    EXPECT_EQ(gone.goneNumber(2), 3U);
    EXPECT_THROW(gone.goneNumber(0), Error);
    EXPECT_THROW(gone.verify(), Error);
}

TEST(GoneMarks, dropRunsThatEndBeforeTheyBegin) {
    const std::array<std::uint64_t, 4> runs{3, 0, 8, 0};  // the first has no number
    const GonePaths before(std::as_bytes(std::span(runs)), 1, 9);
    GoneMarks marks;
    marks.markGone(9);
    const GoneMarks::Runs after = marks.appliedTo(before);
    expectThese({false, false, false, false, false, false, false, true, true},
                {after.bytes, after.goneCount, 9});
}

TEST(GonePaths, areRefusedOrAnsweredWhateverTheRunsSay) {
    constexpr std::uint64_t kCount = 50;
    std::mt19937_64 random(1);
    std::size_t refusals = 0;
    for (int round = 0; round < 20'000; ++round) {
        alignas(8) std::array<std::uint64_t, 6> values{3, 0, 8, 2, 20, 7};
        for (auto changes = random() % 3 + 1; changes > 0; --changes)
            values.at(random() % values.size()) = random() % 2 == 0 ? random() : random() % 60;
        const GonePaths gone(std::as_bytes(std::span(values)), random() % kCount, kCount);
        GoneCursor cursor(gone);
        for (std::uint64_t number = 1; number <= kCount; ++number) {
            cursor.isGone(number);
            gone.has(number);
        }
        for (std::uint64_t place = 0; place < kCount; ++place) {
            for (const auto ask : {&GonePaths::goneNumber, &GonePaths::presentNumber}) {
                try {
                    const std::uint64_t number = (gone.*ask)(place);
                    ASSERT_GE(number, 1U);
                    ASSERT_LE(number, kCount);
                } catch (const Error& error) {
                    ASSERT_EQ(error.kind(), ErrorKind::kDamaged);
                    ++refusals;
                }
            }
        }
    }
    EXPECT_GT(refusals, 0U);
}

TEST(GonePaths, areToldFromRunsThatCannotBe) {
    const auto isSound = [](std::array<std::uint64_t, 4> values, std::uint64_t goneCount) {
        try {
            GonePaths(std::as_bytes(std::span(values)), goneCount, 10).verify();
            return true;
        } catch (const Error& error) {
            EXPECT_EQ(error.kind(), ErrorKind::kDamaged);
            return false;
        }
    };
    EXPECT_TRUE(isSound({2, 0, 5, 2}, 4));
    EXPECT_TRUE(isSound({1, 0, 3, 1}, 9));
    EXPECT_FALSE(isSound({0, 0, 5, 2}, 4));   // a number below 1
    EXPECT_FALSE(isSound({2, 1, 5, 2}, 4));   // some gone before the first
    EXPECT_FALSE(isSound({2, 0, 4, 2}, 4));   // runs that touch
    EXPECT_FALSE(isSound({5, 0, 2, 2}, 4));   // that descend
    EXPECT_FALSE(isSound({2, 0, 5, 0}, 4));   // an empty one
    EXPECT_FALSE(isSound({2, 0, 5, 2}, 2));   // as the last one
    EXPECT_FALSE(isSound({2, 0, 5, 2}, 9));   // numbers beyond the set
    EXPECT_FALSE(isSound({2, 0, 11, 2}, 3));  // as the first of a run
    EXPECT_FALSE(isSound({2, 0, ~std::uint64_t{0}, 2}, 3));
}

}  // namespace
}  // namespace zqpaths
