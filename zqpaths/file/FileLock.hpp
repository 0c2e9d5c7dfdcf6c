#pragma once
// One writer at a time has a file. Who comes meanwhile waits, then says who it is:
//
//     std::optional<SystemFile> file = openLocked("usr.zqp", O_RDWR, "usr.zqp", kWriterWait);
//     if (!file) ...  // there is no such file
//
// The lock is flock(2), which goes with the process however it ends.
//
// Threads: free functions without state.

#include <chrono>
#include <optional>
#include <string>

#include "zqpaths/file/SystemFile.hpp"

namespace zqpaths {

/// How long a writer waits for another.
inline constexpr std::chrono::milliseconds kWriterWait{5000};

/// The file that has this path once it is locked, since another may have taken its place while we
/// waited; nothing if there is none. `flags` are those of open(2). Throws Error with `name`: kHeld
/// if another has the lock for longer than `wait`, or for what the system refuses.
std::optional<SystemFile> openLocked(const std::string& path, int flags, const std::string& name,
                                     std::chrono::milliseconds wait);

/// Who has the lock of a file, as the system tells it: "zqpaths (process 4711)"; "another program"
/// if the system does not tell.
std::string holderOf(const SystemFile& file);

}  // namespace zqpaths
