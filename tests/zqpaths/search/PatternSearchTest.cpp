#include "zqpaths/search/PatternSearch.hpp"

#include <gtest/gtest.h>

#include "tests/zqpaths/SegmentedSets.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"
#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

using Case = Pattern::Case;
using Numbers = std::vector<std::uint64_t>;
using Paths = std::vector<std::string>;

/// The numbers in the ranges that a search gives.
Numbers numbersFound(const PathSet& set, const Pattern& pattern) {
    Numbers numbers;
    set.findNumbers(pattern, [&](std::uint64_t first, std::uint64_t last) {
        for (; first <= last; ++first) numbers.push_back(first);
        return true;
    });
    return numbers;
}

/// The numbers that a search gives, which must be those of the paths that match one by one.
Numbers found(const PathSet& set, const Paths& paths, const Pattern& pattern,
              const std::string& what) {
    const auto visited = visitedBy([&](auto visit) { set.find(pattern, visit); });
    EXPECT_EQ(visited,
              numberedWhere(paths, [&](const std::string& path) { return pattern.matches(path); }))
        << what;
    EXPECT_EQ(set.count(pattern), visited.size()) << what;
    Numbers numbers;
    for (const auto& [number, path] : visited) numbers.push_back(number);
    EXPECT_EQ(numbersFound(set, pattern), numbers) << what;
    return numbers;
}

class PatternSearchTest : public testing::Test {
protected:
    Numbers text(const std::string& text) const {
        return found(set_, made_.paths(), Pattern::text(text), text);
    }
    Numbers glob(const std::string& glob) const {
        return found(set_, made_.paths(), Pattern::glob(glob), glob);
    }
    Numbers regex(const std::string& regex) const {
        return found(set_, made_.paths(), Pattern::regex(regex), regex);
    }

    SegmentedSet made_{
        {{SegmentForm::kImage,
          {"/usr/lib/libz.so", "/usr/lib/python3/x.py", "/usr/lib/python3/lib/y",
           "/usr/bin/python3", "/usr/bin/caf\xC3\xA9", "/usr/bin/bad\xFF\xC3"}},
         {SegmentForm::kPacked,
          {"python3", "data/lib/", "data//lib", "lib/", "/", "/usr/lib/python3/z"}}}};
    PathSet set_ = made_.open();
};

TEST_F(PatternSearchTest, findsTextsInNamesAndFolders) {
    EXPECT_EQ(text("python3"), (Numbers{2, 3, 4, 7, 12}));
    EXPECT_EQ(text("lib"), (Numbers{1, 2, 3, 8, 9, 10, 12}));
    EXPECT_EQ(text("usr"), (Numbers{1, 2, 3, 4, 5, 6, 12}));
    EXPECT_EQ(text("x.py"), Numbers{2});
    EXPECT_EQ(text("none"), Numbers{});
    EXPECT_EQ(text("\xC3\xA9"), Numbers{5});
    EXPECT_EQ(text("").size(), 12U);
}

TEST_F(PatternSearchTest, findsTextsWithSeparators) {
    EXPECT_EQ(text("lib/python3"), (Numbers{2, 3, 12}));
    EXPECT_EQ(text("python3/x"), Numbers{2});
    EXPECT_EQ(text("bin/python3"), Numbers{4});
    EXPECT_EQ(text("/usr/lib/"), (Numbers{1, 2, 3, 12}));
    EXPECT_EQ(text("lib/"), (Numbers{1, 2, 3, 8, 10, 12}));
    EXPECT_EQ(text("a//l"), Numbers{9});
    EXPECT_EQ(text("/").size(), 11U);
    EXPECT_EQ(text("//"), Numbers{9});
    EXPECT_EQ(text("python3/"), (Numbers{2, 3, 12}));
}

// What begins in the text of a folder ends there or in the name of a file, which has separators at
// its end alone.
TEST_F(PatternSearchTest, findsTextsThatGoOnInAFileName) {
    EXPECT_EQ(text("a/lib/"), Numbers{8});
    EXPECT_EQ(text("a/lib"), Numbers{8});
    EXPECT_EQ(text("a//lib"), Numbers{9});
    EXPECT_EQ(text("a//"), Numbers{9});
    EXPECT_EQ(text("a/lib//"), Numbers{});
    EXPECT_EQ(text("r/lib/p"), (Numbers{2, 3, 12}));
    EXPECT_EQ(text("/python3/lib/y"), Numbers{3});
    EXPECT_EQ(text("/lib/"), (Numbers{1, 2, 3, 8, 12}));
}

TEST_F(PatternSearchTest, findsTextsThatAreNotUtf8) {
    EXPECT_EQ(text("\xFF"), Numbers{6});
    EXPECT_EQ(text("\xC3"), (Numbers{5, 6}));
    EXPECT_EQ(text("\xA9"), Numbers{5});
}

