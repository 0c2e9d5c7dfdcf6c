#include "zqpaths/set/PathBuffer.hpp"

#include <gtest/gtest.h>

#include <utility>

namespace zqpaths {
namespace {

using Visited = std::vector<std::pair<std::uint64_t, std::string>>;

TEST(PathBuffer, isVisitedInEitherOrder) {
    PathBuffer paths;
    paths.append(7, "a/b");
    paths.append(3, "c");
    Visited visited;
    const auto note = [&](std::uint64_t number, std::string_view path) {
        visited.emplace_back(number, path);
    };
    EXPECT_TRUE(paths.visit(note));
    EXPECT_EQ(visited, (Visited{{7, "a/b"}, {3, "c"}}));
    visited.clear();
    EXPECT_TRUE(paths.visitBackwards(note));
    EXPECT_EQ(visited, (Visited{{3, "c"}, {7, "a/b"}}));
}

TEST(PathBuffer, stopsWhenTheVisitorSaysSo) {
    PathBuffer paths;
    for (std::uint64_t number = 1; number <= 5; ++number) paths.append(number, "x");
    std::vector<std::uint64_t> numbers;
    const auto two = [&](std::uint64_t number, std::string_view) {
        numbers.push_back(number);
        return numbers.size() % 2 != 0;
    };
    EXPECT_FALSE(paths.visit(two));
    EXPECT_FALSE(paths.visitBackwards(two));
    EXPECT_EQ(numbers, (std::vector<std::uint64_t>{1, 2, 5, 4}));
}

TEST(PathBuffer, holdsWhatCameAfterItWasCleared) {
    PathBuffer paths;
    paths.reserve(2, 20);
    paths.append(1, "before");
    paths.clear();
    EXPECT_EQ(paths.size(), 0U);
    EXPECT_EQ(paths.textSize(), 0U);
    paths.append(2, "after");
    ASSERT_EQ(paths.size(), 1U);
    EXPECT_EQ(paths[0], "after");
    EXPECT_EQ(paths.textSize(), 5U);
}

}  // namespace
}  // namespace zqpaths
