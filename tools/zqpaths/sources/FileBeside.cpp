#include "tools/zqpaths/sources/FileBeside.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "zqpaths/file/SystemFile.hpp"

namespace zqpaths::program {
namespace {

constexpr mode_t kMode = 0666;  // less what the user's mask takes away

Failure failureThere(const std::string& path) {
    return failureAt(path, "is there already; --force replaces it");
}

}  // namespace

FileBeside::FileBeside(std::string path, std::size_t number)
    : path_(std::move(path)),
      // A short name of its own, because the name may be as long as names can be.
      temporaryPath_(path_.substr(0, path_.rfind('/') + 1) + ".zqpaths-" +
                     std::to_string(::getpid()) + "-" + std::to_string(number)),
      file_(::open(temporaryPath_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kMode)) {
    if (!file_.isOpen()) throw systemFailureAt(path_, errno);
}

FileBeside::~FileBeside() {
    if (!temporaryPath_.empty()) ::unlink(temporaryPath_.c_str());
}

void FileBeside::sync() {
    if (::fsync(file_.number()) != 0) throw systemFailureAt(path_, errno);
}

void FileBeside::takePlace(bool mayReplace) {
    const char* const from = temporaryPath_.c_str();
    const char* const to = path_.c_str();
    const unsigned flags = mayReplace ? 0 : RENAME_NOREPLACE;
    int result = ::renameat2(AT_FDCWD, from, AT_FDCWD, to, flags);
    // Not every file system can look and rename in one step.
    if (result != 0 && (errno == EINVAL || errno == ENOSYS)) {
        if (!mayReplace) requireFree(path_);
        result = ::rename(from, to);
    }
    if (result != 0 && errno == EEXIST) throw failureThere(path_);
    if (result != 0) throw systemFailureAt(path_, errno);
    temporaryPath_.clear();
}

void FileBeside::syncPlace() const {
    syncDirectoryOf(path_, path_);
}

void FileBeside::takeBack() noexcept {
    ::unlink(path_.c_str());
}

bool isSpecialFile(const std::string& path) {
    struct stat file {};
    return ::stat(path.c_str(), &file) == 0 && !S_ISREG(file.st_mode);
}

void requireFree(const std::string& path) {
    struct stat file {};
    if (::lstat(path.c_str(), &file) == 0 && !isSpecialFile(path)) throw failureThere(path);
}

}  // namespace zqpaths::program
