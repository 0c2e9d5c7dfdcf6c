#pragma once
// A list of paths in one buffer, which takes their bytes and one position each:
//
//     PathList paths;
//     paths.append("/usr/bin/x");
//     paths[0];  // "/usr/bin/x"
//
// Threads: a list belongs to one thread at a time.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace examples {

class PathList {
public:
    /// Appends a path. Amortised O(bytes).
    void append(std::string_view path) {
        text_.append(path);
        ends_.push_back(text_.size());
    }

    /// The path at `index`, counted from 0. Valid until the next append. O(1).
    std::string_view operator[](std::size_t index) const noexcept {
        const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
        return std::string_view(text_).substr(begin, ends_[index] - begin);
    }

    std::size_t size() const noexcept { return ends_.size(); }
    std::size_t byteSize() const noexcept { return text_.size(); }  // of all paths

private:
    std::string text_;               // the paths, end to end
    std::vector<std::size_t> ends_;  // in text_, of each path
};

}  // namespace examples
