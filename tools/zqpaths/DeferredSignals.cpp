#include "tools/zqpaths/DeferredSignals.hpp"

#include <unistd.h>

#include <atomic>
#include <string>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> noted{0};  // the first signal that came, 0 for none
static_assert(std::atomic<int>::is_always_lock_free, "a handler must not wait");

std::atomic<bool> isWaiting{false};

void endAsIfNoted() {
    static_cast<void>(std::signal(noted, SIG_DFL));
    static_cast<void>(raise(noted));
}

extern "C" void note(int signal) {
    int none = 0;
    noted.compare_exchange_strong(none, signal);
    if (isWaiting) alarm(1);
}

extern "C" void endWait(int /*alarm*/) {
    if (isWaiting) endAsIfNoted();
}

}  // namespace

DeferredSignals::DeferredSignals() {
    noted = 0;
    struct sigaction noting {};
    noting.sa_handler = note;
    noting.sa_flags = SA_RESTART;
    sigemptyset(&noting.sa_mask);
    for (const int signal : kSignals) {
        struct sigaction current {};
        sigaction(signal, nullptr, &current);
        if (current.sa_handler == SIG_IGN) continue;  // as under nohup
        replaced_.push_back({signal, current});
        sigaction(signal, &noting, nullptr);
    }
}

DeferredSignals::~DeferredSignals() {
    for (const Replaced& replaced : replaced_)
        sigaction(replaced.signal, &replaced.action, nullptr);
    if (const int signal = noted.exchange(0); signal != 0) static_cast<void>(raise(signal));
}

bool DeferredSignals::isPending() noexcept {
    return noted != 0;
}

void DeferredSignals::throwIfOneCame() {
    if (isPending()) throw Failure(ExitStatus::kFailed, "ended by signal " + std::to_string(noted));
}

DeferredSignals::Wait::Wait() noexcept {
    static_cast<void>(std::signal(SIGALRM, endWait));
    isWaiting = true;
}

DeferredSignals::Wait::~Wait() {
    isWaiting = false;
    alarm(0);
}

}  // namespace zqpaths::program
