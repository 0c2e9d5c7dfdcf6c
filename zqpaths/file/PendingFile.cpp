#include "zqpaths/file/PendingFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iomanip>
#include <optional>
#include <span>
#include <sstream>
#include <string_view>
#include <utility>

#include "compressedpaths/store/Hashing.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/file/FileLock.hpp"

namespace zqpaths {
namespace {

/// The directory that a path is in, as people write it.
std::string parentOf(const std::string& path) {
    const std::string directory = directoryOf(path);
    return directory.substr(0, directory.find_last_not_of('/') + 1);
}

/// Removes a file that has the temporary name, once nobody writes it any more.
void removeFile(const std::string& path, const std::string& name, std::chrono::milliseconds wait) {
    const std::optional<SystemFile> left =
        openLocked(path, O_RDWR | O_NOFOLLOW | O_NONBLOCK, name, wait);
    if (left && ::unlink(path.c_str()) != 0 && errno != ENOENT) throw systemError(name, errno);
}

/// A file of this name that was not there before, and its lock.
SystemFile makeFile(const std::string& path, const std::string& name,
                    std::chrono::milliseconds wait) {
    while (true) {
        SystemFile file = SystemFile::tryOpen(path, O_RDWR | O_CREAT | O_EXCL, name);
        if (!file.isOpen() && errno == EEXIST) {
            removeFile(path, name, wait);
            continue;
        }
        // A directory that is not there is what is missing, not the file that is to be made.
        const bool isDirectoryMissing = !file.isOpen() && (errno == ENOENT || errno == ENOTDIR);
        if (isDirectoryMissing) throw systemError(parentOf(path), errno);
        if (!file.isOpen()) throw systemError(name, errno);
        try {
            // Between the two steps another process may take the file for one that was left.
            if (file.tryLock() && file.isAt(path)) return file;
        } catch (const Error&) {
            ::unlink(path.c_str());
            throw;
        }
    }
}

}  // namespace

PendingFile::PendingFile(std::string path, const std::string& name, std::chrono::milliseconds wait)
    : path_(std::move(path)),
      temporaryPath_(temporaryPathFor(path_)),
      file_(makeFile(temporaryPath_, name, wait)),
      process_(::getpid()) {}

PendingFile::~PendingFile() {
    if (!isPublished_ && process_ == ::getpid()) ::unlink(temporaryPath_.c_str());
}

void PendingFile::publish() {
    const char* const from = temporaryPath_.c_str();
    const char* const to = path_.c_str();
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) != 0) {
        // Not every file system can do that in one step; there, a second name does it.
        const bool isUnknown = errno == EINVAL || errno == ENOSYS;
        if (!isUnknown || ::link(from, to) != 0) {
            if (errno == EEXIST) throw Error(ErrorKind::kExists, file_.name(), kIsThere);
            throw systemError(file_.name(), errno);
        }
        ::unlink(from);
    }
    isPublished_ = true;
    syncDirectoryOf(path_, file_.name());
}

void PendingFile::publishInPlace() {
    if (::rename(temporaryPath_.c_str(), path_.c_str()) != 0)
        throw systemError(file_.name(), errno);
    isPublished_ = true;
    syncDirectoryOf(path_, file_.name());
}

void PendingFile::removeLeft(const std::string& path) {
    try {
        const std::string temporary = temporaryPathFor(path);
        removeFile(temporary, temporary, std::chrono::milliseconds{0});
    } catch (const Error&) {
        // Somebody is writing it, or it belongs to somebody else: then it is not for us to remove.
        return;
    }
}

std::string PendingFile::temporaryPathFor(const std::string& path) {
    const std::string directory = directoryOf(path);
    const std::string_view name = std::string_view(path).substr(directory.size());
    std::ostringstream digits;
    constexpr int kDigits = 16;
    digits << std::hex << std::setw(kDigits) << std::setfill('0')
           << compressedpaths::hashOf(name.data(), name.size(), 0);
    return directory + ".zqpaths-" + digits.str();
}

void writeInPlace(const std::string& path, std::string_view bytes) {
    PendingFile pending(path, path, kWriterWait);
    pending.file().writeAt(0, std::as_bytes(std::span(bytes)));
    pending.file().sync();
    pending.publishInPlace();
}

}  // namespace zqpaths
