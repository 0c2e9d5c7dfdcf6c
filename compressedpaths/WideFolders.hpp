#pragma once
// WideFolders finds a child by its key in folders of many children. The answer is that of a scan
// from the first child on; a scan alone would make adding to a folder quadratic in its sub-folders
// (with 100,000 folders side by side, 7.3 million paths took four times as long to add).
//
//     WideFolders wide;
//     wide.find(folder, key);  // position of the first child with this key, or WideFolders::kNone
//
// Nodes know nothing of it: children are only ever appended, so each search first takes in those
// that are new. It costs 8 to 16 bytes a child, and only in the folders that were searched.
//
// Threads: belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <vector>

#include "compressedpaths/BPathTree.hpp"

namespace compressedpaths {

class WideFolders {
public:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    static constexpr std::size_t kMinChildren = 64;  // with fewer, a scan is as fast
    static constexpr std::size_t kMaxChildren = std::numeric_limits<std::uint32_t>::max();

    /// The folder must live as long as this object and have kMinChildren to kMaxChildren children.
    /// Throws only std::bad_alloc. O(bytes of the key + children that are new), expected.
    std::size_t find(const BPathTree::BNode& folder, const Bytes& key);

private:
    using Children = std::vector<std::shared_ptr<BPathTree::BNode>>;

    /// The positions of one folder's children by the hash of their keys; of equal keys the first.
    struct Table {
        std::vector<std::uint32_t> slots;  // position + 1, 0 if free; a power of two, half free
        std::size_t childCount = 0;        // children that have been taken in

        std::size_t slotOf(const Children& children, const Bytes& key) const;
        void takeIn(const Children& children);
    };

    std::unordered_map<const BPathTree::BNode*, Table> tables_;
};

}  // namespace compressedpaths
