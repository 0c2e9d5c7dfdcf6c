#include "tools/zqpaths/NewFile.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "tests/support/TemporaryTree.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

class ANewFile : public ::testing::Test {
protected:
    std::set<std::string> names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(tree_.path()))
            names.insert(entry.path().filename());
        return names;
    }

    static void write(const NewFile& file, const std::string& text) {
        std::ofstream(file.temporaryPath()) << text;
    }

    std::string content() const {
        std::ifstream in(path_);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    test_support::TemporaryTree tree_;
    std::string path_ = tree_.pathOf("new");
};

TEST_F(ANewFile, hasItsNameOnlyWhenItIsPublished) {
    NewFile file(path_);
    write(file, "text");
    EXPECT_EQ(names().count("new"), 0U);
    EXPECT_TRUE(file.publish());
    EXPECT_EQ(names(), std::set<std::string>{"new"});
    EXPECT_EQ(content(), "text");
}

TEST_F(ANewFile, isGoneIfItIsNotPublished) {
    { const NewFile file(path_); }
    EXPECT_TRUE(names().empty());
}

TEST_F(ANewFile, givesWayToOneThatIsThere) {
    {
        NewFile file(path_);
        NewFile other(path_);
        write(file, "first");
        write(other, "second");
        EXPECT_TRUE(file.publish());
        EXPECT_FALSE(other.publish());
    }
    EXPECT_EQ(names(), std::set<std::string>{"new"});
    EXPECT_EQ(content(), "first");
}

TEST_F(ANewFile, canTakeThePlaceOfAnother) {
    tree_.addFile("new", "old");
    NewFile file(path_);
    write(file, "text");
    file.publishInPlace();
    EXPECT_EQ(names(), std::set<std::string>{"new"});
    EXPECT_EQ(content(), "text");
}

TEST_F(ANewFile, isRefusedWhereThereIsNoFolder) {
    EXPECT_THROW(NewFile(tree_.pathOf("none/new")), Failure);
}

}  // namespace
}  // namespace zqpaths
