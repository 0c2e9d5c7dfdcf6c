#pragma once
// PathBuffer is some paths with their numbers, so that they can be made on one thread and visited
// on another:
//
//     PathBuffer paths;
//     paths.append(7, "/usr/bin/x");
//     paths.visit([](std::uint64_t number, std::string_view path) { ... });
//
// Threads: belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/PathVisitor.hpp"

namespace zqpaths {

class PathBuffer {
public:
    void append(std::uint64_t number, std::string_view path) {
        text_.append(path);
        ends_.push_back({number, text_.size()});
    }
    void reserve(std::size_t paths, std::size_t bytes) {
        ends_.reserve(paths);
        text_.reserve(bytes);
    }
    /// Keeps its memory.
    void clear() noexcept {
        text_.clear();
        ends_.clear();
    }

    /// True once it holds so much text that no more is to be read ahead: paths can be long, and
    /// many pieces wait for one another.
    bool isFull() const noexcept { return text_.size() >= kMuchText; }

    std::size_t size() const noexcept { return ends_.size(); }
    bool isEmpty() const noexcept { return ends_.empty(); }
    std::size_t textSize() const noexcept { return text_.size(); }
    std::string_view operator[](std::size_t position) const noexcept {
        const std::size_t begin = position == 0 ? 0 : ends_[position - 1].end;
        return std::string_view(text_).substr(begin, ends_[position].end - begin);
    }
    std::uint64_t numberAt(std::size_t position) const noexcept { return ends_[position].number; }

    /// The paths in order, or the last one first; false if the visitor stops.
    bool visit(PathVisitor visitor) const {
        for (std::size_t i = 0; i < size(); ++i)
            if (!visitor(ends_[i].number, (*this)[i])) return false;
        return true;
    }
    bool visitBackwards(PathVisitor visitor) const {
        for (std::size_t i = size(); i > 0; --i)
            if (!visitor(ends_[i - 1].number, (*this)[i - 1])) return false;
        return true;
    }

private:
    static constexpr std::size_t kMuchText = std::size_t{1} << 21;

    struct End {
        std::uint64_t number;
        std::size_t end;  // in the text
    };

    std::string text_;
    std::vector<End> ends_;
};

}  // namespace zqpaths
