#pragma once
// SystemFile is an open file of the system. Its calls go on after an interruption by a signal and
// until all is done, and throw Error with the name that people know the file by:
//
//     SystemFile file = SystemFile::open(".zqpaths-17", O_RDWR | O_CREAT, "usr.zqp");
//     file.writeAt(4096, bytes);
//     file.sync();  // throws Error "usr.zqp: there is no space left on the device"
//
// Threads: reading may go on on any number of threads; all else belongs to one thread at a time.

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "zqpaths/Export.hpp"
#include "zqpaths/file/FileDescriptor.hpp"

namespace zqpaths {

class SystemFile {
public:
    /// Of no open file.
    SystemFile() noexcept = default;
    SystemFile(SystemFile&& other) noexcept { *this = std::move(other); }
    SystemFile& operator=(SystemFile&& other) noexcept;
    ~SystemFile() { close(); }

    /// Opens with flags of open(2), besides O_CLOEXEC. A new file may be read and written by those
    /// whom the mask of the process allows it. Throws Error.
    static SystemFile open(const std::string& path, int flags, std::string name);

    /// As open; of no open file, with errno, if it cannot be opened.
    static SystemFile tryOpen(const std::string& path, int flags, std::string name);

    bool isOpen() const noexcept { return descriptor_.isOpen(); }
    int number() const noexcept { return descriptor_.number(); }
    const std::string& name() const noexcept { return name_; }

    struct stat status() const;
    std::uint64_t size() const { return static_cast<std::uint64_t>(status().st_size); }

    /// True if this is the file that has the path now: another may have been renamed to it.
    bool isAt(const std::string& path) const;

    /// Fills `bytes` with those from `offset` on; fewer only where the file ends. Returns how many.
    std::size_t readAt(std::uint64_t offset, std::span<std::byte> bytes) const;

    /// All of them; after an error any part may have been written.
    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes);

    void truncate(std::uint64_t size);

    /// Puts what was written on the device.
    void sync();

    /// Gives the file the mode of another, and its owner and group as far as the process may.
    void takeRightsOf(const struct stat& other);

    /// Locks the file for this one among all that are open, in any process; false if another has
    /// it. The lock goes when this process closes the file, or ends with all that it forked since.
    bool tryLock();

    void close() noexcept;

private:
    FileDescriptor descriptor_;
    std::string name_;
    pid_t lockedBy_ = 0;  // by none of this
};

/// Throws Error kNotASet if it is a directory, a device or a pipe.
void requireRegularFile(const SystemFile& file);

/// Puts the names in the directory of `path` on the device, where that can be done. Throws Error
/// with `name`.
ZQPATHS_EXPORT void syncDirectoryOf(const std::string& path, const std::string& name);

/// What stands before the last component of a path, with its separator; empty for a mere name.
std::string directoryOf(const std::string& path);

/// What `path` is a symbolic link to, which a new file takes the place of, so that the link stays;
/// `path` if there is nothing.
std::string withoutLinks(const std::string& path);

}  // namespace zqpaths
