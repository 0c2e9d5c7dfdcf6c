#include "tools/zqpaths/sources/FilesOnDisk.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/TemporaryTree.hpp"

namespace zqpaths::program {
namespace {

using test_support::TemporaryTree;

TEST(FilesOnDisk, areThereWhateverTheyAre) {
    const TemporaryTree tree;
    const std::string file = tree.addFile("folder/file");
    tree.addSymbolicLink("nowhere", "/no/such/file");
    EXPECT_TRUE(isOnDisk(file));
    EXPECT_TRUE(isOnDisk(tree.pathOf("folder")));
    EXPECT_TRUE(isOnDisk(tree.pathOf("folder/")));
    EXPECT_TRUE(isOnDisk(tree.pathOf("nowhere")));
    EXPECT_TRUE(isOnDisk("/"));
}

TEST(FilesOnDisk, areMissingWhereNothingHasTheName) {
    const TemporaryTree tree;
    const std::string file = tree.addFile("file");
    EXPECT_FALSE(isOnDisk(tree.pathOf("other")));
    EXPECT_FALSE(isOnDisk(file + "/below"));
    EXPECT_FALSE(isOnDisk(tree.pathOf(std::string(256, 'n'))));
    EXPECT_FALSE(isOnDisk(tree.pathOf(std::string(9'999, 'n'))));
}

TEST(FilesOnDisk, areFoundAtAnyDepth) {
    const TemporaryTree tree;
    constexpr std::size_t kLevels = 3'000;
    tree.addDeepLevels(kLevels, "below", "beside");
    std::string folder = tree.path() + "/";
    for (std::size_t level = 0; level < kLevels; ++level) folder += "below/";
    EXPECT_TRUE(isOnDisk(folder + "f"));
    EXPECT_TRUE(isOnDisk(folder));
    EXPECT_FALSE(isOnDisk(folder + "g"));
    EXPECT_FALSE(isOnDisk(folder + "below/f"));
    EXPECT_TRUE(isOnDisk(tree.path() + std::string(9'999, '/') + "below"));
}

TEST(FilesOnDisk, areFoundFromTheCurrentDirectory) {
    const TemporaryTree tree;
    tree.addDeepLevels(1'000, "below", "beside");
    std::string folder;
    for (std::size_t level = 0; level < 1'000; ++level) folder += "below/";
    const auto former = std::filesystem::current_path();
    std::filesystem::current_path(tree.path());
    EXPECT_TRUE(isOnDisk(folder + "f"));
    EXPECT_FALSE(isOnDisk(folder + "g"));
    std::filesystem::current_path(former);
}

}  // namespace
}  // namespace zqpaths::program
