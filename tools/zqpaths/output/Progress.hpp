#pragma once
// Progress shows on standard error how far a long work is: items, rate, and the time left where the
// total is known. Nothing is shown unless that is a terminal and the work takes over a second.
//
//     Progress progress("indexing", messages, total);
//     progress.advance();
//
// It is one line, drawn anew at most ten times a second, without colours, and gone when the object
// is destroyed.
//
// Threads: an object belongs to one thread; at most one lives at a time.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/zqpaths/arguments/SharedOptions.hpp"

namespace zqpaths::program {

class Progress {
public:
    /// What the work does meanwhile on standard output. Paths that are printed on a terminal show
    /// by themselves how far it is, and a line among them would be in their way.
    enum class Prints { kNothing, kPaths };

    Progress(std::string work, const MessageOptions& messages,
             std::optional<std::uint64_t> total = std::nullopt, Prints prints = Prints::kNothing);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /// O(1); the clock is read now and then only.
    void advance(std::uint64_t items = 1) {
        done_ += items;
        if (done_ >= nextLook_) look();
    }

    /// Takes the line away, until it is drawn again, if there is one. To be called before something
    /// else is written on standard error.
    static void makeRoom();

private:
    using Clock = std::chrono::steady_clock;

    void look();
    void draw(double seconds);
    void erase();

    std::string work_;
    std::optional<std::uint64_t> total_;
    std::size_t drawnWidth_ = 0;  // of the line on the terminal
    std::uint64_t done_ = 0;
    std::uint64_t nextLook_ = 1;  // items until the clock is read again; beyond all if not shown
    std::uint64_t stride_ = 1;    // items between two looks
    Clock::time_point start_;
    Clock::time_point lastLook_;
    Clock::time_point lastDrawn_;
};

}  // namespace zqpaths::program
