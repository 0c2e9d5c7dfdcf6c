#include "tools/zqpaths/output/Progress.hpp"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <utility>

#include "tools/zqpaths/output/Figures.hpp"

namespace zqpaths::program {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds kSilence{1.0};
constexpr Seconds kBetweenDrawings{0.1};
// The clock is read some fifty times a second however fast items come: the stride between two looks
// doubles while they come closer together than this, and halves while they come further apart.
constexpr Seconds kShortLook{0.01};
constexpr Seconds kLongLook{0.04};
constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t kUsualWidth = 80;

Progress* shownProgress = nullptr;  // the one that may have a line on the terminal

bool isWanted(const MessageOptions& messages, Progress::Prints prints) {
    if (messages.quiet || messages.noProgress || isatty(STDERR_FILENO) == 0) return false;
    return prints == Progress::Prints::kNothing || isatty(STDOUT_FILENO) == 0;
}

std::size_t terminalWidth() {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualWidth;
    return size.ws_col;
}

}  // namespace

Progress::Progress(std::string work, const MessageOptions& messages,
                   std::optional<std::uint64_t> total, Prints prints)
    : work_(std::move(work)), total_(total) {
    if (!isWanted(messages, prints)) {
        nextLook_ = kNever;
        return;
    }
    start_ = lastLook_ = lastDrawn_ = Clock::now();
    shownProgress = this;
}

Progress::~Progress() {
    if (shownProgress != this) return;
    erase();
    shownProgress = nullptr;
}

void Progress::makeRoom() {
    if (shownProgress != nullptr) shownProgress->erase();
}

void Progress::look() {
    const Clock::time_point now = Clock::now();
    const Seconds sinceLook = now - lastLook_;
    if (sinceLook < kShortLook) stride_ *= 2;
    if (sinceLook > kLongLook) stride_ = std::max<std::uint64_t>(stride_ / 2, 1);
    lastLook_ = now;
    nextLook_ = done_ + stride_;

    const Seconds sinceStart = now - start_;
    if (sinceStart < kSilence || now - lastDrawn_ < kBetweenDrawings) return;
    lastDrawn_ = now;
    draw(sinceStart.count());
}

void Progress::draw(double seconds) {
    const double rate = static_cast<double>(done_) / seconds;
    std::string line = work_ + ": " + groupDigits(done_);
    if (total_) line += " of " + groupDigits(*total_);
    line += ", " + fixedPoint(rate, 0) + "/s";
    if (total_ && rate > 0 && done_ <= *total_)
        line += ", " + durationText(static_cast<double>(*total_ - done_) / rate) + " left";

    // The last column stays free: some terminals go on to the next line after it.
    const std::size_t width = std::min(line.size(), terminalWidth() - 1);
    line.resize(std::max(width, drawnWidth_), ' ');
    std::fill(line.begin() + static_cast<std::ptrdiff_t>(width), line.end(), ' ');
    std::cerr << '\r' + line;
    drawnWidth_ = width;
}

void Progress::erase() {
    if (drawnWidth_ == 0) return;
    std::cerr << '\r' + std::string(drawnWidth_, ' ') + '\r';
    drawnWidth_ = 0;
}

}  // namespace zqpaths::program
