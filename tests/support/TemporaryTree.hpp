#pragma once
// A directory of its own for a test, removed with all that is in it:
//
//     TemporaryTree tree;
//     tree.addFile("a/b");                // with the directories above it
//     walkDirectory(tree.path(), ...);
//
// Threads: a tree belongs to one thread at a time.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "tests/support/ProgramRun.hpp"

namespace test_support {

class TemporaryTree {
public:
    TemporaryTree() : path_(parent() + "zq-XXXXXX") {
        if (::mkdtemp(path_.data()) == nullptr) fail("mkdtemp");
        allow("", 0755);  // for a user with fewer rights, too
    }
    TemporaryTree(const TemporaryTree&) = delete;
    TemporaryTree& operator=(const TemporaryTree&) = delete;
    ~TemporaryTree() {
        // Programs, because a tree may be deeper than std::filesystem can go.
        try {
            runProgram({"chmod", "-R", "u+rwX", "--", path_});
            const ProgramRun removal = runProgram({"rm", "-rf", "--", path_});
            EXPECT_EQ(removal.exitStatus, 0) << removal.errors;
        } catch (const std::exception& error) {
            ADD_FAILURE() << path_ << " cannot be removed: " << error.what();
        }
    }

    const std::string& path() const noexcept { return path_; }
    std::string pathOf(std::string_view name) const { return path_ + '/' + std::string(name); }

    /// Makes a file with `content`, and the directories above it. Returns its path.
    std::string addFile(std::string_view name, std::string_view content = {}) const {
        const std::filesystem::path file = pathOf(name);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream out(file, std::ios::binary);
        if (!out.write(content.data(), static_cast<std::streamsize>(content.size()))) fail(name);
        return file;
    }

    std::string addDirectory(std::string_view name) const {
        std::filesystem::create_directories(pathOf(name));
        return pathOf(name);
    }

    void addSymbolicLink(std::string_view name, const std::string& target) const {
        std::filesystem::create_symlink(target, pathOf(name));
    }

    void allow(std::string_view name, mode_t mode) const {
        if (::chmod(pathOf(name).c_str(), mode) != 0) fail("chmod");
    }

    /// Makes `levels` directories inside one another, each named `below` and with a neighbour
    /// `beside` that holds a file `f`; and a file `f` in the lowest.
    void addDeepLevels(std::size_t levels, const std::string& below,
                       const std::string& beside) const {
        int directory = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        for (std::size_t level = 0; level < levels; ++level) {
            const int side = descend(directory, beside);
            touch(side);
            ::close(side);
            const int next = descend(directory, below);
            ::close(directory);
            directory = next;
        }
        touch(directory);
        ::close(directory);
    }

private:
    /// Thousands of directories take a disk many seconds and memory none.
    static std::string parent() {
        constexpr const char* kInMemory = "/dev/shm/";
        return ::access(kInMemory, W_OK | X_OK) == 0 ? kInMemory : testing::TempDir();
    }

    [[noreturn]] static void fail(std::string_view what) {
        throw std::system_error(errno, std::generic_category(), std::string(what));
    }

    static int descend(int directory, const std::string& name) {
        if (::mkdirat(directory, name.c_str(), 0755) != 0) fail("mkdirat");
        const int opened = ::openat(directory, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (opened < 0) fail("openat");
        return opened;
    }

    static void touch(int directory) {
        const int file = ::openat(directory, "f", O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        if (file < 0) fail("openat");
        ::close(file);
    }

    std::string path_;
};

}  // namespace test_support
