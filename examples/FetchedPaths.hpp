#pragma once
// Paths, fetched from a path set by number and decoded to the bytes that were added:
//
//     FetchedPaths fetched(set);
//     fetched.visit(1, 100, [](std::size_t number, std::string_view path) { ... });
//     fetched.at(7);
//
// Threads: belongs to one thread at a time, as the set does.

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "examples/PathList.hpp"

namespace examples {

class FetchedPaths {
public:
    using Visitor = std::function<void(std::size_t number, std::string_view path)>;

    /// `set` outlives this object.
    explicit FetchedPaths(compressedpaths::HuffmanPathTree& set) noexcept : set_(set) {}

    /// Calls `visitor` with the paths numbered `first` to `last`, in that order; the view is valid
    /// during the call. Throws what HuffmanPathTree::getPath throws. O(bytes).
    void visit(std::size_t first, std::size_t last, const Visitor& visitor);

    /// The path with this number, empty if the set gives none; valid until the next call. O(bytes
    /// of the path).
    std::string_view at(std::size_t number);

private:
    void decodeFolder(const compressedpaths::Path& folder);
    void decodeFile(const compressedpaths::Bytes& code);

    compressedpaths::HuffmanPathTree& set_;
    std::vector<double> numbers_;
    std::vector<compressedpaths::Path> folders_;
    std::vector<compressedpaths::Path> files_;
    std::string component_;
    std::string path_;
    std::size_t folderLength_ = 0;  // of path_
};

/// The number of the first of `paths` that the set gives back otherwise, if there is one; or of the
/// first one that it gives too many or too few. O(bytes).
std::optional<std::size_t> firstDifference(compressedpaths::HuffmanPathTree& set,
                                           const PathList& paths);

/// The number of paths that the walk through the set gives. O(bytes of their codes).
std::size_t countByWalk(compressedpaths::HuffmanPathTree& set);

}  // namespace examples
