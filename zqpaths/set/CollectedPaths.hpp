#pragma once
// CollectedPaths holds paths as bytes, one after the other, up to what one segment holds:
//
//     CollectedPaths paths;
//     while (paths.hasRoomFor(path)) paths.append(path);
//     paths[0];  // the first one
//
// A segment ends at kMaxPaths paths or kMaxTextSize bytes. Lists in which nearly every path is in
// folders of its own end one sooner, at kMaxFolders folders: a folder takes some eighty bytes while
// a segment is made, however short its name is.
//
// Threads: collecting belongs to one thread at a time; any number may read what is collected.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "compressedpaths/store/FlatArray.hpp"

namespace zqpaths {

class CollectedPaths {
public:
    static constexpr std::size_t kMaxPaths = std::size_t{1} << 20;
    static constexpr std::size_t kMaxTextSize = std::size_t{64} << 20;
    static constexpr std::size_t kMaxFolders = std::size_t{3} << 20;

    /// One path has room always. O(1).
    bool hasRoomFor(std::string_view path) const noexcept;

    /// Throws only std::bad_alloc; nothing has changed then. Amortised O(bytes).
    void append(std::string_view path);

    std::size_t size() const noexcept { return ends_.size(); }
    bool isEmpty() const noexcept { return ends_.isEmpty(); }
    std::string_view operator[](std::size_t position) const noexcept;

    /// Bytes of all paths, and one more for each.
    std::size_t textSize() const noexcept { return text_.size() + ends_.size(); }

    void clear() noexcept;  // keeps its memory

private:
    void countFolders(std::string_view path);

    compressedpaths::FlatArray<char> text_;
    compressedpaths::FlatArray<std::size_t> ends_;
    std::size_t folderCount_ = 0;  // at least as many as there are different ones
    // Hashes of folders that were met, each in the one place that its low bits say; a later one
    // takes the place of another. So a folder that was forgotten is counted again.
    std::vector<std::uint32_t> metFolders_;
};

}  // namespace zqpaths
