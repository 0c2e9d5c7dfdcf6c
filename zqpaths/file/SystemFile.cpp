#include "zqpaths/file/SystemFile.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

constexpr mode_t kMode = 0666;  // less what the mask of the process takes away

/// What a system call gives that is not ended by a signal that came meanwhile.
template <class Call>
auto uninterrupted(Call call) {
    while (true) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

}  // namespace

SystemFile SystemFile::tryOpen(const std::string& path, int flags, std::string name) {
    SystemFile file;
    file.name_ = std::move(name);
    file.descriptor_ = FileDescriptor(
        uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC, kMode); }));
    return file;
}

SystemFile SystemFile::open(const std::string& path, int flags, std::string name) {
    SystemFile file = tryOpen(path, flags, std::move(name));
    if (!file.isOpen()) throw systemError(file.name_, errno);
    return file;
}

struct stat SystemFile::status() const {
    struct stat status {};
    if (::fstat(number(), &status) != 0) throw systemError(name_, errno);
    return status;
}

bool SystemFile::isAt(const std::string& path) const {
    struct stat there {};
    if (::stat(path.c_str(), &there) != 0) {
        if (errno == ENOENT) return false;
        throw systemError(name_, errno);
    }
    const struct stat here = status();
    return here.st_dev == there.st_dev && here.st_ino == there.st_ino;
}

std::size_t SystemFile::readAt(std::uint64_t offset, std::span<std::byte> bytes) const {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = uninterrupted([&] {
            return ::pread(number(), bytes.data() + done, bytes.size() - done,
                           static_cast<off_t>(offset + done));
        });
        if (count < 0) throw systemError(name_, errno);
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

void SystemFile::writeAt(std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = uninterrupted([&] {
            return ::pwrite(number(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        });
        if (count < 0) throw systemError(name_, errno);
        offset += static_cast<std::uint64_t>(count);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void SystemFile::truncate(std::uint64_t size) {
    if (uninterrupted([&] { return ::ftruncate(number(), static_cast<off_t>(size)); }) != 0)
        throw systemError(name_, errno);
}

void SystemFile::sync() {
    if (uninterrupted([&] { return ::fdatasync(number()); }) != 0) throw systemError(name_, errno);
}

void SystemFile::takeRightsOf(const struct stat& other) {
    const struct stat own = status();
    // The owner comes first, for a new owner takes rights away. Who may not give files away keeps
    // the new one.
    if (own.st_uid != other.st_uid || own.st_gid != other.st_gid)
        static_cast<void>(::fchown(number(), other.st_uid, other.st_gid) == 0);
    constexpr mode_t kRights = 07777;
    if (::fchmod(number(), other.st_mode & kRights) != 0) throw systemError(name_, errno);
}

bool SystemFile::tryLock() {
    if (uninterrupted([&] { return ::flock(number(), LOCK_EX | LOCK_NB); }) == 0) {
        lockedBy_ = ::getpid();
        return true;
    }
    if (errno == EWOULDBLOCK) return false;
    throw systemError(name_, errno);
}

void SystemFile::close() noexcept {
    // A forked child has the file open, too, and the lock with it: closing alone would leave it
    // there, and a child that closes must not take it from its parent.
    if (lockedBy_ != 0 && lockedBy_ == ::getpid()) ::flock(number(), LOCK_UN);
    lockedBy_ = 0;
    descriptor_.close();
}

SystemFile& SystemFile::operator=(SystemFile&& other) noexcept {
    close();
    descriptor_ = std::move(other.descriptor_);
    name_ = std::move(other.name_);
    lockedBy_ = std::exchange(other.lockedBy_, 0);
    return *this;
}

void requireRegularFile(const SystemFile& file) {
    const mode_t mode = file.status().st_mode;
    if (S_ISDIR(mode)) throw systemError(file.name(), EISDIR);
    if (!S_ISREG(mode)) throw Error(ErrorKind::kNotASet, file.name(), "is no regular file");
}

std::string directoryOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

std::string withoutLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> found(::realpath(path.c_str(), nullptr),
                                                            &std::free);
    return found ? found.get() : path;
}

void syncDirectoryOf(const std::string& path, const std::string& name) {
    const std::string directory = directoryOf(path);
    const SystemFile opened =
        SystemFile::tryOpen(directory.empty() ? "." : directory, O_RDONLY | O_DIRECTORY, name);
    // A directory may be one to be written but not read: the name is there then.
    if (!opened.isOpen() && errno == EACCES) return;
    if (!opened.isOpen()) throw systemError(name, errno);
    // Some file systems have nothing to write for a directory.
    if (uninterrupted([&] { return ::fsync(opened.number()); }) != 0 && errno != EINVAL)
        throw systemError(name, errno);
}

}  // namespace zqpaths
