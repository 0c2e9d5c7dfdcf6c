#include "zqpaths/set/SetStatistics.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Paths = std::vector<std::string>;
using Mode = PathSetWriter::Mode;
using Form = PathSetWriter::Form;

class SetStatisticsTest : public ::testing::Test {
protected:
    void write(Mode mode, const Paths& paths, Form form = Form::kImage) {
        PathSetWriter writer(file_, mode, form);
        for (const std::string& path : paths) writer.add(path);
        writer.commit();
    }

    SetStatistics statistics(std::size_t folderLimit = 10) const {
        return statisticsOf(PathSet::open(file_), folderLimit);
    }

    std::vector<std::string> largest(std::size_t folderLimit) const {
        std::vector<std::string> folders;
        for (const auto& folder : statistics(folderLimit).largestFolders)
            folders.push_back(folder.name + ' ' + std::to_string(folder.fileCount));
        return folders;
    }

    test_support::TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
};

TEST_F(SetStatisticsTest, countsPathsFoldersAndNames) {
    write(Mode::kCreate, {"/usr/bin/x", "/usr/bin/y", "/usr/z", "top", "/usr/bin/w"});
    const SetStatistics told = statistics();
    EXPECT_EQ(told.pathCount, 5U);
    EXPECT_EQ(told.textSize, 11U + 11 + 7 + 4 + 11);
    EXPECT_EQ(told.folderCount, 3U);  // "/", "usr" and "bin"
    EXPECT_EQ(told.entryCount, 4U);
    EXPECT_EQ(told.depth, 4U);
    EXPECT_EQ(told.depthSum, 4U + 4 + 3 + 1 + 4);
    EXPECT_EQ(told.widest, 3U);
    EXPECT_EQ(told.segmentCount, 1U);
    EXPECT_EQ(told.packedCount, 0U);
}

TEST_F(SetStatisticsTest, tellsFoldersOfShortNamesInManyFoldersApart) {
    // A hash that mixed name and parent badly took folders for one whose parents are 65,536 apart.
    constexpr int kParents = 66'000;
    Paths paths;
    for (int parent = 0; parent < kParents; ++parent)
        paths.push_back(std::to_string(parent) + "/x");
    for (int parent = 0; parent < kParents; ++parent)
        for (const char* name : {"/0/x", "/1/x"}) paths.push_back(std::to_string(parent) + name);
    write(Mode::kCreate, paths);
    EXPECT_EQ(statistics().folderCount, 3 * kParents);
}

TEST_F(SetStatisticsTest, takesFoldersOfAllSegmentsTogether) {
    write(Mode::kCreate, {"a/b/x", "a/y"});
    write(Mode::kAppend, {"a/z", "a/c/x", "a/b/z"});
    const SetStatistics told = statistics();
    EXPECT_EQ(told.segmentCount, 2U);
    EXPECT_EQ(told.folderCount, 3U);
    EXPECT_EQ(told.widest, 4U);  // b, c, y and z in a
    EXPECT_EQ(told.pathCount, 5U);
}

TEST_F(SetStatisticsTest, takesSeparatorsThatStandTogetherAsOne) {
    write(Mode::kCreate, {"a/b/x", "a//b/y", "a/b//z/w"});
    const SetStatistics told = statistics();
    EXPECT_EQ(told.folderCount, 3U);  // a, b and z
    EXPECT_THAT(largest(1), ElementsAre("a/b/ 2"));
}

TEST_F(SetStatisticsTest, countFoldersApartThatAreFarApart) {
    // The folder of number 2^16 + 1, and names of one character that differ in as many bits as may
    // be.
    Paths paths;
    for (int i = 0; i <= 1 << 16; ++i) paths.push_back(std::to_string(i) + "/x");
    for (const char* parent : {"0/", "65536/"})
        for (char name = '0'; name < '~'; ++name)
            paths.push_back(parent + std::string{name} + "/x");
    write(Mode::kCreate, paths);
    EXPECT_EQ(statistics().folderCount, paths.size());
}

TEST_F(SetStatisticsTest, namesTheLargestFoldersAndThatOfNone) {
    write(Mode::kCreate, {"a//x", "b/x", "b/y", "b/z", "p", "q", "\xFF/x"});
    EXPECT_THAT(largest(10), ElementsAre("b/ 3", " 2", "a// 1", "\xFF/ 1"));
    EXPECT_THAT(largest(1), ElementsAre("b/ 3"));
    EXPECT_THAT(largest(0), IsEmpty());
}

TEST_F(SetStatisticsTest, knowsWhatCodeWordsTake) {
    // b four times, c twice, d once, and once the mark of no folder.
    write(Mode::kCreate, {"bb", "bb", "cc", "d"});
    const SetStatistics told = statistics();
    EXPECT_EQ(told.characterCount, 4U);
    EXPECT_EQ(told.codedCount, 8U);
    EXPECT_EQ(told.codedBits, 4U * 1 + 2 * 2 + 3 + 3);
}

TEST_F(SetStatisticsTest, sayWhereTheBytesOfImagesGo) {
    write(Mode::kCreate, {"a/x", "b/y"});
    write(Mode::kAppend, {"c"});
    const SetStatistics told = statistics();
    for (const std::uint64_t part : {told.bytes.names, told.bytes.folders, told.bytes.index,
                                     told.bytes.orders, told.bytes.code, told.bytes.sums})
        EXPECT_GT(part, 0U);
    EXPECT_EQ(told.bytes.packed, 0U);
    std::uint64_t size = 0;
    for (const PathSet::Segment& segment : PathSet::open(file_).segments()) size += segment.size;
    EXPECT_EQ(told.bytes.all(), size);
    EXPECT_LT(size, std::filesystem::file_size(file_));
}

TEST_F(SetStatisticsTest, doNotTakePackedSegmentsApart) {
    write(Mode::kCreate, {"a/x", "b/y"}, Form::kPacked);
    const SetStatistics told = statistics();
    EXPECT_EQ(told.packedCount, 1U);
    EXPECT_EQ(told.bytes.packed, PathSet::open(file_).segments()[0].size);
    EXPECT_EQ(told.bytes.all(), told.bytes.packed);
    EXPECT_EQ(told.folderCount, 2U);
    EXPECT_FALSE(told.codedCount);  // the saved form has no frequencies
}

TEST_F(SetStatisticsTest, areThoseOfAnEmptySet) {
    write(Mode::kCreate, {});
    const SetStatistics told = statistics();
    EXPECT_EQ(told.pathCount, 0U);
    EXPECT_EQ(told.folderCount, 0U);
    EXPECT_EQ(told.depth, 0U);
    EXPECT_EQ(told.widest, 0U);
    EXPECT_THAT(told.largestFolders, IsEmpty());
}

}  // namespace
}  // namespace zqpaths
