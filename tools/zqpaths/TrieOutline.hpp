#pragma once
// TrieOutline is what the structure bytes of a saved trie say without the names: how many nodes it
// has, how deep and how wide it is, and which folders hold the most files.
//
// A folder is a node with children, a file one without. Nodes have numbers from 0 on, in pre-order;
// the root has none.

#include <cstdint>
#include <span>
#include <vector>

namespace zqpaths {

struct TrieOutline {
    struct Folder {
        std::vector<std::uint64_t> track;  // the nodes from the top to the folder; none: the root
        std::uint64_t fileCount = 0;       // right in the folder
    };

    std::uint64_t nodeCount = 0;
    std::uint64_t folderCount = 0;  // the root not counted
    std::uint64_t fileCount = 0;
    std::uint64_t depth = 0;             // of the deepest node; those below the root have depth 1
    std::uint64_t fileDepthSum = 0;      // over all files
    std::uint64_t widest = 0;            // the most children of a node or of the root
    std::vector<Folder> largestFolders;  // most files first, of equal ones the first in the trie
};

/// Reads the bytes up to the end of the trie, and finds up to `folderLimit` folders. Throws Failure
/// kDamaged with the position of a byte that stands for no kind of node, or if bytes are missing.
/// O(nodes log folderLimit).
TrieOutline outlineTrie(std::span<const std::uint8_t> structure, std::size_t folderLimit);

}  // namespace zqpaths
