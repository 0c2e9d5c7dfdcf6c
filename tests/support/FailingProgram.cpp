// The part of the library that FailingProgram.hpp has loaded into programs which makes their calls
// fail as they are told by the environment.

#include "tests/support/FailingProgram.hpp"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>

namespace test_support {
namespace {

/// Tells by calls that are not counted.
void tell(const char* call) noexcept {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in the program changes the environment
    const char* const file = std::getenv(kFailedCallVariable);
    if (file == nullptr) return;
    constexpr int kMode = 0600;
    const long opened =
        ::syscall(SYS_openat, AT_FDCWD, file, O_WRONLY | O_CREAT | O_CLOEXEC, kMode);
    ::syscall(SYS_write, opened, call, std::strlen(call));
    ::syscall(SYS_close, opened);
}

/// What fails from the time on that the library is loaded.
std::unique_ptr<FailingSystemCalls> makeFailing() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread yet
    const char* const text = std::getenv(kFailureVariable);
    if (text == nullptr) return nullptr;
    std::size_t number = 0;
    int effect = 0;
    int error = 0;
    std::istringstream(text) >> number >> effect >> error;
    return std::make_unique<FailingSystemCalls>(number,
                                                static_cast<FailingSystemCalls::Effect>(effect),
                                                error, FailingSystemCalls::Scope::kProcess, tell);
}

const std::unique_ptr<FailingSystemCalls> failing = makeFailing();

}  // namespace
}  // namespace test_support
