// Paths so long that few of them are read ahead: whatever goes through many gives all of them, in
// their order, and stops where it is told to.

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "tests/zqpaths/SegmentedSets.hpp"
#include "zqpaths/Pattern.hpp"

namespace zqpaths {
namespace {

using Visited = std::vector<Numbered>;

class LongPaths : public testing::Test {
protected:
    /// Every third path is short, and every fifth in a folder of another name.
    static std::vector<std::string> makePaths(std::size_t first, std::size_t count) {
        constexpr std::size_t kLength = 150'000;
        std::vector<std::string> paths;
        for (std::size_t i = first; i < first + count; ++i)
            paths.push_back((i % 5 == 0 ? "other/" : "folder/") + std::to_string(i) +
                            std::string(i % 3 == 0 ? 1 : kLength, 'n') + ".end");
        return paths;
    }

    /// All that `visitAll(visitor)` gives, and then, with a visitor that stops, the first ones.
    template <class VisitAll>
    static void expectVisited(VisitAll visitAll, const Visited& expected) {
        for (const std::size_t most : {expected.size(), std::size_t{40}, std::size_t{1}}) {
            Visited visited;
            visitAll([&](std::uint64_t number, std::string_view path) {
                visited.emplace_back(number, path);
                return visited.size() < most;
            });
            EXPECT_TRUE(std::ranges::equal(
                visited, std::span(expected).first(std::min(most, expected.size()))))
                << visited.size() << " of " << expected.size() << " paths, at most " << most;
        }
    }

    template <class Rule>
    Visited pathsThat(Rule rule) const {
        Visited paths;
        for (std::size_t i = 0; i < made_.paths().size(); ++i)
            if (rule(made_.paths()[i])) paths.emplace_back(i + 1, made_.paths()[i]);
        return paths;
    }
    Visited all() const {
        return pathsThat([](const std::string&) { return true; });
    }

    SegmentedSet made_{
        {{SegmentForm::kImage, makePaths(0, 70)}, {SegmentForm::kPacked, makePaths(70, 40)}}};
    PathSet set_ = made_.open();
};

TEST_F(LongPaths, areVisitedUpwardsAndDownwards) {
    Visited paths = all();
    expectVisited([&](auto visit) { set_.forEach(visit); }, paths);
    std::ranges::reverse(paths);
    expectVisited([&](auto visit) { set_.forEach(set_.size(), 1, visit); }, paths);
}

TEST_F(LongPaths, areGivenByAnIterator) {
    std::vector<std::string> paths;
    for (const std::string_view path : set_) paths.emplace_back(path);
    EXPECT_TRUE(paths == made_.paths());
}

TEST_F(LongPaths, areGivenByNumbersInAnyOrder) {
    std::vector<std::uint64_t> numbers(2 * set_.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = 1 + i % set_.size();
    for (const bool isShuffled : {false, true}) {
        if (isShuffled) std::ranges::shuffle(numbers, std::mt19937(5));
        Visited expected;
        for (const std::uint64_t number : numbers)
            expected.emplace_back(number, made_.paths()[number - 1]);
        expectVisited([&](auto visit) { set_.paths(numbers, visit); }, expected);
    }
}

TEST_F(LongPaths, areFoundInAFolderAndByPatterns) {
    expectVisited([&](auto visit) { set_.under("folder", visit); },
                  pathsThat([](const std::string& path) { return path.starts_with("folder/"); }));
    for (const Pattern& pattern : {Pattern::text("7"), Pattern::text("er/1"),
                                   Pattern::regex("^o.*[24]n"), Pattern::glob("*d")})
        expectVisited([&](auto visit) { set_.find(pattern, visit); },
                      pathsThat([&](const std::string& path) { return pattern.matches(path); }));
}

}  // namespace
}  // namespace zqpaths
