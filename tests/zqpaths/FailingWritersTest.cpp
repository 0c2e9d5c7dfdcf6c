// Want of memory at every step of a writer: the file is as it was, or as it was to be.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "tests/support/FailingHeap.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SavedPaths.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths {
namespace {

using Mode = PathSetWriter::Mode;
using Paths = std::vector<std::string>;
using Refused = FailingHeap::Refused;

constexpr std::size_t kMostBlocks = 100'000;  // an operation that asks for more does not end
constexpr std::array kWays{Refused::kOne, Refused::kAllAfter};

/// Adds a path to a copy of a file, as often as a block is refused, each time a later one. Returns
/// how often there was no memory.
std::size_t failEverywhere(const std::string& original, const Paths& before) {
    const std::string file = original + ".copy";
    Paths after = before;
    after.emplace_back("new/path");
    std::size_t failures = 0;
    for (const Refused way : kWays) {
        bool hasRefused = true;
        for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
            SCOPED_TRACE(number);
            std::filesystem::copy_file(original, file,
                                       std::filesystem::copy_options::overwrite_existing);
            bool isDone = false;
            {
                const FailingHeap heap(number, way);
                try {
                    PathSetWriter writer(file, Mode::kAppend);
                    writer.add(after.back());
                    writer.commit();
                    isDone = true;
                } catch (const std::bad_alloc&) {
                    ++failures;
                }
                hasRefused = heap.hasRefused();
            }
            EXPECT_EQ(savedPaths(file), isDone ? after : before);
            if (testing::Test::HasFailure()) return failures;
        }
        EXPECT_FALSE(hasRefused);
    }
    return failures;
}

TEST(FailingWriters, leaveTheFileAsItWas) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    PathSetWriter(file).commit();
    Paths paths;
    for (const std::string path : {"a/b", "c"}) {
        paths.push_back(path);
        PathSetWriter writer(file, Mode::kAppend);
        writer.add(path);
        writer.commit();
    }
    EXPECT_GT(failEverywhere(file, paths), 100U);
}

TEST(FailingWriters, leaveSegmentsThatWereToBeJoined) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    PathSetWriter(file).commit();
    Paths paths;
    for (int i = 0; i < 8; ++i) {
        paths.push_back("folder/" + std::to_string(i));
        PathSetWriter writer(file, Mode::kAppend, PathSetWriter::Form::kPacked);
        writer.add(paths.back());
        writer.commit();
    }
    ASSERT_EQ(SetFile::open(file)->segments().size(), 8U);
    EXPECT_GT(failEverywhere(file, paths), 100U);
}

/// Makes a change of a file with one block refused, a later one each time, until none is. `look`
/// is told whether the change was made. Returns how often there was no memory.
template <class Change, class Look>
std::size_t failOnceEverywhere(const std::string& file, Change change, Look look) {
    const std::string original = contentOf(file);
    std::size_t failures = 0;
    bool hasRefused = true;
    for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
        SCOPED_TRACE(number);
        writeContent(file, original);
        bool isDone = false;
        {
            const FailingHeap heap(number, Refused::kOne);
            try {
                change();
                isDone = true;
            } catch (const std::bad_alloc&) {
                ++failures;
            }
            hasRefused = heap.hasRefused();
        }
        look(isDone);
        if (testing::Test::HasFailure()) return failures;
    }
    return failures;
}

TEST(FailingWriters, leaveMarksAndScansAsTheyWere) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    {
        PathSetWriter writer(file);
        for (const char* const path : {"a", "b", "c"}) writer.add(path);
        writer.markGone(1);
        writer.commit();
    }
    const std::string original = contentOf(file);
    const auto change = [&] {
        PathSetWriter writer(file, Mode::kAppend);
        writer.add("d");
        writer.markGone(4);
        writer.markPresent(1);
        ScanWriter scan({"/", 0, {}});
        scan.add({});
        std::vector<EncodedScan> scans;
        scans.push_back(std::move(scan).finish());
        recordScans(writer, std::move(scans));
        writer.commit();
    };
    const auto look = [&](bool isDone) {
        const PathSet set = PathSet::open(file);
        EXPECT_EQ(set.size(), isDone ? 4U : 3U);
        EXPECT_EQ(set.goneNumber(0), isDone ? 4U : 1U);
        EXPECT_EQ(scansOf(set).size(), isDone ? 1U : 0U);
        EXPECT_TRUE(isDone || contentOf(file) == original);
    };
    EXPECT_GT(failOnceEverywhere(file, change, look), 50U);
}

