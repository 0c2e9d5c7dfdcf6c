#include "tools/zqpaths/progress/Progress.hpp"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <string_view>
#include <system_error>
#include <utility>

#include "tools/zqpaths/output/Terminal.hpp"

namespace zqpaths::program {
namespace {

using namespace std::chrono_literals;
using Seconds = std::chrono::duration<double>;

constexpr std::chrono::milliseconds kSilence = 1s;  // before the first line
constexpr std::chrono::milliseconds kBetweenDrawings = 100ms;
constexpr std::chrono::milliseconds kBetweenLines = 10s;
constexpr std::chrono::milliseconds kBetweenObjects = 500ms;

// What turns shows that the program lives, also where nothing is counted.
constexpr std::array<std::string_view, 4> kAsciiWheel{"|", "/", "-", "\\"};
constexpr std::array<std::string_view, 10> kWheel{"⠋", "⠙", "⠹", "⠸", "⠼", "⠴", "⠦", "⠧", "⠇", "⠏"};

Progress* shownProgress = nullptr;  // the one that may have a line on the terminal

/// A job in the background leaves the terminal to that in front.
bool isInBackground() {
    const pid_t foreground = tcgetpgrp(STDERR_FILENO);
    return foreground >= 0 && foreground != getpgrp();
}

/// In one piece, so that no other line gets in between.
void write(const std::string& text) {
    // There is nobody left to tell that this failed.
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
}

}  // namespace

Progress::Progress(std::string work, const MessageOptions& messages,
                   std::optional<std::uint64_t> total, Prints prints)
    : Progress(std::move(work), {{"", WorkUnit::kPaths, 1}}, messages, prints) {
    if (total) expect(*total);
}

Progress::Progress(std::string work, std::vector<WorkPhase> phases, const MessageOptions& messages,
                   Prints prints)
    : work_(std::move(work)), phases_(std::move(phases)), form_(formFor(messages, prints)) {
    if (form_ == Form::kNone) return;
    start();
    shownProgress = this;
}

Progress::~Progress() {
    if (form_ == Form::kNone) return;
    shownProgress = nullptr;
    {
        const std::lock_guard lock(mutex_);
        isEnded_ = true;
    }
    ended_.notify_all();
    if (thread_.joinable()) thread_.join();
    erase();
    if (form_ == Form::kJson) draw();
}

Progress::Form Progress::formFor(const MessageOptions& messages, Prints prints) {
    if (messages.noProgress) return Form::kNone;
    if (messages.jsonProgress) return Form::kJson;
    const bool isInTheWay = prints == Prints::kPaths && isTerminal(STDOUT_FILENO);
    const bool isSeen = !messages.quiet && isTerminal(STDERR_FILENO) && !isInTheWay;
    if (!isSeen && !messages.lineProgress) return Form::kNone;
    const bool isDumb = environmentValue("TERM").value_or("dumb") == "dumb";
    return isDumb ? Form::kLines : Form::kLine;
}

/// Starts the thread that draws; where the system gives none, nothing is drawn. Signals are for
/// those that have work to give up.
void Progress::start() {
    sigset_t all;
    sigset_t former;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &former);
    try {
        thread_ = std::thread([this] { drawUntilEnd(); });
    } catch (const std::system_error&) {
        form_ = Form::kNone;
    }
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

void Progress::begin(std::size_t phase, std::optional<std::uint64_t> total) {
    const std::lock_guard lock(mutex_);
    if (total) phases_.expect(phase, *total);
    if (phases_.current() == phase) return;
    phases_.begin(phase);
    askedPart_ = nullptr;
    phaseStart_ = Clock::now();
}

void Progress::expectBy(std::function<std::optional<double>()> part) {
    const std::lock_guard lock(mutex_);
    askedPart_ = std::move(part);
}

void Progress::drawUntilEnd() {
    std::unique_lock lock(mutex_);
    const auto wait = [&](std::chrono::milliseconds time) {
        return ended_.wait_for(lock, time, [this] { return isEnded_; });
    };
    if (form_ != Form::kJson && wait(kSilence)) return;
    const std::chrono::milliseconds pause = form_ == Form::kJson    ? kBetweenObjects
                                            : form_ == Form::kLines ? kBetweenLines
                                                                    : kBetweenDrawings;
    do draw();
    while (!wait(pause));
}

void Progress::draw() {
    ++drawingCount_;
    if (form_ == Form::kJson)
        write(progressJson(state()) + '\n');
    else if (isInBackground())
        isDrawn_ = false;
    else if (form_ == Form::kLines)
        write(progressLine(state()) + '\n');
    else
        drawLine(progressLine(state()));
}

/// The cursor goes back to where the line begins. So it stays there if the terminal becomes
/// narrower and breaks the line, and all rows of it are cleared from there on. One that is drawn
/// before the new width is known here is cut by the terminal, which is told to break none
/// meanwhile.
void Progress::drawLine(const std::string& line) {
    static const bool isUtf8 = charsetOfLocale() == Charset::kUtf8;
    const std::string_view wheel = isUtf8 ? kWheel[drawingCount_ % kWheel.size()]
                                          : kAsciiWheel[drawingCount_ % kAsciiWheel.size()];
    // The wheel and a space take two columns; the last one stays free, for some terminals go on to
    // the next line after it.
    const std::size_t room = std::max<std::size_t>(terminalWidth(STDERR_FILENO), 3) - 3;
    write("\r\x1b[?7l" + std::string(wheel) + ' ' + line.substr(0, room) + "\x1b[J\x1b[?7h\r");
    isDrawn_ = true;
}

void Progress::erase() {
    if (isDrawn_) write("\r\x1b[J");
    isDrawn_ = false;
}

ProgressState Progress::state() const {
    const std::optional<double> part = partOfPhase();
    const std::size_t phase = phases_.current();
    const Clock::time_point now = Clock::now();
    return {.work = work_,
            .phase = phases_.phase(phase).name,
            .unit = phases_.phase(phase).unit,
            .done = phases_.done(phase),
            .total = phases_.total(phase),
            .part = part ? std::optional(phases_.partDone(*part)) : std::nullopt,
            .seconds = Seconds(now - start_).count(),
            .phaseSeconds = Seconds(now - phaseStart_).count()};
}

/// By what is asked or counted; else by the time, which the phases before it took for their share.
/// One that takes longer than that is not foretold.
std::optional<double> Progress::partOfPhase() const {
    if (askedPart_) return askedPart_();
    if (const auto counted = phases_.partOfCurrent()) return counted;
    const std::optional<double> share = phases_.shareForThoseBefore();
    if (!share) return std::nullopt;
    const Seconds expected = *share * (phaseStart_ - start_);
    const Seconds passed = Clock::now() - phaseStart_;
    if (passed >= expected) return std::nullopt;
    return passed / expected;
}

Progress::Room::Room() {
    if (shownProgress == nullptr) return;
    lock_ = std::unique_lock(shownProgress->mutex_);
    shownProgress->erase();
}

}  // namespace zqpaths::program
