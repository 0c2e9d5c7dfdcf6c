#include "tools/zqpaths/StandardStreams.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {

void reserveStandardStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF) continue;
        // Opened the wrong way round on purpose; the lowest free descriptor is this one.
        const int direction = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (open("/dev/null", direction) != descriptor)
            throw Failure(ExitStatus::kFailed, "/dev/null cannot be opened");
    }
}

}  // namespace zqpaths::program
