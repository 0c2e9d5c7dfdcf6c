#include "zqpaths/text/PathComponents.hpp"

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

/// As sharedFolder, from the lists of components.
SharedFolder sharedByLists(std::string_view folder, std::string_view other) {
    std::vector<std::string_view> components;
    std::vector<std::string_view> others;
    cutFolder(folder, components);
    cutFolder(other, others);
    SharedFolder shared{0, 0};
    std::string text;
    while (shared.components < components.size() && shared.components < others.size() &&
           components[shared.components] == others[shared.components]) {
        appendToFolder(components[shared.components++], text);
        shared.length = text.size();
    }
    return shared;
}

TEST(PathComponents, ofTwoFoldersAreSharedAtTheFront) {
    EXPECT_EQ(sharedFolder("/usr/bin/", "/usr/lib/"), (SharedFolder{2, 5}));
    EXPECT_EQ(sharedFolder("usr/bin/", "usr/"), (SharedFolder{1, 4}));
    EXPECT_EQ(sharedFolder("a/", "b/"), (SharedFolder{0, 0}));
    EXPECT_EQ(sharedFolder("a/", "a//"), (SharedFolder{0, 0}));
    EXPECT_EQ(sharedFolder("a/b/", "a/b//"), (SharedFolder{1, 2}));
    EXPECT_EQ(sharedFolder("", "a/"), (SharedFolder{0, 0}));
}

TEST(PathComponents, areSharedAsTheirListsAre) {
    std::vector<std::string> folders;
    for (unsigned bits = 0; bits < 1U << 12; ++bits) {
        std::string path;
        for (unsigned i = 0; i < 6; ++i) path += "/ab/"[bits >> 2 * i & 3];
        folders.push_back(path.substr(0, folderLength(path)));
        if (folders.back().empty()) folders.pop_back();
    }
    for (std::size_t i = 0; i < folders.size(); i += 3) {
        for (std::size_t j = 0; j < folders.size(); j += 7) {
            ASSERT_EQ(sharedFolder(folders[i], folders[j]), sharedByLists(folders[i], folders[j]))
                << folders[i] << ' ' << folders[j];
        }
    }
}

TEST(PathComponents, areTakenOneByOne) {
    std::string_view folder = "//usr//lib/";
    EXPECT_EQ(takeComponent(folder, true), "//");
    EXPECT_EQ(takeComponent(folder, false), "usr/");
    EXPECT_EQ(takeComponent(folder, false), "lib");
    EXPECT_EQ(folder, "");
    EXPECT_EQ(takeComponent(folder, true), kNoFolder);
}

TEST(PathComponents, ofAPathWithoutFolderBeginWithTheMarker) {
    EXPECT_EQ(pathOfComponents(std::string("\0x", 2)), "x");
    EXPECT_EQ(pathOfComponents("usr/x"), "usr/x");
    EXPECT_EQ(pathOfComponents(""), "");
}

TEST(PlainFolder, hasOneSeparatorWhereSeveralStandTogether) {
    EXPECT_EQ(plainFolder("//usr///lib//"), "/usr/lib");
    EXPECT_EQ(plainFolder("a//b/"), "a/b");
    EXPECT_EQ(plainFolder("///"), "/");
    EXPECT_EQ(plainFolder(""), "");
}

TEST(AppendName, putsASeparatorWhereThereIsNone) {
    std::string path;
    for (const char* name : {"/", "usr", "lib"}) appendName(name, path);
    EXPECT_EQ(path, "/usr/lib");
}

}  // namespace
}  // namespace zqpaths