TEST(FailingWriters, leaveTheFileAsItWasWhereASetIsAdded) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    const std::string added = tree.pathOf("added.zqp");
    for (const std::string& made : {file, added}) {
        PathSetWriter writer(made);
        for (const char* const path : {"a", "b/c"}) writer.add(path);
        writer.markGone(2);
        writer.commit();
    }
    const PathSet set = PathSet::open(added);
    const auto change = [&] {
        PathSetWriter writer(file, Mode::kAppend);
        writer.add("d");
        writer.addSet(set);
        writer.commit();
    };
    const auto look = [&](bool isDone) {
        EXPECT_EQ(savedPaths(file),
                  isDone ? (Paths{"a", "b/c", "d", "a", "b/c"}) : (Paths{"a", "b/c"}));
        EXPECT_EQ(PathSet::open(file).goneCount(), isDone ? 2U : 1U);
    };
    EXPECT_GT(failOnceEverywhere(file, change, look), 50U);
}

/// Two sets of a path each, the first of which is a set of sets.
class FailingManifestWriters : public testing::Test {
protected:
    FailingManifestWriters() {
        for (const std::string name : {"a.zqp", "b.zqp"}) {
            PathSetWriter writer(tree_.pathOf(name));
            writer.add(name);
            writer.commit();
        }
        SetManifestWriter first(manifest_);
        first.addSet(tree_.pathOf("a.zqp"));
        first.commit();
        original_ = contentOf(manifest_);
    }

    /// It has one path, or two if the change was made, or became so just before memory was lacking.
    void expectAsItWasOrChanged(bool isDone) const {
        const PathSet set = PathSet::open(manifest_);
        EXPECT_TRUE(set.size() == 2 || (!isDone && contentOf(manifest_) == original_));
        for (const std::string_view path : set) EXPECT_FALSE(path.empty());
    }

    test_support::TemporaryTree tree_;
    std::string manifest_ = tree_.pathOf("all.zqs");
    std::string original_;
};

TEST_F(FailingManifestWriters, leaveTheManifestAsItWas) {
    const auto change = [this] {
        SetManifestWriter writer(manifest_, SetManifestWriter::Mode::kReplace);
        writer.addSet(manifest_);
        writer.addSet(tree_.pathOf("b.zqp"));
        writer.commit();
        EXPECT_EQ(PathSet::openPartial(manifest_).path(2), "b.zqp");
    };
    EXPECT_GT(failOnceEverywhere(manifest_, change,
                                 [this](bool isDone) { expectAsItWasOrChanged(isDone); }),
              50U);
}

TEST_F(FailingManifestWriters, leaveASetOfSetsAsItWasWherePathsAreAdded) {
    const auto change = [this] {
        PathSetWriter writer(manifest_, Mode::kAppend);
        writer.add("c");
        writer.commit();
    };
    const auto look = [this](bool isDone) {
        expectAsItWasOrChanged(isDone);
        std::filesystem::remove_all(manifest_ + ".d");  // or names take more memory each time
    };
    EXPECT_GT(failOnceEverywhere(manifest_, change, look), 50U);
}

TEST(FailingWriters, goOnWithAnotherPathWhereOneHadNoRoom) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    PathSetWriter writer(file);
    writer.add("a");
    const std::string longPath(100'000, 'x');
    {
        const FailingHeap heap(1, Refused::kAllAfter);
        EXPECT_THROW(writer.add(longPath), std::bad_alloc);
    }
    writer.add("b");
    writer.commit();
    EXPECT_EQ(savedPaths(file), (Paths{"a", "b"}));
}

}  // namespace
}  // namespace zqpaths
