#include "tools/zqpaths/progress/Progress.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
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

/// The terminal is of a kind while it lives; no TERM if that is null.
class TerminalKind {
public:
    explicit TerminalKind(const char* kind) {
        if (kind == nullptr)
            unsetenv("TERM");
        else
            setenv("TERM", kind, 1);
    }
    TerminalKind(const TerminalKind&) = delete;
    TerminalKind& operator=(const TerminalKind&) = delete;
    ~TerminalKind() { setenv("TERM", kept_.c_str(), 1); }

private:
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
    const std::string kept_ = std::getenv("TERM") == nullptr ? "xterm" : std::getenv("TERM");
};

/// Long enough for a line to be drawn, and drawn again.
void work() {
    std::this_thread::sleep_for(1'250ms);
}

TEST(Progress, showsItemsRateAndTimeLeftOnATerminal) {
    const TerminalKind kind("xterm");
    const TerminalAsStandardError terminal;
    std::string shown;
    {
        Progress progress("reading", {}, 1'000'000);
        progress.advance(1000);
        work();
        shown = terminal.read();
    }
    EXPECT_NE(shown.find("reading: 1,000 of 1,000,000 paths, "), std::string::npos) << shown;
    EXPECT_NE(shown.find("/s, 0%, "), std::string::npos) << shown;
    EXPECT_NE(shown.find(" left"), std::string::npos) << shown;
    EXPECT_EQ(shown.find('\n'), std::string::npos) << shown;
    EXPECT_TRUE(shown.ends_with("\x1b[J\x1b[?7h\r")) << shown;
    EXPECT_EQ(terminal.read(), "\r\x1b[J");
}

TEST(Progress, livesWhateverItWaitsFor) {
    const TerminalKind kind("xterm");
    const TerminalAsStandardError terminal;
    const Progress progress("reading", {});
    work();
    const std::string shown = terminal.read();
    EXPECT_NE(shown.find("reading: 1 s"), std::string::npos) << shown;
    EXPECT_EQ(shown.find("left"), std::string::npos) << shown;
    EXPECT_GE(std::ranges::count(shown, '\r'), 4);  // two of each drawing
}

TEST(Progress, goesThroughPhases) {
    const TerminalKind kind("xterm");
    const TerminalAsStandardError terminal;
    Progress progress("verifying",
                      {{"summing", WorkUnit::kBytes, 1}, {"reading", WorkUnit::kPaths, 1}}, {});
    progress.expect(2'000'000);
    progress.advance(1'000'000);
    work();
    EXPECT_NE(terminal.read().find("verifying: summing, 1 of 2 MB, 1 MB/s, 25%, "),
              std::string::npos);
    progress.begin(1, 10);
    progress.begin(1, 10);
    progress.advance(9);
    std::this_thread::sleep_for(250ms);
    const std::string shown = terminal.read();
    EXPECT_NE(shown.find("verifying: reading, 9 of 10 paths, "), std::string::npos) << shown;
    EXPECT_NE(shown.find("/s, 95%, 0 s left"), std::string::npos) << shown;
}

TEST(Progress, asksForThePartThatIsDone) {
    const TerminalKind kind("xterm");
    const TerminalAsStandardError terminal;
    Progress progress("reading", {});
    progress.expectBy([] { return 0.5; });
    progress.advance(3);
    work();
    const std::string shown = terminal.read();
    EXPECT_NE(shown.find("reading: 3 paths, 3/s, 50%, 1 s left"), std::string::npos) << shown;
}

TEST(Progress, foretellsByTimeWhatCannotBeCounted) {
    const TerminalKind kind("xterm");
    const TerminalAsStandardError terminal;
    Progress progress("packing",
                      {{"reading", WorkUnit::kPaths, 1}, {"packing", WorkUnit::kPaths, 9}}, {});
    std::this_thread::sleep_for(500ms);
    progress.begin(1);
    std::this_thread::sleep_for(750ms);  // of 4.5 seconds
    const std::string shown = terminal.read();
    EXPECT_NE(shown.find("packing: packing, 1 s, 2"), std::string::npos) << shown;
    EXPECT_NE(shown.find("%, 4 s left"), std::string::npos) << shown;
}

TEST(Progress, makesRoomForMessages) {
    const TerminalKind kind("xterm");
    const TerminalAsStandardError terminal;
    const Progress progress("reading", {});
    work();
    ASSERT_NE(terminal.read(), "");
    const Progress::Room room;
    EXPECT_EQ(terminal.read(), "\r\x1b[J");
    std::this_thread::sleep_for(250ms);
    EXPECT_EQ(terminal.read(), "");
}

TEST(Progress, drawsOverNothingOnADumbTerminal) {
    for (const char* name : {"dumb", static_cast<const char*>(nullptr)}) {
        const TerminalKind kind(name);
        const TerminalAsStandardError terminal;
        {
            Progress progress("reading", {}, 8);
            progress.advance(2);
            work();
        }
        const std::string shown = terminal.read();
        EXPECT_TRUE(shown.starts_with("reading: 2 of 8 paths, 2/s, 25%, ")) << shown;
        EXPECT_TRUE(shown.ends_with(" left\r\n")) << shown;  // the terminal makes the \r
        EXPECT_EQ(std::ranges::count(shown, '\n'), 1) << shown;
        EXPECT_EQ(shown.find('\x1b'), std::string::npos) << shown;
    }
}

TEST(Progress, tellsProgramsFromTheBeginningToTheEnd) {
    testing::internal::CaptureStderr();
    {
        Progress progress("reading", {.quiet = true, .jsonProgress = true}, 8);
        progress.advance(8);
    }
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(told.starts_with(R"({"work":"reading","phase":null,"unit":"paths","done":)"))
        << told;
    EXPECT_NE(told.find(R"("done":8,"total":8,"part":1.0,"seconds":0.)"), std::string::npos)
        << told;
    EXPECT_EQ(std::ranges::count(told, '\n'), 2) << told;
}

TEST(Progress, isSilentDuringAShortWork) {
    const TerminalAsStandardError terminal;
    {
        Progress progress("reading", {});
        progress.advance();
        std::this_thread::sleep_for(200ms);
    }
    EXPECT_EQ(terminal.read(), "");
}

TEST(Progress, isSilentIfItIsNotWanted) {
    const TerminalAsStandardError terminal;
    for (const MessageOptions& messages :
         {MessageOptions{.quiet = true}, MessageOptions{.noProgress = true}}) {
        Progress progress("reading", messages);
        progress.advance();
        work();
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
        progress.advance();
        work();
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
