#include "tools/zqpaths/PathComponents.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zqpaths {
namespace {

/// The components as one readable line; the one of no folder is written as a dot.
std::string describe(std::string_view path) {
    const CutPath cut = cutPath(path);
    std::string line;
    for (const std::string_view component : cut.folder)
        line.append(component == kNoFolder ? "." : component).append(" ");
    return line.append("| ").append(cut.fileName);
}

/// Nothing is empty, only a component of its own stands for no folder, and joining gives the path.
void expectCutWell(const std::string& path) {
    const CutPath cut = cutPath(path);
    ASSERT_EQ(joinPath(cut.folder, cut.fileName), path);
    ASSERT_FALSE(cut.fileName.empty()) << path;
    ASSERT_FALSE(cut.folder.empty()) << path;
    for (const std::string_view component : cut.folder) ASSERT_FALSE(component.empty()) << path;
    const std::size_t length = folderLength(path);
    ASSERT_EQ(cut.fileName, std::string_view(path).substr(length));
    ASSERT_EQ(cut.folder.front() == kNoFolder, length == 0) << path;
    for (std::size_t i = 1; i < cut.folder.size(); ++i)
        ASSERT_NE(cut.folder[i].front(), kSeparator) << path;
}

TEST(PathComponents, cutsAPathFromTheRoot) {
    EXPECT_EQ(describe("/usr/bin/x"), "/ usr bin | x");
    EXPECT_EQ(describe("/x"), "/ | x");
}

TEST(PathComponents, cutsARelativePath) {
    EXPECT_EQ(describe("a/b/c"), "a/ b | c");
    EXPECT_EQ(describe("./a"), "./ | a");
}

TEST(PathComponents, leaveAllSeparatorsWithTheFirstComponent) {
    EXPECT_EQ(describe("//a"), "// | a");
    EXPECT_EQ(describe("a//b"), "a// | b");
    EXPECT_EQ(describe("a///b/c"), "a/// b | c");
}

TEST(PathComponents, leaveSeparatorsBeyondOneWithLaterComponents) {
    EXPECT_EQ(describe("a/b//c/d"), "a/ b/ c | d");
    EXPECT_EQ(describe("/a////b"), "/ a/// | b");
}

TEST(PathComponents, leaveSeparatorsAtTheEndWithTheFileName) {
    EXPECT_EQ(describe("a/b/"), "a/ | b/");
    EXPECT_EQ(describe("a/b//"), "a/ | b//");
    EXPECT_EQ(describe("/a/"), "/ | a/");
}

TEST(PathComponents, giveAPathWithoutFolderTheMarker) {
    EXPECT_EQ(describe("a"), ". | a");
    EXPECT_EQ(describe("a/"), ". | a/");
    EXPECT_EQ(describe("/"), ". | /");
    EXPECT_EQ(describe("//"), ". | //");
}

TEST(PathComponents, joinToTheSameTextForAllShortPaths) {
    constexpr std::string_view kAlphabet = "ab/";
    std::size_t count = 1;
    for (std::size_t length = 1; length <= 7; ++length) {
        count *= kAlphabet.size();
        for (std::size_t number = 0; number < count; ++number) {
            std::string path;
            for (std::size_t rest = number; path.size() < length; rest /= kAlphabet.size())
                path.push_back(kAlphabet[rest % kAlphabet.size()]);
            ASSERT_NO_FATAL_FAILURE(expectCutWell(path)) << path;
        }
    }
}

TEST(PathComponents, joinToTheSameTextForRandomBytes) {
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): a failure is to come again in the next run
    std::mt19937 random(1);
    for (int round = 0; round < 50'000; ++round) {
        std::string path(1 + random() % 60, '\0');
        for (char& byte : path)
            byte = random() % 4 == 0 ? kSeparator : static_cast<char>(1 + random() % 255);
        ASSERT_NO_FATAL_FAILURE(expectCutWell(path)) << testing::PrintToString(path);
    }
}

TEST(PathComponents, appendAFolderBehindOtherComponents) {
    std::vector<std::string_view> components{"x"};
    cutFolder("a/b/", components);
    EXPECT_EQ(components, (std::vector<std::string_view>{"x", "a/", "b"}));
}

TEST(PathComponents, joinAFolderPieceByPiece) {
    std::string folderText;
    for (const std::string_view component : {"/", "usr", "b/"})
        appendToFolder(component, folderText);
    EXPECT_EQ(folderText, "/usr/b//");
}

}  // namespace
}  // namespace zqpaths
