// Tables on arrays from outside, which may hold anything.

#include <gtest/gtest.h>

#include "tests/compressedpaths/coding/SlowCode.hpp"

namespace compressedpaths {
namespace {

using namespace slow_code;

/// Tables on copies of the arrays of a code that `damage` has been at.
template <class Damage>
CodeTables damaged(const SlowCode& code, Damage damage) {
    CodeTables::Arrays arrays = code.tables().arrays();
    damage(arrays);
    return CodeTables(std::move(arrays));
}

TEST(CodeTables, workOnArraysThatAreBorrowed) {
    const SlowCode code = comb(units(100, u'A'));
    const CodeTables owner = code.tables();
    const CodeTables::Arrays& own = owner.arrays();
    CodeTables::Arrays arrays;
    arrays.pageOf = FlatArray<std::uint16_t>::borrowing(own.pageOf.values());
    arrays.words = FlatArray<std::uint64_t>::borrowing(own.words.values());
    arrays.longWords = FlatArray<std::uint32_t>::borrowing(own.longWords.values());
    arrays.longBits = FlatArray<std::uint8_t>::borrowing(own.longBits.values());
    arrays.steps = FlatArray<std::uint64_t>::borrowing(own.steps.values());
    arrays.branches = FlatArray<std::uint32_t>::borrowing(own.branches.values());
    expectRoundTrip(code, CodeTables(std::move(arrays)), code.leaves);
}

TEST(CodeTables, onArraysOfOtherSizesCodeAndDecodeNothing) {
    const SlowCode code(u".a.bc");
    const auto noPages = damaged(code, [](auto& arrays) { arrays.pageOf.truncate(255); });
    EXPECT_THROW(coded(noPages, u"a"), CodeNotFoundException);
    const auto noWords = damaged(code, [](auto& arrays) { arrays.words.truncate(255); });
    EXPECT_THROW(coded(noWords, u"a"), CodeNotFoundException);
    const auto noSteps = damaged(code, [](auto& arrays) { arrays.steps.truncate(4095); });
    EXPECT_FALSE(noSteps.canDecode());
    const auto noBranches = damaged(code, [](auto& arrays) { arrays.branches.truncate(0); });
    EXPECT_FALSE(noBranches.canDecode());
}

TEST(CodeTables, findNoLongWordOutsideTheArrays) {
    const SlowCode code = comb(units(100, u'A'));
    const std::u16string text(1, u'A' + 98);
    EXPECT_EQ(coded(code.tables(), text), stored(code.bitsOf(text)));
    const auto cutWords = [](auto& arrays) { arrays.longWords.truncate(3); };
    EXPECT_THROW(coded(damaged(code, cutWords), text), CodeNotFoundException);
    const auto cutBits = [](auto& arrays) {
        arrays.longBits.truncate(arrays.longBits.size() - 20);
    };
    EXPECT_THROW(coded(damaged(code, cutBits), text), CodeNotFoundException);
    const auto farAway = [](auto& arrays) {
        for (std::size_t i = 0; i < arrays.longWords.size(); ++i)
            arrays.longWords.at(i) = 0xFFFFFFFF;
    };
    EXPECT_THROW(coded(damaged(code, farAway), text), CodeNotFoundException);
}

TEST(CodeTables, comeToAnEndWhereStepsOrBranchesLeadNowhere) {
    const SlowCode code = comb(units(100, u'A'));
    const BitName name(Bits(1000, true));
    const auto noBits = damaged(code, [](auto& arrays) { arrays.steps.assign(4096, 0); });
    EXPECT_THROW(decoded<std::string>(noBits, name.view()), InvalidCodeException);
    const auto circle = [](auto& arrays) { arrays.branches.assign(arrays.branches.size(), 0); };
    EXPECT_EQ(decoded<std::string>(damaged(code, circle), name.view()), "");
    const auto outside = [](auto& arrays) {
        arrays.branches.assign(arrays.branches.size(), 0x7FFFFFFF);
    };
    EXPECT_THROW(decoded<std::u16string>(damaged(code, outside), name.view()),
                 InvalidCodeException);
}

/// Runs `work`, which may refuse what it is given.
template <class Work>
void tolerate(Work work) {
    try {
        work();
    } catch (const InvalidCodeException&) {
        // told
    } catch (const CodeNotFoundException&) {
        // told
    }
}

TEST(CodeTables, readNothingOutsideOfArraysThatHoldAnything) {
    std::mt19937_64 random(3);
    const SlowCode code = comb(units(100, u'A'));
    for (unsigned round = 0; round < 400; ++round) {
        const auto scramble = [&](auto& array) {
            const bool isAll = random() % 2 == 0;
            for (std::size_t i = 0; i < array.size(); ++i)
                if (isAll || random() % 8 == 0)
                    array.at(i) = static_cast<std::remove_cvref_t<decltype(array[0])>>(
                        random() >> random() % 64);
        };
        const CodeTables tables = damaged(code, [&](auto& arrays) {
            if (round % 2 == 0) scramble(arrays.pageOf);
            if (round % 3 == 0) scramble(arrays.words);
            if (round % 5 != 0) scramble(arrays.longWords);
            scramble(arrays.steps);
            if (round % 7 != 0) scramble(arrays.branches);
        });
        tolerate([&] { coded(tables, code.leaves); });
        for (const char16_t character : code.leaves)
            tolerate([&] { coded(tables, std::u16string(3, character)); });
        for (const std::size_t length : {1U, 12U, 47U, 48U, 90U, 2000U}) {
            Bits bits;
            while (bits.size() < length) bits.push_back(random() % 3 != 0);
            const BitName name(bits, static_cast<std::uint8_t>(random()));
            tolerate([&] { decoded<std::string>(tables, name.view()); });
            tolerate([&] { decoded<std::u16string>(tables, name.view()); });
        }
    }
}

}  // namespace
}  // namespace compressedpaths
