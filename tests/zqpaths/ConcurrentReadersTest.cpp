// One opened set, read by many threads at once in all ways, and by forked processes.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SegmentedSets.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/Pattern.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"

namespace zqpaths {
namespace {

constexpr unsigned kReaders = 16;
constexpr std::size_t kPaths = 400;

std::vector<std::string> madePaths() {
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < kPaths; ++i)
        paths.push_back("folder" + std::to_string(i % 7) + "/name" + std::to_string(i));
    return paths;
}

SegmentedSet segments() {
    std::mt19937 random(1);
    return SegmentedSet::ofPaths(madePaths(), 6, random);  // images and packed ones
}

/// What a reader asks for and what it should be.
class Reader {
public:
    Reader(const PathSet& set, const std::vector<std::string>& paths, unsigned seed)
        : set_(set), paths_(paths), random_(seed) {}

    void getSome(int rounds) {
        for (int i = 0; i < rounds; ++i) {
            const std::uint64_t number = 1 + random_() % paths_.size();
            ASSERT_EQ(set_.path(number), paths_[number - 1]);
            ASSERT_EQ(set_.numberOf(paths_[number - 1]), number);
        }
    }

    void readOn(int rounds) {
        getSome(rounds);
        std::vector<std::string> all;
        set_.forEach([&](std::uint64_t, std::string_view path) { all.emplace_back(path); });
        ASSERT_EQ(all, paths_);
        std::vector<std::uint64_t> numbers{paths_.size(), 1, paths_.size() / 2};
        std::vector<std::string> some;
        set_.paths(numbers, [&](std::uint64_t, std::string_view path) { some.emplace_back(path); });
        ASSERT_EQ(some.size(), numbers.size());
        ASSERT_EQ(some.front(), paths_.back());
        ASSERT_EQ(set_.count(Pattern::text("name39")), 11U);  // 39 and 390 to 399
    }

private:
    const PathSet& set_;
    const std::vector<std::string>& paths_;
    std::mt19937 random_;
};

void readByManyThreads(const PathSet& set, const std::vector<std::string>& paths) {
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < kReaders; ++i)
        threads.emplace_back([&, i] { Reader(set, paths, i).readOn(40); });
    for (std::thread& thread : threads) thread.join();
}

TEST(ConcurrentReaders, ofOneFileGetWhatOneWouldGet) {
    const SegmentedSet made = segments();
    for (int round = 0; round < 3; ++round) readByManyThreads(made.open(), made.paths());
}

TEST(ConcurrentReaders, ofASetOfSetsGetWhatOneWouldGet) {
    const test_support::TemporaryTree tree;
    const SegmentedSet made = segments();
    SetManifestWriter writer(tree.pathOf("all.zqs"));
    for (int i = 0; i < 2; ++i) writer.addSegments(made.file(), 3U * static_cast<unsigned>(i), 3);
    writer.commit();
    for (int round = 0; round < 3; ++round)
        readByManyThreads(PathSet::open(tree.pathOf("all.zqs")), made.paths());
}

/// Ends with 0 if each path comes as it should.
[[noreturn]] void readAndEnd(const PathSet& set, const std::vector<std::string>& paths) {
    ::alarm(60);  // rather than wait for a lock that nobody here will ever give up
    std::uint64_t number = 0;
    const bool areRight = std::ranges::all_of(paths, [&](const std::string& path) {
        return set.path(++number) == path && set.numberOf(path) == number;
    });
    ::_exit(areRight ? 0 : 1);
}

TEST(ConcurrentReaders, mayBeForkedBetweenCalls) {
    const SegmentedSet made = segments();
    const PathSet set = made.open();
    for (int i = 0; i < 20; ++i) {
        readByManyThreads(set, made.paths());
        const pid_t child = ::fork();
        if (child == 0) readAndEnd(set, made.paths());
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
    }
}

// In a child, locks of the address sanitizer stay locked, whoever holds them; the thread sanitizer
// takes a second for each.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(ConcurrentReaders, ofSegmentsThatWereReadMayBeForkedInTheMidstOfCalls) {
    const SegmentedSet made = segments();
    const PathSet set = made.open();
    readByManyThreads(set, made.paths());
    std::atomic<bool> isDone{false};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < kReaders; ++i)
        threads.emplace_back([&, i] {
            Reader reader(set, made.paths(), i);
            while (!isDone) reader.getSome(1);
        });
    for (int i = 0; i < 20; ++i) {
        const pid_t child = ::fork();
        if (child == 0) readAndEnd(set, made.paths());
        int status = -1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    isDone = true;
    for (std::thread& thread : threads) thread.join();
}
#endif

/// A child that was forked while paths are added leaves the file to its parent.
TEST(ConcurrentReaders, mayBeForkedWhileAFileIsWritten) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    PathSetWriter writer(file);
    pid_t child = 0;
    for (std::size_t i = 0; i < kPaths; ++i) {
        writer.add("path/" + std::to_string(i));
        if (i != kPaths / 2) continue;
        child = ::fork();
        if (child == 0) {
            PathSetWriter moved = std::move(writer);
            { const PathSetWriter ended = std::move(moved); }
            ::_exit(0);
        }
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    writer.commit();
    const PathSet set = PathSet::open(file);
    EXPECT_EQ(set.size(), kPaths);
    EXPECT_TRUE(set.verify().empty());
}

}  // namespace
}  // namespace zqpaths
