#include "tools/zqpaths/NewFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

constexpr mode_t kMode = 0666;  // less what the user's mask takes away

/// With the separator at its end; empty for the current directory.
std::string directoryOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

}  // namespace

NewFile::NewFile(std::string path) : path_(std::move(path)) {
    // A short name of its own, because the name may be as long as names can be.
    const std::string prefix = directoryOf(path_) + ".zqpaths-" + std::to_string(getpid()) + "-";
    for (int number = 1;; ++number) {
        const std::string name = prefix + std::to_string(number);
        const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
        if (file < 0 && errno == EEXIST) continue;
        if (file < 0) throw systemFailureAt(path_, errno);
        close(file);
        temporaryPath_ = name;
        return;
    }
}

NewFile::~NewFile() {
    if (!temporaryPath_.empty()) unlink(temporaryPath_.c_str());
}

bool NewFile::publish() {
    const char* const from = temporaryPath_.c_str();
    const char* const to = path_.c_str();
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) != 0) {
        // Not every file system can do that in one step; there, a second name does it.
        const bool isUnknown = errno == EINVAL || errno == ENOSYS;
        if (isUnknown && link(from, to) == 0)
            unlink(from);
        else if (errno == EEXIST)
            return false;
        else
            throw systemFailureAt(path_, errno);
    }
    noteInDirectory();
    return true;
}

void NewFile::publishInPlace() {
    if (rename(temporaryPath_.c_str(), path_.c_str()) != 0) throw systemFailureAt(path_, errno);
    noteInDirectory();
}

void NewFile::noteInDirectory() {
    temporaryPath_.clear();
    const std::string directory = directoryOf(path_);
    const int opened =
        open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return;  // a directory that may be written but not read: the name is there
    const int code = fsync(opened);
    const int error = errno;
    close(opened);
    // Some file systems have nothing to write for a directory.
    if (code != 0 && error != EINVAL) throw systemFailureAt(path_, error);
}

}  // namespace zqpaths
