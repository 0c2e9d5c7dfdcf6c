#include "tools/zqpaths/CutShortFile.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>

#include "tools/zqpaths/ExitStatus.hpp"
#include "tools/zqpaths/output/Messages.hpp"

namespace zqpaths::program {
namespace {

// A handler may write and end the process, and little else: the text is made before.
std::array<char, 8192> message;
std::atomic<std::size_t> messageSize{0};
static_assert(std::atomic<std::size_t>::is_always_lock_free, "a handler must not wait");

extern "C" void tellAndEnd(int /*signal*/) {
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, message.data(), messageSize);
    ::_exit(static_cast<int>(ExitStatus::kFailed));
}

}  // namespace

void watchForCutShortFiles() noexcept {
    struct sigaction action {};
    action.sa_handler = tellAndEnd;
    sigemptyset(&action.sa_mask);
    sigaction(SIGBUS, &action, nullptr);
    nameWhatIsRead("a set");
}

void nameWhatIsRead(const std::string& files) {
    const std::string reason = " was cut short while it was read\n";
    std::string text = teller() + ": " + files + ":" + reason;
    if (text.size() > message.size()) text = teller() + ": a set" + reason;
    messageSize = 0;
    std::ranges::copy(text, message.begin());
    messageSize = text.size();
}

}  // namespace zqpaths::program
