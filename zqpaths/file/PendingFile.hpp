#pragma once
// PendingFile is a file that appears under its name only when it is whole. Until then it has
// another name in the same directory, made from its own, and it is gone if it is not published:
//
//     PendingFile pending("usr.zqp", "usr.zqp", kWriterWait);
//     pending.file().writeAt(0, bytes);
//     pending.file().sync();
//     pending.publish();  // throws Error kExists if somebody has made usr.zqp meanwhile
//
// A process that is killed leaves its pending file. There is one at most, since whoever makes the
// next one for the same path removes it; the lock on it tells one that is left from one that is
// being written.
//
// Threads: a pending file belongs to one thread at a time. A child of the process that made it
// leaves it alone.

#include <sys/types.h>

#include <chrono>
#include <string>
#include <string_view>

#include "zqpaths/Export.hpp"
#include "zqpaths/file/SystemFile.hpp"

namespace zqpaths {

class PendingFile {
public:
    /// An empty file, locked, which is to have `path`; people know it as `name`. Throws Error:
    /// kHeld if another process makes the same file for longer than `wait`, or for what the system
    /// refuses.
    PendingFile(std::string path, const std::string& name, std::chrono::milliseconds wait);
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    ~PendingFile();

    SystemFile& file() noexcept { return file_; }

    /// Gives the file its path. Throws Error: kExists if there is a file, or for what the system
    /// refuses.
    void publish();

    /// Gives the file its path, in the place of one that may have it. Throws Error.
    void publishInPlace();

    /// True once the file has its path, even if the system then refused to put that on the device.
    bool isPublished() const noexcept { return isPublished_; }

    /// Removes what a killed process left for this path, unless it is being written.
    ZQPATHS_EXPORT static void removeLeft(const std::string& path);

    /// The name until then: short, because the one that the file is to have may be as long as
    /// names can be.
    static std::string temporaryPathFor(const std::string& path);

private:
    std::string path_;
    std::string temporaryPath_;
    SystemFile file_;
    pid_t process_;
    bool isPublished_ = false;
};

/// Gives a file these bytes, in the place of one that may be there, and puts them on the device.
/// Throws Error kHeld, kNoSpace or kSystem; what was there is then as it was.
ZQPATHS_EXPORT void writeInPlace(const std::string& path, std::string_view bytes);

}  // namespace zqpaths
