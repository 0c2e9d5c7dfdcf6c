// One process that makes, adds to, marks, damages, reads and searches sets at random, and fails in
// between: what it reads is what a plain list holds, and neither memory nor descriptors grow.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/FileSizeLimit.hpp"
#include "tests/support/HeapMeter.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/endurance/Duration.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/Pattern.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kMostPaths = 2000;

std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::distance(begin(descriptors), end(descriptors));
}

class LongLife : public testing::Test {
protected:
    /// From an empty set to a large one; what is held between two of these is nothing.
    void liveOnce() {
        write(PathSetWriter::Mode::kReplace, 1 + random_() % 50);
        while (paths_.size() < kMostPaths && !HasFailure()) doSomething();
        paths_ = std::vector<std::string>();
        gone_ = std::vector<bool>();
    }

    std::uint64_t stepCount() const noexcept { return stepCount_; }

private:
    void doSomething() {
        ++stepCount_;
        switch (random_() % 8) {
            case 0:
                return failToWrite();
            case 1:
                return markSomeGone();
            case 2:
                return readAll(PathSet::open(file_));
            case 3:
                return search();
            case 4:
                return readDamaged();
            case 5:
                return readAsPartOfASetOfSets();
            case 6:
                return giveUp();
            default:
                return write(PathSetWriter::Mode::kAppend, 1 + random_() % 200);
        }
    }

    std::string madePath() {
        return "folder" + std::to_string(random_() % 30) + "/file" + std::to_string(random_());
    }

    void write(PathSetWriter::Mode mode, std::size_t count) {
        PathSetWriter writer(file_, mode);
        for (std::size_t i = 0; i < count; ++i) {
            paths_.push_back(madePath());
            gone_.push_back(false);
            writer.add(paths_.back());
        }
        writer.commit();
    }

    void giveUp() {
        PathSetWriter writer(file_, PathSetWriter::Mode::kAppend);
        for (int i = 0; i < 20; ++i) writer.add(madePath());
    }

    void failToWrite() {
        const auto size = std::filesystem::file_size(file_);
        const test_support::FileSizeLimit limit(size + random_() % 4000);
        const Refusal refusal = refusalOf([&] {
            PathSetWriter writer(file_, PathSetWriter::Mode::kAppend);
            for (int i = 0; i < 2000; ++i) writer.add(madePath());  // some 10 bytes each
            writer.commit();
        });
        EXPECT_EQ(refusal.kind, ErrorKind::kSystem) << refusal.text;
    }

    void markSomeGone() {
        PathSetWriter writer(file_, PathSetWriter::Mode::kAppend);
        for (int i = 0; i < 5; ++i) {
            const std::size_t place = random_() % paths_.size();
            gone_[place] = !gone_[place];
            if (gone_[place])
                writer.markGone(place + 1);
            else
                writer.markPresent(place + 1);
        }
        writer.commit();
    }

    void readAll(const PathSet& set) {
        ASSERT_EQ(set.size(), paths_.size());
        ASSERT_EQ(set.goneCount(), static_cast<std::uint64_t>(std::ranges::count(gone_, true)));
        set.forEach([&](std::uint64_t number, std::string_view path) {
            ASSERT_EQ(path, paths_[number - 1]);
            ASSERT_EQ(set.isGone(number), gone_[number - 1]);
        });
    }

    void search() {
        const PathSet set = PathSet::open(file_);
        const std::string text = std::to_string(random_() % 100);
        std::uint64_t expected = 0;
        for (std::size_t i = 0; i < paths_.size(); ++i)
            if (paths_[i].find(text) != std::string::npos) ++expected;
        ASSERT_EQ(set.count(Pattern::text(text)), expected);
        const std::string& path = paths_[random_() % paths_.size()];
        const auto first = std::ranges::find(paths_, path) - paths_.begin();
        ASSERT_EQ(set.numberOf(path), static_cast<std::uint64_t>(first) + 1);
    }

    /// A byte changed anywhere: refused, or answered with whatever.
    void readDamaged() {
        std::string bytes = contentOf(file_);
        bytes[random_() % bytes.size()] ^= static_cast<char>(1 + random_() % 255);
        const std::string damaged = tree_.pathOf("damaged.zqp");
        writeContent(damaged, bytes);
        try {
            const PathSet set = PathSet::open(damaged);
            set.forEach([](std::uint64_t, std::string_view) {});
            static_cast<void>(set.count(Pattern::text("1")));
        } catch (const Error& error) {
            EXPECT_TRUE(error.kind() == ErrorKind::kDamaged || error.kind() == ErrorKind::kNotASet)
                << error.what();
        }
    }

    void readAsPartOfASetOfSets() {
        const std::string all = tree_.pathOf("all.zqs");
        SetManifestWriter writer(all, SetManifestWriter::Mode::kReplace);
        writer.addSet(file_);
        writer.commit();
        readAll(PathSet::open(all));
    }

    test_support::TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
    std::mt19937 random_{std::random_device()()};
    std::vector<std::string> paths_;
    std::vector<bool> gone_;
    std::uint64_t stepCount_ = 0;
};

TEST_F(LongLife, keepsMemoryAndDescriptorsLevel) {
    constexpr int kFirstLives = 2;  // in which all is met that is made once
    for (int i = 0; i < kFirstLives; ++i) liveOnce();
    const std::ptrdiff_t descriptors = openDescriptors();
    const compressedpaths::HeapMeter heap;
    int lives = 0;
    for (const Duration duration; !duration.isOver() && !HasFailure(); ++lives) {
        liveOnce();
        ASSERT_EQ(heap.now(), 0U) << "bytes are left after " << lives << " lives";
        ASSERT_EQ(openDescriptors(), descriptors) << "after " << lives << " lives";
    }
    std::cout << stepCount() << " steps in " << lives + kFirstLives << " lives" << std::endl;
}

}  // namespace
}  // namespace zqpaths
