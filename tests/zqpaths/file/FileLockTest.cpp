#include "zqpaths/file/FileLock.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
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

/// A forked process that does something and lives until this goes.
class Child {
public:
    template <class Work>
    explicit Child(Work work) {
        std::array<int, 2> done{};
        EXPECT_EQ(::pipe(done.data()), 0);
        process_ = ::fork();
        if (process_ == 0) {
            work();
            ::close(done[1]);
            while (true) ::pause();
        }
        ::close(done[1]);
        char none = 0;
        EXPECT_EQ(::read(done[0], &none, 1), 0);  // until the child has closed its end
        ::close(done[0]);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }

private:
    pid_t process_ = 0;
};

TEST_F(AFileLock, isGivenUpThoughAForkedChildHasTheFileOpen) {
    auto first = lock();
    const Child child([] {});
    EXPECT_EQ(refusalOf([&] { lock(); }).kind, ErrorKind::kHeld);
    first.reset();
    EXPECT_TRUE(lock());
}

TEST_F(AFileLock, isKeptWhenAForkedChildClosesTheFile) {
    auto first = lock();
    const Child child([&] { first.reset(); });
    EXPECT_EQ(refusalOf([&] { lock(); }).kind, ErrorKind::kHeld);
}

TEST_F(AFileLock, isGivenUpWhenAnotherFileTakesItsPlace) {
    auto file = lock();
    ASSERT_TRUE(file);
    SystemFile moved = std::move(*file);
    EXPECT_EQ(refusalOf([&] { lock(); }).kind, ErrorKind::kHeld);
    moved = SystemFile();
    EXPECT_TRUE(lock());
}

TEST_F(AFileLock, isHeldByAnotherProgramIfTheSystemDoesNotTell) {
    EXPECT_EQ(holderOf(SystemFile::open(path_, O_RDONLY, "f")), "another program");
}

}  // namespace
}  // namespace zqpaths
