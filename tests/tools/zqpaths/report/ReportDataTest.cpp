#include "tools/zqpaths/report/ReportData.hpp"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths::program {
namespace {

TEST(WithoutMarkup, escapesWhatMeansSomethingToAPage) {
    EXPECT_EQ(withoutMarkup("{\"a\":\"</script>&amp;\"}"),
              "{\"a\":\"\\u003C/script\\u003E\\u0026amp;\"}");
    EXPECT_EQ(withoutMarkup("\xE2\x80\xA8\xE2\x80\xA9\xE2\x80\xA7\xE2"),
              "\\u2028\\u2029\xE2\x80\xA7\xE2");
    EXPECT_EQ(withoutMarkup(""), "");
}

class ReportDataTest : public ::testing::Test {
protected:
    std::string dataOf(std::initializer_list<const char*> paths, std::size_t folderLimit) {
        PathSetWriter writer(file_);
        for (const char* path : paths) writer.add(path);
        writer.commit();
        const std::string data = reportData(PathSet::open(file_), folderLimit, [] {});
        return data.substr(data.find("\"names\""));  // what precedes tells the size of the file
    }

    test_support::TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
};

TEST_F(ReportDataTest, hasFoldersLargestFirst) {
    EXPECT_EQ(dataOf({"/a/1.c", "/a/2.c", "/b/3", "4"}, 9),
              R"("names":["","/","a","b"],"parents":[0,0,1,1],"files":[4,3,2,1],)"
              R"("filesIn":[1,0,2,1],"foldersBelow":[3,2,0,0],"mostNames":3,"depths":[1,0,3],)"
              R"("extensions":[["c",2]],"otherExtensions":0,"noExtension":2})");
}

TEST_F(ReportDataTest, hasNoMoreFoldersThanItMay) {
    EXPECT_EQ(dataOf({"/a/1", "/a/2", "/b/3", "4"}, 2),
              R"("names":["","/","a"],"parents":[0,0,1],"files":[4,3,2],"filesIn":[1,0,2],)"
              R"("foldersBelow":[3,2,0],"mostNames":3,"depths":[1,0,3],)"
              R"("extensions":[],"otherExtensions":0,"noExtension":4})");
}

TEST_F(ReportDataTest, sumsUpPathsOfManyNames) {
    std::string deep;
    for (int i = 0; i < 40; ++i) deep += "d/";
    const std::string data = dataOf({"a", (deep + "x").c_str(), (deep + "d/x").c_str()}, 1);
    EXPECT_NE(data.find("\"mostNames\":42,\"depths\":[1,0,"), std::string::npos);
    EXPECT_NE(data.find(",0,2],\"extensions\""), std::string::npos);
}

}  // namespace
}  // namespace zqpaths::program
