// What the functions for C answer is what the C++ classes answer, of whatever paths.

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/zqpaths/cinterface/OpenedByC.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"

namespace zqpaths {
namespace {

/// A set opened by both.
struct OpenedTwice {
    explicit OpenedTwice(const std::string& file) : cpp(PathSet::open(file)), c(file) {}

    PathSet cpp;
    OpenedByC c;
};

void expectSamePath(const OpenedTwice& set, std::uint64_t number) {
    const std::string expected = set.cpp.path(number);
    std::string buffer(expected.size() + 1, '#');
    std::size_t length = 0;
    expectStatus(zqp_get(set.c.get(), number, buffer.data(), buffer.size(), &length), ZQP_OK);
    EXPECT_EQ(length, expected.size());
    EXPECT_EQ(buffer, expected + '\0');
    EXPECT_EQ(zqp_get(set.c.get(), number, buffer.data(), expected.size(), &length), ZQP_TOO_SMALL);
    EXPECT_EQ(length, expected.size());
}

void expectSamePaths(const OpenedTwice& set, const std::vector<std::uint64_t>& numbers) {
    std::string expected;
    std::vector<std::size_t> expectedOffsets{0};
    set.cpp.paths(numbers, [&](std::uint64_t, std::string_view path) {
        expected += path;
        expectedOffsets.push_back(expected.size());
    });
    std::vector<std::size_t> offsets(numbers.size() + 1);
    const auto getMany = [&](std::string& bytes) {
        return zqp_get_many(set.c.get(), numbers.data(), numbers.size(), bytes.data(), bytes.size(),
                            offsets.data());
    };
    std::string bytes;
    EXPECT_EQ(getMany(bytes), expected.empty() ? ZQP_OK : ZQP_TOO_SMALL);
    bytes.resize(offsets.back());
    expectStatus(getMany(bytes), ZQP_OK);
    EXPECT_EQ(bytes, expected);
    EXPECT_EQ(offsets, expectedOffsets);
}

void expectSameNumber(const OpenedTwice& set, std::string_view path) {
    std::uint64_t number = 99;
    expectStatus(zqp_number_of(set.c.get(), path.data(), path.size(), &number), ZQP_OK);
    EXPECT_EQ(number, set.cpp.numberOf(path).value_or(0)) << path;
}

void expectSameUnder(const OpenedTwice& set, std::string_view folder) {
    EXPECT_EQ(visitedByC([&](auto visit, void* context) {
                  return zqp_under(set.c.get(), folder.data(), folder.size(), visit, context);
              }),
              visitedBy([&](auto visit) { set.cpp.under(folder, visit); }))
        << folder;
}

void expectSameFound(const OpenedTwice& set, std::string_view text, unsigned kind,
                     const Pattern& pattern) {
    const auto found = visitedByC([&](auto visit, void* context) {
        return zqp_find(set.c.get(), text.data(), text.size(), kind, visit, context);
    });
    EXPECT_EQ(found, visitedBy([&](auto visit) { set.cpp.find(pattern, visit); })) << text;
    std::uint64_t count = 99;
    expectStatus(zqp_count(set.c.get(), text.data(), text.size(), kind, &count), ZQP_OK);
    EXPECT_EQ(count, found.size()) << text;
}

void expectSameVisits(const OpenedTwice& set, std::uint64_t first, std::uint64_t last) {
    const zqp_set* const c = set.c.get();
    EXPECT_EQ(visitedByC([&](auto visit, void* to) { return zqp_for_each(c, visit, to); }),
              visitedBy([&](auto visit) { set.cpp.forEach(visit); }));
    EXPECT_EQ(
        visitedByC([&](auto visit, void* to) { return zqp_for_range(c, first, last, visit, to); }),
        visitedBy([&](auto visit) { set.cpp.forEach(first, last, visit); }));
    EXPECT_EQ(visitedByC([&](auto visit, void* to) { return zqp_walk(c, visit, to); }),
              visitedBy([&](auto visit) { set.cpp.walk(visit); }));
}

void expectSameAnswers(const std::string& file, std::mt19937& random) {
    const OpenedTwice set(file);
    const std::uint64_t size = set.cpp.size();
    ASSERT_EQ(zqp_size(set.c.get()), size);
    EXPECT_EQ(zqp_file(set.c.get()), set.cpp.file());
    std::vector<std::uint64_t> numbers(random() % 100);
    for (std::uint64_t& number : numbers) number = 1 + random() % size;
    expectSamePaths(set, numbers);
    for (const std::uint64_t number : numbers) {
        const std::string path = set.cpp.path(number);
        const std::string_view part = std::string_view(path).substr(0, random() % path.size() + 1);
        expectSamePath(set, number);
        expectSameNumber(set, path);
        expectSameNumber(set, part);
        expectSameUnder(set, part);
        expectSameFound(set, part, ZQP_TEXT, Pattern::text(part));
    }
    expectSameVisits(set, 1 + random() % size, 1 + random() % size);
    expectSameFound(set, "*\xA9*", ZQP_GLOB, Pattern::glob("*\xA9*"));
    expectSameFound(set, "U[r-t]R", ZQP_GLOB | ZQP_IGNORE_CASE,
                    Pattern::glob("U[r-t]R", Pattern::Case::kIgnore));
    expectSameFound(set, "a$", ZQP_REGEX, Pattern::regex("a$"));
    expectSameFound(set, "^A.|\\xE9", ZQP_REGEX | ZQP_IGNORE_CASE,
                    Pattern::regex("^A.|\\xE9", Pattern::Case::kIgnore));
    expectStatus(zqp_verify(set.c.get(), nullptr, nullptr), ZQP_OK);
}

TEST(CInterface, answersAsTheClassesDo) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const std::vector<std::string> paths = randomPaths(20 + random() % 300, seed);
        const SegmentedSet made = SegmentedSet::ofPaths(paths, 1 + random() % 5, random);
        expectSameAnswers(made.file(), random);
    }
}

TEST(CInterface, writesWhatTheClassesWrite) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        const test_support::TemporaryTree tree;
        const std::string file = tree.pathOf("s.zqp");
        const std::vector<std::string> paths = randomPaths(200, seed);
        const WriterOfC writer = writerOfC(file, ZQP_CREATE);
        for (const std::string& path : paths)
            expectStatus(zqp_writer_add(writer.get(), path.data(), path.size()), ZQP_OK);
        expectStatus(zqp_writer_commit(writer.get()), ZQP_OK);
        EXPECT_EQ(visitedBy([&](auto visit) { PathSet::open(file).forEach(visit); }),
                  numberedWhere(paths, [](std::string_view) { return true; }));
    }
}

}  // namespace
}  // namespace zqpaths
