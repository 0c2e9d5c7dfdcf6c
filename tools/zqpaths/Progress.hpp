#pragma once
// Progress shows on standard error how far a long work is: items, rate, and the time left where the
// total is known. Nothing is shown unless that is a terminal and the work takes over a second.
//
//     Progress progress("indexing", messages, total);
//     progress.advance();
//
// Its line is gone when it is destroyed.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/zqpaths/Options.hpp"

namespace zqpaths {

class Progress {
public:
    Progress(std::string work, const MessageOptions& messages,
             std::optional<std::uint64_t> total = std::nullopt);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /// O(1); the clock is read now and then only.
    void advance(std::uint64_t items = 1) {
        done_ += items;
        if (done_ >= nextLook_) look();
    }

private:
    void look();
    void draw(double seconds);

    std::string work_;
    std::optional<std::uint64_t> total_;
    bool isShown_;
    bool isDrawn_ = false;
    std::uint64_t done_ = 0;
    std::uint64_t nextLook_ = 1;
    std::chrono::steady_clock::time_point start_;
    std::chrono::steady_clock::time_point lastDrawn_;
};

}  // namespace zqpaths
