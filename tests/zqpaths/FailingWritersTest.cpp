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
    std::size_t failures = 0;
    bool hasRefused = true;
    for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
        SCOPED_TRACE(number);
        writeContent(file, original);
        bool isDone = false;
        {
            const FailingHeap heap(number, Refused::kOne);
            try {
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
                isDone = true;
            } catch (const std::bad_alloc&) {
                ++failures;
            }
            hasRefused = heap.hasRefused();
        }
        const PathSet set = PathSet::open(file);
        ASSERT_EQ(set.size(), isDone ? 4U : 3U);
        ASSERT_EQ(set.goneNumber(0), isDone ? 4U : 1U);
        ASSERT_EQ(scansOf(set).size(), isDone ? 1U : 0U);
        ASSERT_EQ(isDone || contentOf(file) == original, true);
    }
    EXPECT_GT(failures, 50U);
}

TEST(FailingWriters, leaveTheManifestAsItWas) {
    const test_support::TemporaryTree tree;
    const std::string manifest = tree.pathOf("all.zqs");
    for (const std::string name : {"a.zqp", "b.zqp"}) {
        PathSetWriter writer(tree.pathOf(name));
        writer.add(name);
        writer.commit();
    }
    SetManifestWriter first(manifest);
    first.addSet(tree.pathOf("a.zqp"));
    first.commit();
    const std::string original = contentOf(manifest);
    std::size_t failures = 0;
    bool hasRefused = true;
    for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
        SCOPED_TRACE(number);
        writeContent(manifest, original);
        bool isDone = false;
        {
            const FailingHeap heap(number, Refused::kOne);
            try {
                SetManifestWriter writer(manifest, SetManifestWriter::Mode::kReplace);
                writer.addSet(manifest);
                writer.addSet(tree.pathOf("b.zqp"));
                writer.commit();
                isDone = PathSet::openPartial(manifest).path(2) == "b.zqp";
            } catch (const std::bad_alloc&) {
                ++failures;
            }
            hasRefused = heap.hasRefused();
        }
        const PathSet set = PathSet::open(manifest);
        ASSERT_TRUE(set.size() == 2 || (!isDone && contentOf(manifest) == original));
    }
    EXPECT_GT(failures, 50U);
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
