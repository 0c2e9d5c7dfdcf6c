#pragma once
// DeferredSignals lets work that must not be cut off clean up first: while it lives, SIGINT,
// SIGTERM and SIGHUP are only noted; when it is destroyed, one that came does what it does.
//
//     const DeferredSignals signals;
//     while (...) {
//         DeferredSignals::throwIfOneCame();  // between two steps
//         step();
//     }
//
// Where the work may have to wait for others before it has begun anything, a signal need not wait,
// too: it ends the process a second after it came.
//
//     const DeferredSignals::Wait wait;
//     writer.emplace(file);
//
// Handlers and not a mask: a signal goes to any thread of the process that does not block it, and
// some threads belong to others.
//
// Threads: at most one object at a time.

#include <csignal>
#include <vector>

namespace zqpaths::program {

class DeferredSignals {
public:
    DeferredSignals();
    DeferredSignals(const DeferredSignals&) = delete;
    DeferredSignals& operator=(const DeferredSignals&) = delete;
    ~DeferredSignals();

    /// Whether one came that waits for the end of an object; false if there is none.
    static bool isPending() noexcept;

    /// Throws Failure kFailed if one came; nobody reads it if the signal then ends the process.
    static void throwIfOneCame();

    /// Lives while an object does.
    class Wait {
    public:
        Wait() noexcept;
        Wait(const Wait&) = delete;
        Wait& operator=(const Wait&) = delete;
        ~Wait();
    };

private:
    struct Replaced {
        int signal;
        struct sigaction action;
    };

    std::vector<Replaced> replaced_;
};

}  // namespace zqpaths::program
