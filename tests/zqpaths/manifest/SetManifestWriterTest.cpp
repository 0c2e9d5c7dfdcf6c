#include "zqpaths/manifest/SetManifestWriter.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SegmentedSets.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifest.hpp"

namespace zqpaths {
namespace {

using Paths = std::vector<std::string>;

class SetManifestWriterTest : public testing::Test {
protected:
    std::string makeSet(const std::string& name, const Paths& paths) {
        std::filesystem::create_directories(std::filesystem::path(pathOf(name)).parent_path());
        PathSetWriter writer(pathOf(name));
        for (const std::string& path : paths) writer.add(path);
        writer.commit();
        return pathOf(name);
    }

    std::string pathOf(const std::string& name) const { return tree_.pathOf(name); }

    void merge(const std::string& name, const std::vector<std::string>& sets,
               SetManifestWriter::Mode mode = SetManifestWriter::Mode::kCreate) {
        SetManifestWriter writer(pathOf(name), mode);
        for (const std::string& set : sets) writer.addSet(pathOf(set));
        writer.commit();
    }

    SetManifest manifest(const std::string& name) const {
        return decodeManifest(contentOf(pathOf(name)));
    }

    Paths pathsOf(const std::string& name) const {
        Paths paths;
        for (const std::string_view path : PathSet::open(pathOf(name))) paths.emplace_back(path);
        return paths;
    }

private:
    test_support::TemporaryTree tree_;
};

TEST_F(SetManifestWriterTest, hasTheSetsFollowEachOther) {
    makeSet("a.zqp", {"1", "2"});
    makeSet("sub/b.zqp", {"3"});
    SetManifestWriter writer(pathOf("all.zqs"));
    writer.addSet(pathOf("a.zqp"));
    writer.addSet(pathOf("sub/b.zqp"));
    writer.addSet(pathOf("a.zqp"));
    EXPECT_EQ(writer.size(), 5U);
    EXPECT_FALSE(std::filesystem::exists(pathOf("all.zqs")));
    writer.commit();
    EXPECT_EQ(pathsOf("all.zqs"), (Paths{"1", "2", "3", "1", "2"}));
    EXPECT_EQ(manifest("all.zqs").files.size(), 2U);
    EXPECT_EQ(manifest("all.zqs").files[1].path, "sub/b.zqp");
}

TEST_F(SetManifestWriterTest, namesFilesByTheWayFromItsFolder) {
    makeSet("data/a.zqp", {"1"});
    makeSet("sets/b.zqp", {"2"});
    merge("sets/all.zqs", {"data/a.zqp", "sets/../sets/b.zqp"});
    EXPECT_EQ(manifest("sets/all.zqs").files[0].path, "../data/a.zqp");
    EXPECT_EQ(manifest("sets/all.zqs").files[1].path, "b.zqp");
}

TEST_F(SetManifestWriterTest, canBeMovedWithItsFiles) {
    makeSet("here/d/a.zqp", {"1"});
    merge("here/all.zqs", {"here/d/a.zqp"});
    std::filesystem::rename(pathOf("here"), pathOf("there"));
    EXPECT_EQ(pathsOf("there/all.zqs"), (Paths{"1"}));
}

TEST_F(SetManifestWriterTest, takesSetsOfSetsApart) {
    makeSet("a.zqp", {"1"});
    makeSet("sub/b.zqp", {"2", "3"});
    merge("sub/two.zqs", {"sub/b.zqp", "a.zqp"});
    merge("all.zqs", {"a.zqp", "sub/two.zqs"});
    EXPECT_EQ(pathsOf("all.zqs"), (Paths{"1", "2", "3", "1"}));
    EXPECT_EQ(manifest("all.zqs").files.size(), 2U);
}

TEST_F(SetManifestWriterTest, takesSomeSegments) {
    const SegmentedSet made({{SegmentForm::kImage, {"1", "2"}},
                             {SegmentForm::kPacked, {"3"}},
                             {SegmentForm::kImage, {"4"}}});
    makeSet("a.zqp", {"0"});
    SetManifestWriter inner(pathOf("inner.zqs"));
    inner.addSegments(made.file(), 1, 2);
    inner.addSet(pathOf("a.zqp"));
    inner.commit();
    EXPECT_EQ(pathsOf("inner.zqs"), (Paths{"3", "4", "0"}));

    SetManifestWriter writer(pathOf("all.zqs"));
    writer.addSegments(pathOf("inner.zqs"), 1, 2);
    writer.addSegments(made.file(), 0, 0);
    writer.addSegments(made.file(), 0, 1);
    EXPECT_EQ(refusalOf([&] { writer.addSegments(made.file(), 2, 2); }).kind, ErrorKind::kWrongUse);
    EXPECT_EQ(refusalOf([&] { writer.addSegments(made.file(), 4, 0); }).kind, ErrorKind::kWrongUse);
    writer.commit();
    EXPECT_EQ(pathsOf("all.zqs"), (Paths{"4", "0", "1", "2"}));
}

TEST_F(SetManifestWriterTest, knowsWhichPathsAreGone) {
    makeSet("a.zqp", {"1", "2", "3"});
    PathSetWriter marks(pathOf("a.zqp"), PathSetWriter::Mode::kAppend);
    marks.markGone(2);
    marks.commit();
    merge("all.zqs", {"a.zqp", "a.zqp"});
    const PathSet set = PathSet::open(pathOf("all.zqs"));
    EXPECT_EQ(set.goneCount(), 2U);
    EXPECT_EQ(set.goneNumber(1), 5U);
    EXPECT_EQ(set.presentNumber(3), 6U);
    EXPECT_EQ(set.goneCount(3, 5), 1U);
}

TEST_F(SetManifestWriterTest, passesOverSetsWithoutPaths) {
    makeSet("none.zqp", {});
    merge("all.zqs", {"none.zqp"});
    EXPECT_EQ(PathSet::open(pathOf("all.zqs")).size(), 0U);
    EXPECT_TRUE(pathsOf("all.zqs").empty());
    EXPECT_TRUE(manifest("all.zqs").files.empty());
}

TEST_F(SetManifestWriterTest, isAsItWasAfterASetThatItRefuses) {
    makeSet("a.zqp", {"1"});
    writeContent(pathOf("other"), "a file of somebody else");
    SetManifestWriter writer(pathOf("all.zqs"));
    writer.addSet(pathOf("a.zqp"));
    EXPECT_EQ(refusalOf([&] { writer.addSet(pathOf("missing.zqp")); }).kind, ErrorKind::kNotFound);
    EXPECT_EQ(refusalOf([&] { writer.addSet(pathOf("other")); }).kind, ErrorKind::kNotASet);
    writer.commit();
    EXPECT_EQ(pathsOf("all.zqs"), (Paths{"1"}));
    EXPECT_EQ(refusalOf([&] { writer.commit(); }).kind, ErrorKind::kWrongUse);
}

TEST_F(SetManifestWriterTest, replacesWhatIsOursAlone) {
    makeSet("a.zqp", {"1"});
    merge("all.zqs", {"a.zqp"});
    EXPECT_EQ(refusalOf([&] { merge("all.zqs", {"a.zqp"}); }).kind, ErrorKind::kExists);
    merge("all.zqs", {"a.zqp", "a.zqp"}, SetManifestWriter::Mode::kReplace);
    EXPECT_EQ(pathsOf("all.zqs"), (Paths{"1", "1"}));
    makeSet("set.zqp", {"2"});
    merge("set.zqp", {"a.zqp"}, SetManifestWriter::Mode::kReplace);
    EXPECT_EQ(pathsOf("set.zqp"), (Paths{"1"}));
    PathSetWriter back(pathOf("set.zqp"), PathSetWriter::Mode::kReplace);
    back.add("3");
    back.commit();
    EXPECT_EQ(pathsOf("set.zqp"), (Paths{"3"}));
    writeContent(pathOf("other"), "a file of somebody else");
    EXPECT_EQ(refusalOf([&] { merge("other", {"a.zqp"}, SetManifestWriter::Mode::kReplace); }).kind,
              ErrorKind::kNotASet);
}

TEST_F(SetManifestWriterTest, doesNotTakeThePlaceOfItsOwnPart) {
    makeSet("a.zqp", {"1"});
    SetManifestWriter writer(pathOf("a.zqp"), SetManifestWriter::Mode::kReplace);
    EXPECT_EQ(refusalOf([&] { writer.addSet(pathOf("a.zqp")); }).kind, ErrorKind::kWrongUse);
    merge("all.zqs", {"a.zqp"});
    merge("all.zqs", {"all.zqs", "a.zqp"},
          SetManifestWriter::Mode::kReplace);  // which names a.zqp alone
    EXPECT_EQ(pathsOf("all.zqs"), (Paths{"1", "1"}));
}

TEST_F(SetManifestWriterTest, leavesNothingWithoutACommit) {
    makeSet("a.zqp", {"1"});
    SetManifestWriter(pathOf("all.zqs")).addSet(pathOf("a.zqp"));
    const auto files = std::filesystem::directory_iterator(pathOf("."));
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

}  // namespace
}  // namespace zqpaths
