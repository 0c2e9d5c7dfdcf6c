#pragma once
// Progress shows on standard error how far a long work is: the items of a phase, their rate, and
// one estimate of the time left over all phases where that can be known.
//
//     Progress progress("listing", messages, set.size());
//     progress.advance();
//
//     Progress progress("verifying", {{"summing", WorkUnit::kBytes, 1},
//                                     {"reading", WorkUnit::kPaths, 3}}, messages);
//     progress.begin(1, set.size());
//
// On a terminal it is one line, which begins when the work takes over a second, is drawn anew ten
// times a second whatever the work is waiting for, and is gone when the object is destroyed. A
// terminal that cannot draw over a line is given a new one every ten seconds. With --progress=line
// standard error is taken for a terminal that a person looks at. With --progress=json
// it is an object a line twice a second, one at once and one at the end, wherever standard error
// leads.
//
// Threads: an object is made, begins phases and ends on one thread, which is also the one that
// tells messages; at most one lives at a time. Any thread advances. A thread of its own draws, and
// takes no signals.

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/progress/ProgressText.hpp"
#include "tools/zqpaths/progress/WorkPhases.hpp"

namespace zqpaths::program {

class Progress {
public:
    /// What the work does meanwhile on standard output. Paths that are printed on a terminal show
    /// by themselves how far it is, and a line among them would be in their way.
    enum class Prints { kNothing, kPaths };

    /// A work of one phase that goes through paths.
    Progress(std::string work, const MessageOptions& messages,
             std::optional<std::uint64_t> total = std::nullopt, Prints prints = Prints::kNothing);

    Progress(std::string work, std::vector<WorkPhase> phases, const MessageOptions& messages,
             Prints prints = Prints::kNothing);

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /// So many items more of the phase that the work is in, or of any. O(1).
    void advance(std::uint64_t items = 1) noexcept {
        if (form_ != Form::kNone) phases_.advance(phases_.current(), items);
    }
    void advancePhase(std::size_t phase, std::uint64_t items) noexcept {
        phases_.advance(phase, items);
    }

    /// Goes on to a phase, unless the work is in it, that has so many items, if that is known. May
    /// also be called on the thread of a WorkWatcher.
    void begin(std::size_t phase, std::optional<std::uint64_t> total = std::nullopt);

    /// So many items the phase has that the work is in.
    void expect(std::uint64_t total) noexcept { phases_.expect(phases_.current(), total); }

    /// Asks `part` how much of the phase that the work is in is done, as long as that phase lasts;
    /// on the thread that draws.
    void expectBy(std::function<std::optional<double>()> part);

    /// While it lives, there is no line on the terminal. For who writes something else there.
    class Room {
    public:
        Room();
        Room(const Room&) = delete;
        Room& operator=(const Room&) = delete;
        ~Room() = default;

    private:
        std::unique_lock<std::mutex> lock_;
    };

private:
    using Clock = std::chrono::steady_clock;

    enum class Form {
        kNone,
        kLine,   // drawn over again
        kLines,  // one after the other
        kJson,   // an object a line
    };

    static Form formFor(const MessageOptions& messages, Prints prints);
    void start();
    void drawUntilEnd();
    void draw();
    void drawLine(const std::string& line);
    void erase();
    ProgressState state() const;
    std::optional<double> partOfPhase() const;

    const std::string work_;
    WorkPhases phases_;
    Form form_;
    const Clock::time_point start_ = Clock::now();

    std::mutex mutex_;  // of all below, and of what is on the terminal
    std::condition_variable ended_;
    bool isEnded_ = false;
    bool isDrawn_ = false;  // there is a line on the terminal
    std::size_t drawingCount_ = 0;
    Clock::time_point phaseStart_ = start_;
    std::function<std::optional<double>()> askedPart_;
    std::thread thread_;
};

}  // namespace zqpaths::program
