#pragma once
// Tries whose keys are letters, as tests write and read them:
//
//     BPathTree tree;
//     addSingle(tree, path("ab"));  // the component a, then b
//     EXPECT_EQ(walked(tree), (std::vector<Path>{path("ab")}));

#include <string_view>
#include <utility>
#include <vector>

#include "compressedpaths/BPathTree.hpp"

namespace compressedpaths {

using Track = std::vector<std::size_t>;

inline Bytes key(char letter) {
    return {static_cast<std::uint8_t>(letter)};
}

/// One component a letter.
inline Path path(std::string_view letters) {
    Path components;
    for (const char letter : letters) components.push_back(key(letter));
    return components;
}

/// Whether the path was there, and the positions of its components that were.
inline std::pair<bool, Track> addSingle(BPathTree& tree, Path components) {
    Track existing;
    const bool existed = tree.addPath(components, existing);
    return {existed, existing};
}

/// All paths in the order of the walk, which is started anew.
inline std::vector<Path> walked(BPathTree& tree) {
    std::vector<Path> paths;
    for (tree.reset(); tree.hasNextPath();) tree.getNextPath(paths.emplace_back());
    return paths;
}

}  // namespace compressedpaths
