#include "tools/zqpaths/sets/GrowingSet.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "zqpaths/PathSet.hpp"

namespace zqpaths::program {
namespace {

using Mode = PathSetWriter::Mode;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr MessageOptions kQuiet{true, true};

std::vector<std::string> pathsOf(const std::string& file) {
    std::vector<std::string> paths;
    PathSet::open(file).forEach(
        [&paths](std::uint64_t /*number*/, std::string_view path) { paths.emplace_back(path); });
    return paths;
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    return names;
}

TEST(GrowingSet, tellsHowManyPathsThereAre) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    testing::internal::CaptureStderr();
    {
        GrowingSet set(file, Mode::kCreate, "adding", {});
        set.add("a");
        EXPECT_EQ(set.addedCount(), 1U);
        set.save();
    }
    {
        GrowingSet set(file, Mode::kAppend, "adding", {});
        set.add("b/c");
        EXPECT_EQ(set.addedCount(), 1U);
        set.save();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "zqpaths: " + file + " holds 1 path\nzqpaths: " + file + " holds 2 paths\n");
    EXPECT_THAT(pathsOf(file), ElementsAre("a", "b/c"));
}

TEST(GrowingSet, leavesNothingUnlessItIsSaved) {
    const test_support::TemporaryTree tree;
    {
        GrowingSet set(tree.pathOf("s.zqp"), Mode::kCreate, "adding", kQuiet);
        set.add("a");
    }
    EXPECT_THAT(namesIn(tree.path()), IsEmpty());
}

TEST(GrowingSetDeathTest, isTakenBackByASignal) {
    const test_support::TemporaryTree tree;
    const auto addUntilStopped = [&tree] {
        GrowingSet set(tree.pathOf("s.zqp"), Mode::kCreate, "adding", kQuiet);
        set.add("a");
        if (std::raise(SIGTERM) != 0) std::exit(1);
        set.add("b");
    };
    EXPECT_EXIT(addUntilStopped(), testing::KilledBySignal(SIGTERM), "");
    EXPECT_THAT(namesIn(tree.path()), IsEmpty());
}

TEST(GrowingSetDeathTest, waitsForAnotherWriterUntilASignalComes) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    GrowingSet(file, Mode::kCreate, "adding", kQuiet).save();
    PathSetWriter other(file, Mode::kAppend);
    const auto start = std::chrono::steady_clock::now();
    const auto wait = [&file] {
        // Another program's signal, while this one waits.
        const std::string command =
            "(sleep 0.3; kill " + std::to_string(getpid()) + ") >/dev/null 2>&1 &";
        if (std::system(command.c_str()) != 0) std::exit(1);
        const GrowingSet set(file, Mode::kAppend, "adding", kQuiet);
    };
    EXPECT_EXIT(wait(), testing::KilledBySignal(SIGTERM), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

}  // namespace
}  // namespace zqpaths::program
