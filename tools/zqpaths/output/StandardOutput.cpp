#include "tools/zqpaths/output/StandardOutput.hpp"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string_view>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/progress/Progress.hpp"

namespace zqpaths::program {
namespace {

/// Waits until a descriptor that must not block can be written to.
void awaitWritable(int descriptor) {
    pollfd waiting{descriptor, POLLOUT, 0};
    poll(&waiting, 1, -1);
}

void writeAll(const OutputPlace& place, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(place.descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            awaitWritable(place.descriptor);
        } else if (errno == EPIPE) {
            throw ClosedPipe();
        } else if (errno != EINTR) {
            throw systemFailureAt(place.name, errno);
        }
    }
}

}  // namespace

void endByClosedPipe() noexcept {
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    static_cast<void>(raise(SIGPIPE));
}

void StandardOutput::flush() {
    if (buffer_.empty()) return;
    const Progress::Room room;  // it may go to the same terminal
    writeAll(place_, buffer_);
    buffer_.clear();
}

}  // namespace zqpaths::program