TEST_F(PatternSearchTest, neverFindsTheMarkOfNoFolder) {
    EXPECT_EQ(text(std::string(1, '\0')), Numbers{});
    EXPECT_EQ(text(std::string("\0python3", 8)), Numbers{});
}

TEST_F(PatternSearchTest, findsGlobs) {
    EXPECT_EQ(glob("*.py"), Numbers{2});
    EXPECT_EQ(glob("python*"), (Numbers{4, 7}));
    EXPECT_EQ(glob("lib"), (Numbers{8, 9, 10}));
    EXPECT_EQ(glob("/usr/**/python3/*"), (Numbers{2, 12}));
    EXPECT_EQ(glob("**/python3/**"), (Numbers{2, 3, 12}));
    EXPECT_EQ(glob("/usr/*/python3"), Numbers{4});
    EXPECT_EQ(glob("*").size(), 11U);  // the name of "/" is a separator
}

TEST_F(PatternSearchTest, findsRegularExpressions) {
    EXPECT_EQ(regex("python3$"), (Numbers{4, 7}));
    EXPECT_EQ(regex("python3/.*y$"), (Numbers{2, 3}));
    EXPECT_EQ(regex("(bin|data)/"), (Numbers{4, 5, 6, 8, 9}));
    EXPECT_EQ(regex("").size(), 12U);
}

TEST_F(PatternSearchTest, findsWithoutCase) {
    EXPECT_EQ(found(set_, made_.paths(), Pattern::text("PYTHON3", Case::kIgnore), "text").size(),
              5U);
    EXPECT_EQ(found(set_, made_.paths(), Pattern::glob("*.PY", Case::kIgnore), "glob").size(), 1U);
    EXPECT_EQ(found(set_, made_.paths(), Pattern::regex("^/USR", Case::kIgnore), "regex").size(),
              7U);
}

TEST(PatternSearch, visitsMatchesOfManySlicesInOrder) {
    std::vector<SegmentContent> segments(2, {SegmentForm::kImage, {}});
    for (std::size_t i = 0; i < 100000; ++i)
        segments[i / 60000].paths.push_back(
            (i / 300 % 7 == 0 ? "needle" : "dir") + std::to_string(i / 300) +
            (i % 97 == 0 ? "/a-needle-" : "/file") + std::to_string(i % 300));
    const SegmentedSet made(segments);
    for (const char* const text : {"needle", "needle0/", "ir1/a-needle", "file299", "le1"})
        found(made.open(), made.paths(), Pattern::text(text), text);
}

/// Texts that are in the paths, or nearly, or not at all.
std::string randomText(const Paths& paths, std::mt19937& random) {
    const std::string& path = paths[random() % paths.size()];
    std::string text = path.substr(random() % path.size(), 1 + random() % 12);
    if (random() % 4 == 0) text.back() = static_cast<char>(1 + random() % 255);
    return text;
}

std::string globOf(std::string text, std::mt19937& random) {
    for (char& character : text)
        if (random() % 4 == 0) character = "*?["[random() % 3];
    return (random() % 2 == 0 ? "*" : "") + text + (random() % 2 == 0 ? "**" : "");
}

std::string regexOf(std::string text, std::mt19937& random) {
    for (char& character : text)
        if (random() % 4 == 0) character = ".+?*|()"[random() % 7];
    return text;
}

void searchFor(const PathSet& set, const Paths& paths, const std::string& text,
               std::mt19937& random, std::size_t& hits) {
    const Case letterCase = random() % 5 == 0 ? Case::kIgnore : Case::kRespect;
    hits += found(set, paths, Pattern::text(text, letterCase), text).size();
    const std::string glob = globOf(text, random);
    const std::string regex = regexOf(text, random);
    try {
        hits += found(set, paths, Pattern::glob(glob, letterCase), glob).size();
        hits += found(set, paths, Pattern::regex(regex, letterCase), regex).size();
    } catch (const Error& error) {
        EXPECT_EQ(error.kind(), ErrorKind::kWrongUse);  // a pattern that is not well formed
    }
}

TEST(PatternSearch, findsTheSameAsTestingAllPaths) {
    std::mt19937 random(7);
    std::size_t hits = 0;
    for (unsigned seed = 0; seed < 12; ++seed) {
        const Paths paths = randomPaths(300, seed);
        const SegmentedSet made = SegmentedSet::ofPaths(paths, 1 + seed % 4, random);
        const PathSet set = made.open();
        for (int i = 0; i < 150; ++i)
            searchFor(set, made.paths(), randomText(paths, random), random, hits);
        if (HasFailure()) return;
    }
    EXPECT_GT(hits, 10000U);
}

}  // namespace
}  // namespace zqpaths
