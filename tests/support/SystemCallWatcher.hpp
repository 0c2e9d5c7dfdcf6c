#pragma once
// Who is told of all that a process does to files by the calls of FailingSystemCalls.cpp, after it
// is done:
//
//     class Counter final : public SystemCallWatcher { ... };
//     Counter counter;
//     SystemCallWatcher::watch(&counter);
//     save();
//     SystemCallWatcher::watch(nullptr);
//
// Threads: is told of the calls of all threads, on the thread that makes them.

#include <cstddef>
#include <cstdint>
#include <span>

class SystemCallWatcher {
public:
    SystemCallWatcher() = default;
    SystemCallWatcher(const SystemCallWatcher&) = delete;
    SystemCallWatcher& operator=(const SystemCallWatcher&) = delete;
    virtual ~SystemCallWatcher() = default;

    virtual void madeFile(const char* path, int file) = 0;
    virtual void wrote(int file, std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    virtual void truncated(int file, std::uint64_t size) = 0;
    virtual void synced(int fileOrFolder) = 0;
    virtual void linked(const char* from, const char* to) = 0;
    virtual void renamed(const char* from, const char* to) = 0;
    virtual void unlinked(const char* path) = 0;
    virtual void madeFolder(const char* path) = 0;
    virtual void removedFolder(const char* path) = 0;

    /// Nobody with nullptr.
    static void watch(SystemCallWatcher* watcher) noexcept;
};
