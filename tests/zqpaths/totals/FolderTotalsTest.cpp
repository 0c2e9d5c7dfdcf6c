#include "zqpaths/totals/FolderTotals.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tests/zqpaths/SegmentedSets.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"
#include "zqpaths/search/PathScope.hpp"

namespace zqpaths {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Paths = std::vector<std::string>;
using Place = FolderTotals::Place;

constexpr Place kTop = FolderTotals::kTop;

SegmentedSet setOf(const Paths& paths) {
    return SegmentedSet({{SegmentForm::kImage, paths}});
}

Paths namesIn(const FolderTotals& totals, Place folder) {
    Paths names;
    for (const Place inside : totals.foldersIn(folder)) names.push_back(totals.nameOf(inside));
    return names;
}

/// "files in it, files below it, folders in it, folders below it".
std::string figuresOf(const FolderTotals& totals, Place folder) {
    const FolderTotals::Totals& of = totals.of(folder);
    std::string figures;
    for (const std::uint64_t figure : {of.filesIn, of.filesBelow, of.foldersIn, of.foldersBelow})
        figures += (figures.empty() ? "" : " ") + std::to_string(figure);
    return figures;
}

TEST(FolderTotals, addUpWhatIsBelow) {
    const SegmentedSet made = setOf({"/usr/lib/a", "/usr/lib/b", "/usr/c", "src/d", "e"});
    const FolderTotals totals(made.open());
    EXPECT_EQ(figuresOf(totals, kTop), "1 5 2 4");
    EXPECT_EQ(figuresOf(totals, *totals.find("/usr")), "1 3 1 1");
    EXPECT_EQ(figuresOf(totals, *totals.find("/usr/lib")), "2 2 0 0");
    EXPECT_THAT(namesIn(totals, kTop), ElementsAre("/", "src"));
}

TEST(FolderTotals, takeFoldersOfAllSegmentsTogether) {
    const SegmentedSet made(
        {{SegmentForm::kImage, {"a/b/x", "a/y"}}, {SegmentForm::kPacked, {"a/c/x", "a/b/z"}}});
    const FolderTotals totals(made.open());
    EXPECT_EQ(figuresOf(totals, kTop), "0 4 1 3");
    EXPECT_EQ(figuresOf(totals, *totals.find("a/b")), "2 2 0 0");
    EXPECT_THAT(namesIn(totals, *totals.find("a")), ElementsAre("b", "c"));
}

TEST(FolderTotals, takeSeparatorsThatStandTogetherAsOne) {
    const SegmentedSet made = setOf({"/usr//lib/a", "//usr/lib/b", "/usr/lib///c", "x//y", "x/z"});
    const FolderTotals totals(made.open());
    EXPECT_EQ(figuresOf(totals, *totals.find("/usr/lib")), "3 3 0 0");
    EXPECT_EQ(totals.pathOf(*totals.find("//usr//lib/")), "/usr/lib");
    EXPECT_EQ(figuresOf(totals, *totals.find("x")), "2 2 0 0");
}

TEST(FolderTotals, tellRelativePathsFromThoseOfTheRoot) {
    const SegmentedSet made = setOf({"/usr/a", "usr/b", "usr/c"});
    const FolderTotals totals(made.open());
    EXPECT_EQ(totals.of(*totals.find("/usr")).filesBelow, 1U);
    EXPECT_EQ(totals.of(*totals.find("usr")).filesBelow, 2U);
    EXPECT_EQ(totals.pathOf(*totals.find("/")), "/");
    EXPECT_EQ(totals.find(""), kTop);
    EXPECT_EQ(totals.pathOf(kTop), "");
}

TEST(FolderTotals, findNoFolderThatIsNone) {
    const SegmentedSet made = setOf({"a/b/c"});
    const FolderTotals totals(made.open());
    for (const char* none : {"/", "b", "a/b/c", "a/x", "/a"})
        EXPECT_FALSE(totals.find(none)) << none;
}

TEST(FolderTotals, countPathsByTheirNames) {
    const SegmentedSet made = setOf({"a", "b/c", "b/d", "/e", "/f/g/h"});
    EXPECT_THAT(FolderTotals(made.open()).filesByDepth(), ElementsAre(1, 3, 0, 1));
}

TEST(FolderTotals, nameTheLargestFoldersEachAfterTheOneItIsIn) {
    const SegmentedSet made = setOf({"a/b/1", "c/2", "c/3", "c/d/4", "c/d/5"});
    const FolderTotals totals(made.open());
    Paths largest;
    for (const Place place : totals.largest(4)) largest.push_back(totals.pathOf(place));
    EXPECT_THAT(largest, ElementsAre("", "c", "c/d", "a"));
    EXPECT_THAT(totals.largest(0), IsEmpty());
}

TEST(FolderTotals, areThoseOfAnEmptySet) {
    const SegmentedSet made(std::vector<SegmentContent>{});
    const FolderTotals totals(made.open());
    EXPECT_EQ(figuresOf(totals, kTop), "0 0 0 0");
    EXPECT_THAT(totals.filesByDepth(), IsEmpty());
}

/// Whether a path is below a folder: the path of the folder itself is a file beside it.
bool isBelow(const std::string& folder, const std::string& path) {
    if (folder.empty()) return true;
    return PathScope(folder).contains(path) && !PathScope(folder, 0).contains(path);
}

TEST(FolderTotals, countWhatIsUnderEachFolder) {
    std::mt19937 random(7);
    const SegmentedSet made = SegmentedSet::ofPaths(randomPaths(600, 7), 5, random);
    const FolderTotals totals(made.open());
    const std::vector<Place> folders = totals.largest(10'000);
    EXPECT_GT(folders.size(), 100U);
    for (const Place folder : folders) {
        const std::string name = totals.pathOf(folder);
        EXPECT_EQ(totals.find(name), folder) << name;
        const auto below = std::ranges::count_if(
            made.paths(), [&](const std::string& path) { return isBelow(name, path); });
        EXPECT_EQ(totals.of(folder).filesBelow, static_cast<std::uint64_t>(below)) << name;
    }
}

}  // namespace
}  // namespace zqpaths
