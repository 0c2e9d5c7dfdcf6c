#include "tools/zqpaths/sources/Transfers.hpp"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

/// Waits until there is something to do for a descriptor. A signal may come just before the wait
/// begins, and would not end it: it is looked for again and again.
void await(int descriptor, short what) {
    constexpr int kMilliseconds = 100;
    pollfd waiting{descriptor, what, 0};
    while (::poll(&waiting, 1, kMilliseconds) <= 0) DeferredSignals::throwIfOneCame();
}

}  // namespace

std::size_t readSome(int descriptor, void* bytes, std::size_t size, std::string_view place) {
    while (true) {
        await(descriptor, POLLIN);
        const ssize_t count = ::read(descriptor, bytes, size);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR && errno != EAGAIN) throw systemFailureAt(place, errno);
    }
}

void writeAll(int descriptor, const void* bytes, std::size_t size, std::string_view place) {
    const auto* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t count = ::write(descriptor, next, size);
        if (count < 0 && errno != EINTR) throw systemFailureAt(place, errno);
        if (count <= 0) continue;
        next += count;
        size -= static_cast<std::size_t>(count);
    }
}

}  // namespace zqpaths::program
