#pragma once
// Runs a program to its end and keeps what it wrote:
//
//     const ProgramRun run = runProgram({"/bin/echo", "hello"});
//     EXPECT_EQ(run.exitStatus, 0);
//     EXPECT_EQ(run.output, "hello\n");
//
// Threads: calls may run side by side.

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace test_support {

struct ProgramRun {
    int exitStatus;  // -1 if a signal ended the program
    std::string output;
    std::string errors;  // what it wrote to standard error
};

/// A file without a name, which holds any amount of output while the program runs.
class CapturedStream {
public:
    explicit CapturedStream(const char* name) : number_(::memfd_create(name, MFD_CLOEXEC)) {
        if (number_ < 0) throw std::system_error(errno, std::generic_category(), name);
    }
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;
    ~CapturedStream() { ::close(number_); }

    int number() const noexcept { return number_; }

    std::string text() const {
        std::string text(static_cast<std::size_t>(::lseek(number_, 0, SEEK_END)), '\0');
        const ssize_t count = ::pread(number_, text.data(), text.size(), 0);
        if (count != static_cast<ssize_t>(text.size()))
            throw std::system_error(errno, std::generic_category(), "captured stream");
        return text;
    }

private:
    int number_;
};

/// Runs `arguments[0]`, looked up as a shell does, with no input. Throws std::system_error if it
/// cannot be started.
inline ProgramRun runProgram(std::vector<std::string> arguments) {
    const CapturedStream output("output");
    const CapturedStream errors("errors");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output.number(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errors.number(), STDERR_FILENO);

    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    pid_t process = 0;
    const int failure =
        ::posix_spawnp(&process, pointers[0], &actions, nullptr, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::system_error(failure, std::generic_category(), arguments[0]);

    int status = 0;
    if (::waitpid(process, &status, 0) != process)
        throw std::system_error(errno, std::generic_category(), arguments[0]);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output.text(), errors.text()};
}

}  // namespace test_support
