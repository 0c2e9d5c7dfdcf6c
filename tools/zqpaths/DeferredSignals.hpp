#pragma once
// DeferredSignals lets work that must not be cut off clean up first: while it lives, SIGINT,
// SIGTERM and SIGHUP are only noted; when it is destroyed, one that came does what it does.
//
//     DeferredSignals signals;
//     while (...) {
//         signals.throwIfOneCame();  // between two steps
//         step();
//     }
//
// Handlers and not a mask: a signal goes to any thread of the process that does not block it, and
// some threads belong to others.
//
// Threads: at most one object at a time.

#include <csignal>
#include <vector>

namespace zqpaths {

class DeferredSignals {
public:
    DeferredSignals();
    DeferredSignals(const DeferredSignals&) = delete;
    DeferredSignals& operator=(const DeferredSignals&) = delete;
    ~DeferredSignals();

    bool hasOneCome() const noexcept;

    /// Throws Failure kFailed if one came; nobody reads it if the signal then ends the process.
    void throwIfOneCame() const;

private:
    struct Replaced {
        int signal;
        struct sigaction action;
    };

    std::vector<Replaced> replaced_;
};

}  // namespace zqpaths
