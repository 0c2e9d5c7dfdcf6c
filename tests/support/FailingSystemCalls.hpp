#pragma once
// System calls that fail, or end the process, at a chosen moment. The program that links
// FailingSystemCalls.cpp gets those replaced that look at files, change them, or put them on the
// device; its list is the one there is.
//
//     FailingSystemCalls calls(3, FailingSystemCalls::Effect::kFailsOnce, ENOSPC);
//     save();             // its third call fails with ENOSPC
//     calls.hasFailed();  // or it never made a third
//
// Calls that take something back, unlink and rmdir, end a process as others do and never fail: what
// is to be gone after a failure would stay then, and nobody could help it.
//
// Threads: counts and fails only what the thread that made it calls, or what all threads call.
// There is one at a time for a thread, and one for the process.

#include <atomic>
#include <cstddef>

class FailingSystemCalls {
public:
    enum class Effect {
        kFailsOnce,    // the one call
        kFailsOnward,  // the call and all after it
        kDoesHalf,     // reads or writes half of what it is asked for, as the system may
        kEndsBefore,   // ends the process instead of the call
        kEndsWithin,   // writes half of what is to be written, then ends the process
    };

    enum class Scope { kThread, kProcess };

    /// Is told the name of each call that something happens to, before it does.
    using Told = void (*)(const char* call) noexcept;

    /// The exit status of a process that is ended so.
    static constexpr int kEnded = 97;

    /// Fails the call with this number, counted from 1, until this ends.
    FailingSystemCalls(std::size_t number, Effect effect, int error, Scope scope = Scope::kThread,
                       Told told = nullptr) noexcept;
    FailingSystemCalls(const FailingSystemCalls&) = delete;
    FailingSystemCalls& operator=(const FailingSystemCalls&) = delete;
    ~FailingSystemCalls();

    bool hasFailed() const noexcept { return hasFailed_; }

    /// What happens to a call.
    enum class Turn { kWorks, kFails, kDoesHalf, kEndsWithin };

    /// Counts a call and says what happens to it; errno is set if it fails.
    Turn next(const char* call, bool mayFail) noexcept;

private:
    const std::size_t number_;
    const Effect effect_;
    const int error_;
    const Scope scope_;
    const Told told_;
    std::atomic<std::size_t> made_{0};
    std::atomic<bool> hasFailed_{false};
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
