// Paths that are added to a set of sets: in a set file of their own, which the manifest then names.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths {
namespace {

using Mode = PathSetWriter::Mode;
using Paths = std::vector<std::string>;
using testing::ElementsAre;
using testing::HasSubstr;

class AddedToManifest : public testing::Test {
protected:
    AddedToManifest() {
        tree_.addDirectory("folder");
        PathSetWriter writer(tree_.pathOf("folder/a.zqp"));
        for (const char* const path : {"x", "y"}) writer.add(path);
        writer.commit();
        SetManifestWriter manifest(all_);
        manifest.addSet(tree_.pathOf("folder/a.zqp"));
        manifest.commit();
    }

    void add(const std::string& file, const Paths& paths) const {
        PathSetWriter writer(file, Mode::kAppend);
        for (const std::string& path : paths) writer.add(path);
        writer.commit();
    }

    Paths paths() const {
        Paths all;
        for (const std::string_view path : PathSet::open(all_)) all.emplace_back(path);
        return all;
    }

    /// Names in the folder, in their order.
    Texts names() const { return namesIn(tree_.pathOf("folder")); }

    test_support::TemporaryTree tree_;
    std::string all_ = tree_.pathOf("folder/all.zqs");
};

TEST_F(AddedToManifest, standInANewFileAndLeaveTheOthersAsTheyAre) {
    const std::string before = contentOf(tree_.pathOf("folder/a.zqp"));
    const PathSet opened = PathSet::open(all_);
    add(all_, {"z", "x"});
    EXPECT_EQ(paths(), (Paths{"x", "y", "z", "x"}));
    EXPECT_EQ(opened.size(), 2U);
    EXPECT_EQ(opened.path(1), "x");
    EXPECT_EQ(contentOf(tree_.pathOf("folder/a.zqp")), before);
    add(all_, {"w"});
    EXPECT_EQ(paths(), (Paths{"x", "y", "z", "x", "w"}));
    EXPECT_THAT(namesIn(all_ + ".d"), testing::UnorderedElementsAre("added-1.zqp", "added-2.zqp"));
    EXPECT_TRUE(PathSet::open(all_).verify().empty());
}

TEST_F(AddedToManifest, haveTheNumbersAfterAllOthersAndMayBeMarked) {
    PathSetWriter writer(all_, Mode::kAppend);
    EXPECT_EQ(writer.size(), 2U);
    writer.add("z");
    writer.add("w");
    EXPECT_EQ(writer.size(), 4U);
    writer.markGone(4);
    const Refusal error = refusalOf([&] { writer.markGone(2); });
    EXPECT_EQ(error.kind, ErrorKind::kWrongUse);
    EXPECT_EQ(error.text, all_ + ": is a set of sets, which cannot mark the paths of its files");
    EXPECT_THROW(writer.markGone(5), Error);
    writer.commit();
    const PathSet set = PathSet::open(all_);
    EXPECT_EQ(set.goneCount(), 1U);
    EXPECT_EQ(set.goneNumber(0), 4U);
}

TEST_F(AddedToManifest, mayBeWholeSets) {
    const PathSet itself = PathSet::open(all_);
    PathSetWriter writer(all_, Mode::kAppend);
    writer.addSet(itself);
    writer.commit();
    EXPECT_EQ(paths(), (Paths{"x", "y", "x", "y"}));
}

TEST_F(AddedToManifest, areNothingWithoutACommitOrWithoutPaths) {
    const std::string before = contentOf(all_);
    { PathSetWriter(all_, Mode::kAppend).add("z"); }
    EXPECT_THAT(names(), testing::UnorderedElementsAre("a.zqp", "all.zqs"));
    PathSetWriter writer(all_, Mode::kAppend);
    writer.commit();
    add(all_, {"w"});  // others may write
    writer = PathSetWriter(all_, Mode::kAppend);
    ScanWriter scan({"/d", 1, {}});
    scan.add({});
    recordScans(writer, {std::move(scan).finish()});
    writer.commit();
    EXPECT_EQ(paths(), (Paths{"x", "y", "w"}));
    EXPECT_THAT(namesIn(all_ + ".d"), ElementsAre("added-1.zqp"));
}

TEST_F(AddedToManifest, takeANameThatIsFree) {
    std::filesystem::create_directory(all_ + ".d");
    writeContent(all_ + ".d/added-1.zqp", "of somebody else");
    add(all_, {"z"});
    EXPECT_EQ(paths(), (Paths{"x", "y", "z"}));
    EXPECT_EQ(contentOf(all_ + ".d/added-1.zqp"), "of somebody else");
    EXPECT_EQ(namesIn(all_ + ".d").size(), 2U);
}

TEST_F(AddedToManifest, keepOthersFromAddingMeanwhile) {
    const auto isHeld = [this] { return !SystemFile::open(all_, O_RDONLY, all_).tryLock(); };
    PathSetWriter writer(all_, Mode::kAppend);
    EXPECT_TRUE(isHeld());
    writer.add("z");
    writer.commit();
    EXPECT_FALSE(isHeld());
}

TEST_F(AddedToManifest, findTheSetThatALinkLeadsTo) {
    const std::string link = tree_.pathOf("link.zqs");
    std::filesystem::create_symlink("folder/all.zqs", link);
    EXPECT_EQ(PathSet::open(link).path(2), "y");
    add(link, {"z"});
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(paths(), (Paths{"x", "y", "z"}));
    EXPECT_EQ(PathSet::open(link).path(3), "z");
    EXPECT_FALSE(std::filesystem::exists(link + ".d"));
}

TEST_F(AddedToManifest, keepRowsWhoseFilesAreMissing) {
    const std::string elsewhere = tree_.pathOf("a.zqp");
    std::filesystem::rename(tree_.pathOf("folder/a.zqp"), elsewhere);
    add(all_, {"z"});
    EXPECT_EQ(PathSet::open(all_).path(3), "z");
    EXPECT_EQ(refusalOf([&] { static_cast<void>(PathSet::open(all_).path(1)); }).kind,
              ErrorKind::kNotFound);
    std::filesystem::rename(elsewhere, tree_.pathOf("folder/a.zqp"));
    EXPECT_EQ(paths(), (Paths{"x", "y", "z"}));
}

TEST_F(AddedToManifest, areNotTakenByADamagedManifest) {
    std::string text = contentOf(all_);
    text.resize(text.size() - 5);
    writeContent(all_, text);
    const Refusal error = refusalOf([&] { PathSetWriter(all_, Mode::kAppend); });
    EXPECT_EQ(error.kind, ErrorKind::kDamaged);
    EXPECT_THAT(error.text, HasSubstr(all_ + ": "));
    EXPECT_EQ(contentOf(all_), text);
    EXPECT_THAT(names(), testing::UnorderedElementsAre("a.zqp", "all.zqs"));
}

}  // namespace
}  // namespace zqpaths
