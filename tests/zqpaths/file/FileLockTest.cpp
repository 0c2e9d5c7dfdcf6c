#include "zqpaths/file/FileLock.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace zqpaths {
namespace {

using namespace std::chrono_literals;

class AFileLock : public ::testing::Test {
protected:
    std::optional<SystemFile> lock(std::chrono::milliseconds wait = 0ms) const {
        return openLocked(path_, O_RDWR, "f", wait);
    }

    test_support::TemporaryTree tree_;
    std::string path_ = tree_.addFile("f");
};

TEST_F(AFileLock, isHadByOneAtATime) {
    auto first = lock();
    ASSERT_TRUE(first);
    EXPECT_EQ(refusalOf([&] { lock(); }).kind, ErrorKind::kHeld);
    first.reset();
    EXPECT_TRUE(lock());
}

TEST_F(AFileLock, isOfNoFileWhereThereIsNone) {
    std::filesystem::remove(path_);
    EXPECT_FALSE(lock());
}

TEST_F(AFileLock, isWaitedForAsLongAsItIsSaid) {
    const auto first = lock();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(refusalOf([&] { lock(100ms); }).kind, ErrorKind::kHeld);
    const auto waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(waited, 100ms);
    EXPECT_LT(waited, 2s);
}

TEST_F(AFileLock, comesWhenTheOtherLetsGo) {
    auto first = lock();
    std::thread other([&] {
        std::this_thread::sleep_for(50ms);
        first.reset();
    });
    EXPECT_TRUE(lock(10s));
    other.join();
}

TEST_F(AFileLock, isOfTheFileThatHasThePathAfterTheWait) {
    auto first = lock();
    std::thread other([&] {
        std::this_thread::sleep_for(50ms);
        std::filesystem::rename(tree_.addFile("g", "new"), path_);
        first.reset();
    });
    const auto second = lock(10s);
    other.join();
    ASSERT_TRUE(second);
    EXPECT_TRUE(second->isAt(path_));
    EXPECT_EQ(second->size(), 3U);
}

TEST_F(AFileLock, saysWhoHasIt) {
    const auto first = lock();
    std::string program;
    std::getline(std::ifstream("/proc/self/comm"), program);
    const std::string holder = program + " (process " + std::to_string(::getpid()) + ")";
    EXPECT_EQ(holderOf(*first), holder);
    EXPECT_EQ(refusalOf([&] { lock(); }).text, "f: is held by " + holder);
}

TEST_F(AFileLock, isHeldByAnotherProgramIfTheSystemDoesNotTell) {
    EXPECT_EQ(holderOf(SystemFile::open(path_, O_RDONLY, "f")), "another program");
}

}  // namespace
}  // namespace zqpaths
