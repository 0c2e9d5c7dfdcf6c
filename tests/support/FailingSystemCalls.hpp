#pragma once
// System calls that fail, or end the process, at a chosen moment. The program that links
// FailingSystemCalls.cpp gets these replaced: open, pread, pwrite, ftruncate, fdatasync, fsync,
// flock, fchmod, mmap, link, rename and renameat2.
//
//     FailingSystemCalls calls(3, FailingSystemCalls::Effect::kFailsOnce, ENOSPC);
//     save();             // its third call fails with ENOSPC
//     calls.hasFailed();  // or it never made a third
//
// Threads: counts and fails only what the thread that made it calls.

#include <cstddef>

class FailingSystemCalls {
public:
    enum class Effect {
        kFailsOnce,    // the one call
        kFailsOnward,  // the call and all after it
        kEndsBefore,   // ends the process instead of the call
        kEndsWithin,   // writes half of what is to be written, then ends the process
    };

    /// The exit status of a process that is ended so.
    static constexpr int kEnded = 97;

    /// Fails the call with this number, counted from 1, until this ends.
    FailingSystemCalls(std::size_t number, Effect effect, int error) noexcept;
    FailingSystemCalls(const FailingSystemCalls&) = delete;
    FailingSystemCalls& operator=(const FailingSystemCalls&) = delete;
    ~FailingSystemCalls();

    bool hasFailed() const noexcept;
};

/// While this lives, calls of its thread that a signal can interrupt are interrupted each second
/// time, and reading and writing do one byte less than they are asked for.
class InterruptedSystemCalls {
public:
    InterruptedSystemCalls() noexcept;
    InterruptedSystemCalls(const InterruptedSystemCalls&) = delete;
    InterruptedSystemCalls& operator=(const InterruptedSystemCalls&) = delete;
    ~InterruptedSystemCalls();
};
