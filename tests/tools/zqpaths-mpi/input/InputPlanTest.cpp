#include "tools/zqpaths-mpi/input/InputPlan.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "tools/zqpaths-mpi/input/DirectoryCutting.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program::mpi {
namespace {

using test_support::TemporaryTree;
using testing::ElementsAre;

using Names = std::vector<std::string>;

InputPlan planOfLists(const Names& lists, std::optional<std::uint64_t> pieceSize) {
    SourceOptions options;
    options.format = SourceFormat::kList;
    options.directories = lists;
    return planInput(options, pieceSize, "none.zqs");
}

std::vector<ByteRange> rangesOf(const InputPiece& piece) {
    std::vector<ByteRange> ranges;
    for (const SourcePart& part : piece.parts) ranges.push_back(part.bytes);
    return ranges;
}

TEST(InputPlan, cutsAListIntoRangesOfTheSameLength) {
    const TemporaryTree tree;
    const InputPlan plan = planOfLists({tree.addFile("list", "0123456789")}, 4);
    ASSERT_EQ(plan.pieces.size(), 3U);
    EXPECT_THAT(rangesOf(plan.pieces[0]), ElementsAre(ByteRange{0, 4}));
    EXPECT_THAT(rangesOf(plan.pieces[1]), ElementsAre(ByteRange{4, 7}));
    EXPECT_THAT(rangesOf(plan.pieces[2]), ElementsAre(ByteRange{7, 10}));
}

TEST(InputPlan, putsSmallListsTogetherInTheirOrder) {
    const TemporaryTree tree;
    const InputPlan plan = planOfLists({tree.addFile("a", "12"), tree.addFile("b", "12"),
                                        tree.addFile("empty"), tree.addFile("c", "1234")},
                                       5);
    ASSERT_EQ(plan.pieces.size(), 2U);
    EXPECT_THAT(rangesOf(plan.pieces[0]),
                ElementsAre(ByteRange{0, 2}, ByteRange{0, 2}, ByteRange{0, 0}));
    EXPECT_EQ(plan.pieces[0].weight, 4U);
    EXPECT_EQ(plan.pieces[1].parts.front().source, 3U);
}

TEST(InputPlan, makesPiecesThatAreWorthASetFileUnlessItIsTold) {
    const TemporaryTree tree;
    const std::string list = tree.addFile("list");
    for (const auto& [size, pieceCount] : std::vector<std::pair<off_t, std::size_t>>{
             {off_t{64} << 20, 1}, {(off_t{64} << 20) + 1, 2}, {off_t{1} << 40, 1001}}) {
        ASSERT_EQ(::truncate(list.c_str(), size), 0);  // all holes
        const std::size_t count = planOfLists({list}, std::nullopt).pieces.size();
        EXPECT_NEAR(static_cast<double>(count), static_cast<double>(pieceCount), 1) << size;
    }
}

TEST(InputPlan, refusesWhatOneProcessAloneCanRead) {
    const TemporaryTree tree;
    const std::string pipe = tree.pathOf("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_THROW(planOfLists({"-"}, std::nullopt), Failure);
    EXPECT_THROW(planOfLists({pipe}, std::nullopt), Failure);
    EXPECT_THROW(planOfLists({tree.pathOf("none")}, std::nullopt), Failure);
    EXPECT_THROW(planOfLists({tree.path()}, std::nullopt), Failure);
    SourceOptions options;
    options.directories = {pipe};
    EXPECT_THROW(planInput(options, std::nullopt, "none.zqs"), Failure);
}

/// "a/b*" of a part with all below it, "a/b" of one alone, the root is empty.
Names partsOf(const std::vector<DirectoryCut>& cuts) {
    Names parts;
    for (const DirectoryCut& cut : cuts) {
        std::string text;
        for (const std::string& name : cut.part.names) text += (text.empty() ? "" : "/") + name;
        parts.push_back(text + (cut.part.isDeep ? "*" : ""));
    }
    return parts;
}

TEST(DirectoryCutting, goesDownLevelByLevelUntilThereIsEnough) {
    const TemporaryTree tree;
    for (const char* name : {"x", "b/c/y", "b/d/z", "a/e/f/w", "a/g/v"}) tree.addFile(name);
    const auto cut = [&tree](std::size_t enough) {
        return partsOf(cutDirectory(tree.path(), {}, enough));
    };
    EXPECT_THAT(cut(1), ElementsAre("*"));
    EXPECT_THAT(cut(2), ElementsAre("", "a*", "b*"));
    EXPECT_THAT(cut(3), ElementsAre("", "a", "a/e*", "a/g*", "b*"));
    EXPECT_THAT(cut(4), ElementsAre("", "a", "a/e*", "a/g*", "b", "b/c*", "b/d*"));
    EXPECT_THAT(cut(99), ElementsAre("", "a", "a/e", "a/e/f", "a/g", "b", "b/c", "b/d"));
}

TEST(DirectoryCutting, knowsTheBytesOfThePathsInADirectoryAlone) {
    const TemporaryTree tree;
    for (const char* name : {"x", ".hidden", "a/y"}) tree.addFile(name);
    const auto cuts = cutDirectory(tree.path(), {.skipHidden = true}, 99);
    ASSERT_EQ(cuts.size(), 2U);
    EXPECT_EQ(cuts[0].textSize, tree.pathOf("x").size() + 1);
    EXPECT_EQ(cutDirectory(tree.path(), {}, 1).front().textSize, std::nullopt);
}

TEST(DirectoryCutting, endsAtTheSixtyFourthLevel) {
    const TemporaryTree tree;
    std::string path;
    for (int level = 1; level <= 66; ++level) path += "d/";
    tree.addFile(path + "x");
    const std::vector<DirectoryCut> cuts = cutDirectory(tree.path(), {}, 99);
    ASSERT_EQ(cuts.size(), 65U);
    EXPECT_TRUE(cuts.back().part.isDeep);
    EXPECT_EQ(cuts.back().part.names.size(), 64U);
    EXPECT_FALSE(cuts[63].part.isDeep);
}

TEST(DirectoryCutting, leavesOutWhatTheWalkLeavesOut) {
    const TemporaryTree tree;
    for (const char* name : {"a/x", "b/c/x", "b/d/e/x", ".f/x"}) tree.addFile(name);
    EXPECT_THAT(partsOf(cutDirectory(
                    tree.path(), {.skipHidden = true, .exclude = {"/b/c/"}, .maxDepth = 3}, 99)),
                ElementsAre("", "a", "b", "b/d"));
}

TEST(InputPlan, makesATreeThatItKnowsOnePieceAndOthersMany) {
    const TemporaryTree tree;
    for (const char* name : {"x", "a/x", "b/x", "c/x"}) tree.addFile(name);
    SourceOptions options;
    options.directories = {tree.path()};
    EXPECT_EQ(planInput(options, std::nullopt, "none.zqs").pieces.size(), 1U);
    EXPECT_EQ(planInput(options, 1, "none.zqs").pieces.size(), 4U);
    for (int i = 0; i < 1500; ++i) tree.addDirectory("a/" + std::to_string(i));
    // More directories than there should be pieces stand two by two.
    const std::size_t count = planInput(options, std::nullopt, "none.zqs").pieces.size();
    EXPECT_GT(count, 740U);
    EXPECT_LT(count, 760U);
}

}  // namespace
}  // namespace zqpaths::program::mpi
