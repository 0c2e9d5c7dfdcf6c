#include "tools/zqpaths/output/Progress.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>

namespace zqpaths::program {
namespace {

using namespace std::chrono_literals;

/// Standard error is a terminal of its own while it lives.
class TerminalAsStandardError {
public:
    TerminalAsStandardError() : kept_(dup(STDERR_FILENO)) {
        int terminal = -1;
        EXPECT_EQ(openpty(&seen_, &terminal, nullptr, nullptr, nullptr), 0);
        dup2(terminal, STDERR_FILENO);
        close(terminal);
        fcntl(seen_, F_SETFL, O_NONBLOCK);
    }
    TerminalAsStandardError(const TerminalAsStandardError&) = delete;
    TerminalAsStandardError& operator=(const TerminalAsStandardError&) = delete;
    ~TerminalAsStandardError() {
        dup2(kept_, STDERR_FILENO);
        close(kept_);
        close(seen_);
    }

    /// What was written since the last call.
    std::string read() const {
        std::string text;
        std::array<char, 4096> buffer{};
        for (ssize_t length = 0; (length = ::read(seen_, buffer.data(), buffer.size())) > 0;)
            text.append(buffer.data(), static_cast<std::size_t>(length));
        return text;
    }

private:
    int kept_;
    int seen_ = -1;
};

/// Passes items for longer than a progress is silent.
void advanceFor(Progress& progress, std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
        progress.advance();
        std::this_thread::sleep_for(1ms);
    }
}

TEST(Progress, showsItemsRateAndTimeLeftOnATerminal) {
    const TerminalAsStandardError terminal;
    std::string shown;
    {
        Progress progress("reading", {}, 1'000'000);
        advanceFor(progress, 1'300ms);
        shown = terminal.read();
    }
    EXPECT_TRUE(shown.starts_with("\rreading: ")) << shown;
    EXPECT_NE(shown.find(" of 1,000,000, "), std::string::npos) << shown;
    EXPECT_NE(shown.find("/s, "), std::string::npos) << shown;
    EXPECT_NE(shown.find(" left"), std::string::npos) << shown;
    EXPECT_EQ(shown.find('\n'), std::string::npos) << shown;
    EXPECT_EQ(shown.find('\x1b'), std::string::npos) << shown;

    const std::string cleared = terminal.read();
    EXPECT_EQ(cleared.front(), '\r');
    EXPECT_EQ(cleared.back(), '\r');
    EXPECT_EQ(cleared.find_first_not_of("\r "), std::string::npos) << cleared;
}

TEST(Progress, foretellsNoEndWithoutATotal) {
    const TerminalAsStandardError terminal;
    Progress progress("reading", {});
    advanceFor(progress, 1'300ms);
    const std::string shown = terminal.read();
    EXPECT_TRUE(shown.starts_with("\rreading: ")) << shown;
    EXPECT_EQ(shown.find(" of "), std::string::npos) << shown;
    EXPECT_EQ(shown.find("left"), std::string::npos) << shown;
}

TEST(Progress, makesRoomForMessages) {
    const TerminalAsStandardError terminal;
    Progress progress("reading", {});
    advanceFor(progress, 1'300ms);
    ASSERT_NE(terminal.read(), "");
    Progress::makeRoom();
    const std::string cleared = terminal.read();
    EXPECT_EQ(cleared.back(), '\r');
    EXPECT_EQ(cleared.find_first_not_of("\r "), std::string::npos) << cleared;
    Progress::makeRoom();
    EXPECT_EQ(terminal.read(), "");
}

TEST(Progress, isSilentDuringAShortWork) {
    const TerminalAsStandardError terminal;
    {
        Progress progress("reading", {});
        advanceFor(progress, 200ms);
    }
    EXPECT_EQ(terminal.read(), "");
}

TEST(Progress, isSilentIfItIsNotWanted) {
    const TerminalAsStandardError terminal;
    for (const MessageOptions& messages :
         {MessageOptions{true, false}, MessageOptions{false, true}}) {
        Progress progress("reading", messages);
        advanceFor(progress, 1'200ms);
    }
    EXPECT_EQ(terminal.read(), "");
}

TEST(Progress, isSilentIfStandardErrorIsNoTerminal) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_NONBLOCK), 0);
    const int kept = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    {
        Progress progress("reading", {});
        advanceFor(progress, 1'200ms);
    }
    dup2(kept, STDERR_FILENO);
    close(kept);
    close(ends[1]);
    char any = 0;
    EXPECT_EQ(::read(ends[0], &any, 1), 0) << any;
    close(ends[0]);
}

}  // namespace
}  // namespace zqpaths::program
