#include "tests/support/FailingSystemCalls.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "tests/support/SystemCallWatcher.hpp"

namespace {

using Turn = FailingSystemCalls::Turn;

thread_local FailingSystemCalls* failingInThread = nullptr;
std::atomic<FailingSystemCalls*> failingInProcess{nullptr};
std::atomic<SystemCallWatcher*> watcher{nullptr};
thread_local bool isTelling = false;  // what the watcher calls itself is its own affair
thread_local bool interrupts = false;
thread_local bool interruptedLast = false;

Turn nextTurn(const char* name, bool mayFail = true) noexcept {
    FailingSystemCalls* const failing = failingInThread ? failingInThread : failingInProcess.load();
    return failing && !isTelling ? failing->next(name, mayFail) : Turn::kWorks;
}

bool isInterrupted() noexcept {
    interruptedLast = interrupts && !interruptedLast;
    if (interruptedLast) errno = EINTR;
    return interruptedLast;
}

/// How many of the bytes a call reads or writes.
std::size_t sizeOf(std::size_t wanted, Turn turn) noexcept {
    if (turn == Turn::kEndsWithin) return wanted / 2;
    if (turn == Turn::kDoesHalf) return wanted - wanted / 2;  // never none, which means an end
    return interrupts && wanted > 1 ? wanted - 1 : wanted;
}

template <class... Arguments>
long callIn(Turn turn, long number, Arguments... arguments) noexcept {
    if (turn == Turn::kFails) return -1;
    const long result = ::syscall(number, arguments...);
    if (turn == Turn::kEndsWithin) ::_exit(FailingSystemCalls::kEnded);
    return result;
}

template <class... Arguments>
long call(const char* name, long number, Arguments... arguments) noexcept {
    return callIn(nextTurn(name), number, arguments...);
}

template <class... Arguments>
long interruptibleCall(const char* name, long number, Arguments... arguments) noexcept {
    return isInterrupted() ? -1 : call(name, number, arguments...);
}

/// A call that takes something back.
template <class... Arguments>
long certainCall(const char* name, long number, Arguments... arguments) noexcept {
    return callIn(nextTurn(name, false), number, arguments...);
}

/// A call that reads or writes.
template <class Bytes, class... Arguments>
long transfer(const char* name, long number, int file, Bytes bytes, std::size_t size,
              Arguments... arguments) noexcept {
    if (isInterrupted()) return -1;
    const Turn turn = nextTurn(name);
    return callIn(turn, number, file, bytes, sizeOf(size, turn), arguments...);
}

/// What a call has returned, after the watcher was told what it has done.
template <class Tell>
int told(long result, Tell tell) noexcept {
    SystemCallWatcher* const who = watcher;
    const int error = errno;
    if (result >= 0 && who != nullptr) {
        isTelling = true;
        tell(*who);
        isTelling = false;
    }
    errno = error;
    return static_cast<int>(result);
}

void tellWritten(int file, std::uint64_t offset, const void* bytes, long size) noexcept {
    told(size, [&](SystemCallWatcher& who) {
        who.wrote(file, offset,
                  {static_cast<const std::byte*>(bytes), static_cast<std::size_t>(size)});
    });
}

int openedAt(const char* name, int folder, const char* path, int flags, mode_t mode) noexcept {
    const bool isMade = watcher != nullptr && ::syscall(SYS_faccessat, folder, path, F_OK) != 0;
    const long file = interruptibleCall(name, SYS_openat, folder, path, flags, mode);
    return told(file, [&](SystemCallWatcher& who) {
        const int opened = static_cast<int>(file);
        if (isMade) who.madeFile(path, opened);
        if (!isMade && (flags & O_TRUNC) != 0) who.truncated(opened, 0);
    });
}

}  // namespace

FailingSystemCalls::FailingSystemCalls(std::size_t number, Effect effect, int error, Scope scope,
                                       Told told) noexcept
    : number_(number), effect_(effect), error_(error), scope_(scope), told_(told) {
    if (scope_ == Scope::kThread)
        failingInThread = this;
    else
        failingInProcess = this;
}

FailingSystemCalls::~FailingSystemCalls() {
    if (scope_ == Scope::kThread)
        failingInThread = nullptr;
    else
        failingInProcess = nullptr;
}

