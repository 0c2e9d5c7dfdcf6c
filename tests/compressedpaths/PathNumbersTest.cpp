#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/PathSets.hpp"
#include "tests/support/SavedBodies.hpp"

namespace compressedpaths {
namespace {

using testing::ThrowsMessage;

constexpr const char* kBadNumber =
    "The path number is not a whole number from 1 to the number of paths.";

const TextEntries kEntries{{{u"a"}, {u"1", u"2"}}, {{u"b"}, {u"3", u"4"}}, {{u"a"}, {u"5"}}};

struct Groups {
    TextPaths folders;
    TextPaths files;
    bool operator==(const Groups&) const = default;
};

Groups groupsOf(HuffmanPathTree& set, const std::vector<double>& numbers) {
    std::vector<Path> folders;
    std::vector<Path> files;
    set.getPath(folders, files, numbers);
    Groups groups;
    for (const Path& folder : folders) groups.folders.push_back(decoded(set, folder));
    for (const Path& list : files) groups.files.push_back(decoded(set, list));
    return groups;
}

class PathNumbers : public testing::Test {
protected:
    PathNumbers() { buildSet(set, kEntries); }

    void expectRefused(const std::vector<double>& numbers) {
        std::vector<Path> folders{{{1}}};
        std::vector<Path> files{{{2}}};
        EXPECT_THAT([&] { set.getPath(folders, files, numbers); },
                    ThrowsMessage<InvalidPathNumberException>(kBadNumber))
            << testing::PrintToString(numbers);
        EXPECT_EQ(folders, (std::vector<Path>{{{1}}}));
        EXPECT_EQ(files, (std::vector<Path>{{{2}}}));
    }

    HuffmanPathTree set;
};

TEST_F(PathNumbers, areRefusedUnlessTheyAreWholeAndPositiveAndInTheSet) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double number : {0.0,
                                -0.0,
                                -1.0,
                                0.5,
                                1.5,
                                std::nextafter(1.0, 0.0),
                                std::nextafter(5.0, 6.0),
                                6.0,
                                std::nan(""),
                                -std::nan(""),
                                infinity,
                                -infinity,
                                1e300,
                                -1e300,
                                5e-324,
                                0x1p32 + 1,
                                0x1p53,
                                0x1p63,
                                0x1p64,
                                std::nextafter(0x1p64, 0.0),
                                0x1p65 + 1}) {
        expectRefused({number});
        expectRefused({1, number});
        expectRefused({number, 1});
    }
}

TEST_F(PathNumbers, leaveTheSetAsItWasWhenRefused) {
    const Bytes before = savedForm(set);
    expectRefused({1, 2, 99});
    EXPECT_EQ(savedForm(set), before);
    EXPECT_EQ(pathsByNumber(set, 5), pathsOf(kEntries));
}

TEST_F(PathNumbers, areNoneInASetWithoutPaths) {
    HuffmanPathTree empty;
    std::vector<Path> folders;
    std::vector<Path> files;
    EXPECT_THAT([&] { empty.getPath(folders, files, {1}); },
                ThrowsMessage<InvalidPathNumberException>(kBadNumber));
    empty.getPath(folders, files, {});
    EXPECT_TRUE(folders.empty());
}

TEST_F(PathNumbers, giveNothingWhenNoneIsRequested) {
    EXPECT_EQ(groupsOf(set, {}), Groups());
}

TEST_F(PathNumbers, inAscendingOrderGiveOneGroupAnEntry) {
    EXPECT_EQ(groupsOf(set, {1, 2, 3, 4, 5}),
              (Groups{{{u"a"}, {u"b"}, {u"a"}}, {{u"1", u"2"}, {u"3", u"4"}, {u"5"}}}));
    EXPECT_EQ(groupsOf(set, {2, 5}), (Groups{{{u"a"}, {u"a"}}, {{u"2"}, {u"5"}}}));
}

TEST_F(PathNumbers, inDescendingOrderGiveOneGroupEach) {
    EXPECT_EQ(groupsOf(set, {4, 3, 1}),
              (Groups{{{u"b"}, {u"b"}, {u"a"}}, {{u"4"}, {u"3"}, {u"1"}}}));
}

TEST_F(PathNumbers, startAGroupWhereTheDirectionChanges) {
    EXPECT_EQ(groupsOf(set, {1, 2, 1, 2}),
              (Groups{{{u"a"}, {u"a"}}, {{u"1", u"2"}, {u"1", u"2"}}}));
    EXPECT_EQ(groupsOf(set, {3, 1, 4}),
              (Groups{{{u"b"}, {u"a"}, {u"b"}}, {{u"3"}, {u"1"}, {u"4"}}}));
}

TEST_F(PathNumbers, mayRepeatWithinAGroup) {
    EXPECT_EQ(groupsOf(set, {3, 3, 4, 4}), (Groups{{{u"b"}}, {{u"3", u"3", u"4", u"4"}}}));
}

TEST_F(PathNumbers, givePathsInTheRequestedOrderWhateverItIs) {
    const TextPaths all = pathsOf(kEntries);
    for (int first = 1; first <= 5; ++first) {
        for (int second = 1; second <= 5; ++second) {
            for (int third = 1; third <= 5; ++third) {
                const std::vector<double> numbers{double(first), double(second), double(third)};
                TextPaths expected;
                for (const double number : numbers)
                    expected.push_back(all[static_cast<std::size_t>(number) - 1]);
                EXPECT_EQ(pathsNumbered(set, numbers), expected);
            }
        }
    }
}

TEST_F(PathNumbers, ofPathsAddedOnTheirOwnGiveNothing) {
    addSinglePath(set, {u"c", u"d"});
    EXPECT_EQ(groupsOf(set, {6}), Groups());
    EXPECT_EQ(groupsOf(set, {5, 6}), (Groups{{{u"a"}}, {{u"5"}}}));
    expectRefused({7});
}

/// A set that was saved with tracks but without totals: the numbers are those of the tracks.
TEST(PathNumbersWithoutTotals, areThoseOfTheTracks) {
    HuffmanPathTree set;
    SavedBody body;
    body.shape({false, true, true}).trie({3, 2, 0, 0}, {{0, 1}, {1, 1}, {0, 2}, {1, 2}});
    body.folders({}, {{0, 0}, {0}, {1}});
    loadForm(set, body.form(), u"xy");

    std::vector<Path> folders;
    std::vector<Path> files;
    set.getPath(folders, files, {3, 1, 2});
    ASSERT_EQ(folders.size(), 3U);
    EXPECT_EQ(decoded(set, folders[0]), (TextPath{u"yx"}));
    EXPECT_EQ(decoded(set, folders[1]), (TextPath{u"x", u"y"}));
    EXPECT_EQ(decoded(set, folders[2]), (TextPath{u"x"}));
    EXPECT_TRUE(files.empty());

    EXPECT_THAT(
        [&] {
            set.getPath(folders, files, {1, 4});
        },
        ThrowsMessage<InvalidPathNumberException>(kBadNumber));
    EXPECT_EQ(folders.size(), 3U);
}

}  // namespace
}  // namespace compressedpaths
