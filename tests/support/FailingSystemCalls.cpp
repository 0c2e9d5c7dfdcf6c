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

namespace {

using Effect = FailingSystemCalls::Effect;

thread_local std::size_t made = 0;
thread_local std::size_t failingFirst = 0;  // 0 fails nothing
thread_local Effect effectOfFailure = Effect::kFailsOnce;
thread_local int errorOfFailure = 0;
thread_local bool failedAny = false;
thread_local bool interrupts = false;
thread_local bool interruptedLast = false;

enum class Turn { kWorks, kFails, kEndsWithin };

/// What happens to a call; errno is set if it fails.
Turn nextTurn() noexcept {
    if (failingFirst == 0) return Turn::kWorks;
    ++made;
    const bool isHit =
        made == failingFirst || (effectOfFailure == Effect::kFailsOnward && made > failingFirst);
    if (!isHit) return Turn::kWorks;
    if (effectOfFailure == Effect::kEndsBefore) ::_exit(FailingSystemCalls::kEnded);
    if (effectOfFailure == Effect::kEndsWithin) return Turn::kEndsWithin;
    failedAny = true;
    errno = errorOfFailure;
    return Turn::kFails;
}

bool isInterrupted() noexcept {
    interruptedLast = interrupts && !interruptedLast;
    if (interruptedLast) errno = EINTR;
    return interruptedLast;
}

std::size_t sizeOf(std::size_t wanted) noexcept {
    return interrupts && wanted > 1 ? wanted - 1 : wanted;
}

/// A call without a half: made, failed or the last one of the process.
template <class... Arguments>
long call(long number, Arguments... arguments) noexcept {
    const Turn turn = nextTurn();
    if (turn == Turn::kFails) return -1;
    const long result = ::syscall(number, arguments...);
    if (turn == Turn::kEndsWithin) ::_exit(FailingSystemCalls::kEnded);
    return result;
}

template <class... Arguments>
long interruptibleCall(long number, Arguments... arguments) noexcept {
    return isInterrupted() ? -1 : call(number, arguments...);
}

}  // namespace

FailingSystemCalls::FailingSystemCalls(std::size_t number, Effect effect, int error) noexcept {
    made = 0;
    failedAny = false;
    effectOfFailure = effect;
    errorOfFailure = error;
    failingFirst = number;
}

FailingSystemCalls::~FailingSystemCalls() {
    failingFirst = 0;
}

bool FailingSystemCalls::hasFailed() const noexcept {
    return failedAny;
}

InterruptedSystemCalls::InterruptedSystemCalls() noexcept {
    interrupts = true;
}

InterruptedSystemCalls::~InterruptedSystemCalls() {
    interrupts = false;
}

extern "C" {

int open(const char* path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    return static_cast<int>(interruptibleCall(SYS_openat, AT_FDCWD, path, flags, mode));
}

ssize_t pread(int file, void* bytes, size_t size, off_t offset) {
    return interruptibleCall(SYS_pread64, file, bytes, sizeOf(size), offset);
}

ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset) {
    if (isInterrupted()) return -1;
    const Turn turn = nextTurn();
    if (turn == Turn::kFails) return -1;
    const size_t written = turn == Turn::kEndsWithin ? size / 2 : sizeOf(size);
    const long result = ::syscall(SYS_pwrite64, file, bytes, written, offset);
    if (turn == Turn::kEndsWithin) ::_exit(FailingSystemCalls::kEnded);
    return result;
}

int ftruncate(int file, off_t size) noexcept {
    return static_cast<int>(interruptibleCall(SYS_ftruncate, file, size));
}

int fdatasync(int file) {
    return static_cast<int>(interruptibleCall(SYS_fdatasync, file));
}

int fsync(int file) {
    return static_cast<int>(interruptibleCall(SYS_fsync, file));
}

int flock(int file, int operation) noexcept {
    return static_cast<int>(interruptibleCall(SYS_flock, file, operation));
}

int fchmod(int file, mode_t mode) noexcept {
    return static_cast<int>(call(SYS_fchmod, file, mode));
}

void* mmap(void* address, size_t size, int protection, int flags, int file, off_t offset) noexcept {
    return std::bit_cast<void*>(call(SYS_mmap, address, size, protection, flags, file, offset));
}

int link(const char* from, const char* to) noexcept {
    return static_cast<int>(call(SYS_link, from, to));
}

int rename(const char* from, const char* to) noexcept {
    return static_cast<int>(call(SYS_rename, from, to));
}

int renameat2(int fromDirectory, const char* from, int toDirectory, const char* to,
              unsigned flags) noexcept {
    return static_cast<int>(call(SYS_renameat2, fromDirectory, from, toDirectory, to, flags));
}
}