Turn FailingSystemCalls::next(const char* call, bool mayFail) noexcept {
    const std::size_t made = ++made_;
    const bool isHit = made == number_ || (effect_ == Effect::kFailsOnward && made > number_);
    if (!isHit) return Turn::kWorks;
    hasFailed_ = true;
    if (told_ != nullptr) told_(call);
    if (effect_ == Effect::kEndsBefore) ::_exit(kEnded);
    if (effect_ == Effect::kEndsWithin) return Turn::kEndsWithin;
    if (effect_ == Effect::kDoesHalf) return Turn::kDoesHalf;
    if (!mayFail) return Turn::kWorks;
    errno = error_;
    return Turn::kFails;
}

InterruptedSystemCalls::InterruptedSystemCalls() noexcept {
    interrupts = true;
}

InterruptedSystemCalls::~InterruptedSystemCalls() {
    interrupts = false;
}

void SystemCallWatcher::watch(SystemCallWatcher* who) noexcept {
    watcher = who;
}

extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return openedAt("open", AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return openedAt("openat", folder, path, flags, mode);
}

int stat(const char* path, struct stat* status) noexcept {
    return static_cast<int>(call("stat", SYS_newfstatat, AT_FDCWD, path, status, 0));
}

int lstat(const char* path, struct stat* status) noexcept {
    return static_cast<int>(
        call("lstat", SYS_newfstatat, AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW));
}

int fstat(int file, struct stat* status) noexcept {
    return static_cast<int>(call("fstat", SYS_fstat, file, status));
}

ssize_t read(int file, void* bytes, size_t size) {
    return transfer("read", SYS_read, file, bytes, size);
}

ssize_t pread(int file, void* bytes, size_t size, off_t offset) {
    return transfer("pread", SYS_pread64, file, bytes, size, offset);
}

ssize_t write(int file, const void* bytes, size_t size) {
    const off_t offset = watcher != nullptr ? ::lseek(file, 0, SEEK_CUR) : -1;
    const long result = transfer("write", SYS_write, file, bytes, size);
    if (offset >= 0) tellWritten(file, static_cast<std::uint64_t>(offset), bytes, result);
    return result;
}

ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset) {
    const long result = transfer("pwrite", SYS_pwrite64, file, bytes, size, offset);
    tellWritten(file, static_cast<std::uint64_t>(offset), bytes, result);
    return result;
}

int ftruncate(int file, off_t size) noexcept {
    return told(interruptibleCall("ftruncate", SYS_ftruncate, file, size),
                [&](auto& who) { who.truncated(file, static_cast<std::uint64_t>(size)); });
}

int fdatasync(int file) {
    return told(interruptibleCall("fdatasync", SYS_fdatasync, file),
                [&](auto& who) { who.synced(file); });
}

int fsync(int file) {
    return told(interruptibleCall("fsync", SYS_fsync, file), [&](auto& who) { who.synced(file); });
}

int flock(int file, int operation) noexcept {
    return static_cast<int>(interruptibleCall("flock", SYS_flock, file, operation));
}

int fchmod(int file, mode_t mode) noexcept {
    return static_cast<int>(call("fchmod", SYS_fchmod, file, mode));
}

void* mmap(void* address, size_t size, int protection, int flags, int file, off_t offset) noexcept {
    return std::bit_cast<void*>(
        call("mmap", SYS_mmap, address, size, protection, flags, file, offset));
}

int link(const char* from, const char* to) noexcept {
    return told(call("link", SYS_link, from, to), [&](auto& who) { who.linked(from, to); });
}

int rename(const char* from, const char* to) noexcept {
    return told(call("rename", SYS_rename, from, to), [&](auto& who) { who.renamed(from, to); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned flags) noexcept {
    return told(call("renameat2", SYS_renameat2, fromFolder, from, toFolder, to, flags),
                [&](auto& who) { who.renamed(from, to); });
}

int mkdir(const char* path, mode_t mode) noexcept {
    return told(call("mkdir", SYS_mkdir, path, mode), [&](auto& who) { who.madeFolder(path); });
}

int unlink(const char* path) noexcept {
    return told(certainCall("unlink", SYS_unlink, path), [&](auto& who) { who.unlinked(path); });
}

int rmdir(const char* path) noexcept {
    return told(certainCall("rmdir", SYS_rmdir, path), [&](auto& who) { who.removedFolder(path); });
}
}
