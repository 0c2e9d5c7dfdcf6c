#include "tools/zqpaths/sources/LineInput.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"

namespace zqpaths::program {
namespace {

using test_support::TemporaryTree;
using testing::ElementsAre;
using testing::IsEmpty;

struct Line {
    std::size_t begin;
    std::string text;

    bool operator==(const Line&) const = default;
};

/// All lines of a text, the plain way.
std::vector<Line> linesOf(const std::string& text) {
    std::vector<Line> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back({begin, text.substr(begin, end - begin)});
        begin = end + 1;
    }
    return lines;
}

std::vector<std::string> linesIn(const std::string& file, ByteRange range) {
    std::vector<std::string> lines;
    LineInput(file, '\n', range).visit([&lines](std::string_view line) {
        lines.emplace_back(line);
    });
    return lines;
}

/// All texts of these characters up to a length.
std::vector<std::string> textsUpTo(std::size_t length, std::string_view characters) {
    std::vector<std::string> texts{""};
    for (std::size_t first = 0; texts.back().size() < length;) {
        const std::size_t end = texts.size();
        for (; first < end; ++first)
            for (const char character : characters) texts.push_back(texts[first] + character);
    }
    return texts;
}

TEST(LineInput, givesEachLineToTheRangeThatItBeginsIn) {
    const TemporaryTree tree;
    for (const std::string& text : textsUpTo(6, "a\n")) {
        const std::string file = tree.addFile("list", text);
        const std::vector<Line> lines = linesOf(text);
        for (std::size_t width = 1; width <= text.size(); ++width) {
            for (std::size_t begin = 0; begin < text.size(); begin += width) {
                std::vector<std::string> expected;
                for (const Line& line : lines)
                    if (line.begin >= begin && line.begin < begin + width)
                        expected.push_back(line.text);
                EXPECT_EQ(linesIn(file, {begin, begin + width}), expected)
                    << testing::PrintToString(text) << ' ' << begin << ' ' << width;
            }
        }
    }
}

TEST(LineInput, knowsWhetherALineOfARangeStandsAfterAGap) {
    const TemporaryTree tree;
    const std::string text = "a\n\nb\nc\n";
    const std::string file = tree.addFile("list", text);
    for (std::size_t begin = 0; begin < text.size(); ++begin) {
        const LineInput input(file, '\n', {begin, text.size()});
        // The first line, the one after the empty one, and the empty line of a front.
        const bool isAfterGap = begin == 0 || begin == 3;
        const bool isAtLine = begin == 0 || text[begin - 1] == '\n';
        if (isAtLine) {
            EXPECT_EQ(input.isAfterGap(), isAfterGap) << begin;
        }
    }
    const std::string gap = tree.addFile("gap", "\na\n");
    EXPECT_TRUE(LineInput(gap, '\n', {1, 3}).isAfterGap());
}

TEST(LineInput, findsRangesInLinesThatAreLongerThanBuffers) {
    constexpr std::size_t kBuffer = std::size_t{1} << 20;
    const TemporaryTree tree;
    const std::string longest(3 * kBuffer, 'x');
    const std::string file = tree.addFile("list", "a\n" + longest + "\nb\n");
    const std::uint64_t size = longest.size() + 5;
    EXPECT_THAT(linesIn(file, {1, 2}), IsEmpty());
    EXPECT_THAT(linesIn(file, {1, 3}), ElementsAre(longest));
    for (std::uint64_t begin = 3; begin < size - 2; begin += kBuffer / 2 + 1)
        EXPECT_THAT(linesIn(file, {begin, std::min(begin + kBuffer, size - 2)}), IsEmpty());
    EXPECT_THAT(linesIn(file, {5, size}), ElementsAre("b"));
}

TEST(LineInput, tellsTheByteOfALineThatNobodyHasCounted) {
    const TemporaryTree tree;
    const std::string file = tree.addFile("list", "ab\ncd\nef\n");
    std::vector<std::string> places;
    const auto visit = [&](ByteRange range) {
        LineInput input(file, '\n', range);
        input.visit([&](std::string_view) { places.push_back(input.place("line")); });
    };
    visit({0, 4});
    visit({4, 9});
    EXPECT_THAT(places, ElementsAre("line 1", "line 2", "the line at byte 6"));
}

TEST(LineInput, takesNoRangeOfWhatIsNoFile) {
    const TemporaryTree tree;
    ASSERT_EQ(::mkfifo(tree.pathOf("pipe").c_str(), 0600), 0);
    EXPECT_THROW(LineInput(tree.pathOf("pipe"), '\n', {1, 2}), Failure);
}

TEST(LineInput, hasNothingBeyondTheEndOfAFile) {
    const TemporaryTree tree;
    const std::string file = tree.addFile("list", "a\n");
    EXPECT_THAT(linesIn(file, {5, 9}), IsEmpty());
}

/// What a listing has, cut into ranges of a width.
std::vector<std::string> pathsInRanges(const SourceOptions& options, std::size_t size,
                                       std::size_t width) {
    std::vector<std::string> paths;
    for (std::size_t begin = 0; begin < size; begin += width) {
        const SourcePart part{.bytes = {begin, std::min(begin + width, size)}};
        openPart(options, part, "none.zqp", nullptr)->visit([&paths](std::string_view path) {
            paths.emplace_back(path);
        });
    }
    return paths;
}

TEST(LineInput, leavesHeadingsOfListingsWhatTheyAreWhereverTheyAreCut) {
    const TemporaryTree tree;
    // The second ":" is an object, since no empty line stands before it.
    const std::string listing =
        "gs://b/:\ngs://b/x\n\ngs://b/d/:\ngs://b/d/y\ngs://b/d/:\n\ngs://b/e/:\n\n\ngs://b/f/:\n";
    SourceOptions options;
    options.format = SourceFormat::kGsutil;
    options.directories = {tree.addFile("listing", listing)};
    for (std::size_t width = 1; width <= listing.size(); ++width)
        EXPECT_THAT(pathsInRanges(options, listing.size(), width),
                    ElementsAre("gs://b/x", "gs://b/d/y", "gs://b/d/:"))
            << width;
}

}  // namespace
}  // namespace zqpaths::program
