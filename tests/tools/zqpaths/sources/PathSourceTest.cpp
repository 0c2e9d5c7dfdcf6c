#include "tools/zqpaths/sources/PathSource.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

using test_support::TemporaryTree;
using testing::ElementsAre;

std::vector<std::string> visited(PathSource& source) {
    std::vector<std::string> paths;
    source.visit([&paths](std::string_view path) { paths.emplace_back(path); });
    return paths;
}

std::unique_ptr<PathSource> listSource(const std::string& file, bool nulDelimited = false) {
    SourceOptions options;
    options.format = SourceFormat::kList;
    options.directories = {file};
    options.nulDelimited = nulDelimited;
    return openSource(options, "none.zqp");
}

std::string failureOf(PathSource& source) {
    try {
        visited(source);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::kFailed);
        return failure.what();
    }
    return "none";
}

TEST(PathSource, givesAListInItsOrder) {
    const TemporaryTree tree;
    const auto source = listSource(tree.addFile("list", "b\na/x\nb"));
    EXPECT_THAT(visited(*source), ElementsAre("b", "a/x", "b"));
}

TEST(PathSource, takesNewlinesAsPartOfPathsThatEndWithNul) {
    const TemporaryTree tree;
    const std::string file = tree.addFile("list", std::string_view("a\nb\0\n\0c", 7));
    EXPECT_THAT(visited(*listSource(file, true)), ElementsAre("a\nb", "\n", "c"));
}

TEST(PathSource, givesPathsOfAnyLengthWhereverABufferEnds) {
    constexpr std::size_t kBuffer = std::size_t{1} << 20;
    for (const std::size_t length : {kBuffer - 2, kBuffer - 1, kBuffer, kBuffer + 1, 3 * kBuffer}) {
        const TemporaryTree tree;
        const std::string longest(length, 'x');
        const auto source = listSource(tree.addFile("list", "a\n" + longest + "\nb\n"));
        EXPECT_EQ(visited(*source), (std::vector<std::string>{"a", longest, "b"})) << length;
    }
}

TEST(PathSource, namesFileAndPlaceOfWhatIsNoPath) {
    const TemporaryTree tree;
    const std::string list = tree.addFile("list", "a\n\nb");
    EXPECT_EQ(failureOf(*listSource(list)), list + ": line 2 is empty");
    const std::string nul = tree.addFile("nul", std::string_view("a\nb\0\n", 5));
    EXPECT_THAT(failureOf(*listSource(nul)), testing::StartsWith(nul + ": line 2 holds a NUL"));
    const std::string gap = tree.addFile("gap", std::string_view("\0a", 2));
    EXPECT_EQ(failureOf(*listSource(gap, true)), gap + ": path 1 is empty");
}

TEST(PathSource, endsWhenAListShrinksWhileItIsRead) {
    const TemporaryTree tree;
    std::string text;
    while (text.size() < std::size_t{4} << 20) text += "a line of some length\n";
    const std::string file = tree.addFile("list", text);
    const auto source = listSource(file);
    std::size_t count = 0;
    source->visit([&](std::string_view) {
        if (++count == 1) std::filesystem::resize_file(file, 0);
    });
    EXPECT_GE(count, 1U);
    EXPECT_LT(count, text.size() / 22);
}

TEST(PathSource, givesDirectoriesOneAfterTheOtherWithoutHiddenNames) {
    const TemporaryTree tree;
    for (const char* name : {"a/x", "a/.y", "b/z"}) tree.addFile(name);
    SourceOptions options;
    options.directories = {tree.pathOf("b"), tree.pathOf("a")};
    EXPECT_THAT(visited(*openSource(options, "none.zqp")),
                ElementsAre(tree.pathOf("b/z"), tree.pathOf("a/x")));
    options.hidden = true;
    EXPECT_THAT(visited(*openSource(options, "none.zqp")),
                ElementsAre(tree.pathOf("b/z"), tree.pathOf("a/.y"), tree.pathOf("a/x")));
}

TEST(PathSource, countsAndTellsWhatIsUnreadable) {
    const TemporaryTree tree;
    tree.addFile("a/x");
    tree.addSymbolicLink("a/loop", ".");
    SourceOptions options;
    options.directories = {tree.path()};
    options.follow = true;
    const auto source = openSource(options, "none.zqp");
    const std::string loop =
        tree.pathOf("a/loop") + ": is " + tree.pathOf("a") + ", in which it is: a loop";
    testing::internal::CaptureStderr();
    const SourceReport report = source->visit([](std::string_view) {});
    EXPECT_EQ(report.unreadableCount, 1U);
    EXPECT_EQ(report.firstUnreadable, loop);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    options.verbose = true;
    testing::internal::CaptureStderr();
    visited(*openSource(options, "none.zqp"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "zqpaths: " + loop + "\n");
}

TEST(PathSource, refusesWhatIsNotThere) {
    const TemporaryTree tree;
    EXPECT_THROW(listSource(tree.pathOf("none")), Failure);
    EXPECT_THROW(listSource(tree.path()), Failure);
    SourceOptions options;
    options.directories = {tree.addFile("file")};
    EXPECT_THROW(openSource(options, "none.zqp"), Failure);
    EXPECT_THROW(openSource({}, "none.zqp"), Failure);
}

}  // namespace
}  // namespace zqpaths::program
