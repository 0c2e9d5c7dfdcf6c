#include "tools/zqpaths/output/PathFields.hpp"

#include <gtest/gtest.h>

#include <string>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

TEST(PathFields, areReadInTheOrderGiven) {
    EXPECT_EQ(parsePathFields("path"), PathFields{PathField::kPath});
    EXPECT_EQ(parsePathFields("extension,number,name,folder"),
              (PathFields{PathField::kExtension, PathField::kNumber, PathField::kName,
                          PathField::kFolder}));
}

TEST(PathFields, areRefusedIfUnknownEmptyOrGivenTwice) {
    for (const char* names : {"", "size", "path,", ",path", "path,path", "Path", "path name"})
        EXPECT_THROW(parsePathFields(names), Failure) << names;
}

TEST(PathFields, folderAndNameTogetherAreThePath) {
    for (const std::string path :
         {"a", "/a", "a/b", "a//b", "a/b/", "/", "//", "/a/b.c", "\xFF/\n"})
        EXPECT_EQ(std::string(partOf(PathField::kFolder, path)) +
                      std::string(partOf(PathField::kName, path)),
                  path);
    EXPECT_EQ(partOf(PathField::kFolder, "/usr/lib/x"), "/usr/lib/");
    EXPECT_EQ(partOf(PathField::kPath, "/usr/lib/x"), "/usr/lib/x");
}

TEST(PathFields, anExtensionFollowsTheLastDotOfTheName) {
    const auto extensionOf = [](const char* path) { return partOf(PathField::kExtension, path); };
    EXPECT_EQ(extensionOf("a/b.tar.gz"), "gz");
    EXPECT_EQ(extensionOf("a.d/b"), "");
    EXPECT_EQ(extensionOf(".bashrc"), "");
    EXPECT_EQ(extensionOf("..a"), "");
    EXPECT_EQ(extensionOf(".a.txt"), "txt");
    EXPECT_EQ(extensionOf("a."), "");
    EXPECT_EQ(extensionOf("a.b."), "");
    EXPECT_EQ(extensionOf(".."), "");
    EXPECT_EQ(extensionOf("x/a.d/"), "d");
    EXPECT_EQ(extensionOf("/"), "");
}

}  // namespace
}  // namespace zqpaths::program
