#include "tools/zqpaths/FileHolder.hpp"

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <fstream>

namespace zqpaths {
namespace {

// The bytes that SQLite locks, of "Database File Format", 2.3 "The Lock-Byte Page": one for who
// waits for readers to go, one for who is about to write, and those that readers share.
struct ByteRange {
    off_t first;
    off_t count;
};
constexpr ByteRange kWriters{0x4000'0000, 2};
constexpr ByteRange kReaders{0x4000'0002, 510};

/// The process that would keep this one from locking the bytes; 0 if none is known.
pid_t processAt(int file, const ByteRange& range) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = range.first;
    lock.l_len = range.count;
    const bool isKnown = fcntl(file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    return isKnown && lock.l_pid > 0 ? lock.l_pid : 0;
}

pid_t processWithLock(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return 0;
    pid_t process = processAt(file, kWriters);
    if (process == 0) process = processAt(file, kReaders);
    close(file);
    return process;
}

}  // namespace

std::string holderOf(const std::string& path) {
    const pid_t process = processWithLock(path);
    if (process == 0) return "another program";
    const std::string number = std::to_string(process);
    std::string name;
    std::getline(std::ifstream("/proc/" + number + "/comm"), name);
    return (name.empty() ? "a program" : name) + " (process " + number + ")";
}

}  // namespace zqpaths
