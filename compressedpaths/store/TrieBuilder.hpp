#pragma once
// TrieBuilder makes an arena from structure bytes and keys, as they stand in the saved form.
// Between reading the shape and building, tracks can be followed and places be marked:
//
//     TrieBuilder builder(structure, keys.size());
//     builder.markFiles(builder.nodeAt(track, track.size()), 0, fileCount);
//     std::shared_ptr<PathArena> arena = builder.build(keys);
//     builder.placeOf(builder.nodeAt(...));
//
// What stays of a shape that is damaged is what stands before the damage; error() says what it was.
//
// Threads: belongs to one thread.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "compressedpaths/store/FlatArray.hpp"
#include "compressedpaths/store/PathArena.hpp"

namespace compressedpaths {

class TrieBuilder {
public:
    /// A node in pre-order, from 0 on; kRootNode is above them all.
    using Node = std::uint32_t;
    static constexpr Node kRootNode = 0xFFFFFFFF;
    static constexpr Node kNoNode = 0xFFFFFFFE;

    enum class Error : std::uint8_t { kNone, kUnknownNodeType, kIncomplete };

    /// The keys of the nodes, in a list, or each after its length as `lengthSize` bytes.
    class Keys {
    public:
        explicit Keys(const std::vector<std::vector<std::uint8_t>>& list) noexcept : list_(&list) {}
        /// `lengthAt` says where in `bytes` the length of each key stands, and the key after it.
        Keys(const std::uint8_t* bytes, const std::uint64_t* lengthAt, unsigned lengthSize) noexcept
            : bytes_(bytes), lengthAt_(lengthAt), lengthSize_(lengthSize) {}

        std::span<const std::uint8_t> operator[](Node node) const {
            if (list_ != nullptr) return (*list_)[node];
            const std::uint8_t* const key = bytes_ + lengthAt_[node] + lengthSize_;
            std::size_t size = 0;
            for (unsigned i = 1; i <= lengthSize_; ++i) size = size << 8 | *(key - i);
            return {key, size};
        }

    private:
        const std::vector<std::vector<std::uint8_t>>* list_ = nullptr;
        const std::uint8_t* bytes_ = nullptr;
        const std::uint64_t* lengthAt_ = nullptr;
        unsigned lengthSize_ = 0;
    };

    /// Reads the shape; there is a key for the first `keyCount` nodes. Empty bytes are an empty
    /// trie. Throws SetTooLargeException. O(structure bytes).
    TrieBuilder(std::span<const std::uint8_t> structure, std::size_t keyCount);

    Error error() const noexcept { return error_; }
    [[noreturn]] static void raise(Error error);

    std::size_t nodeCount() const noexcept { return branchOf_.size(); }
    std::size_t leafCount() const noexcept { return leafCount_; }

    std::uint32_t childCount(Node node) const noexcept;
    /// Requires that there is such a child. O(1).
    Node childOf(Node node, std::size_t position) const noexcept;
    /// The node that the first positions of a track lead to, or kNoNode. O(levels).
    Node nodeAt(std::span<const std::size_t> track) const noexcept;

    /// Says that some children of a folder were added as its files, though they may be folders now:
    /// they will stand in one run. What is beyond its children is ignored. O(1).
    void markFiles(Node folder, std::uint64_t first, std::uint64_t count) noexcept;
    /// Says that a node is asked for as a folder, though it may have no children. O(1).
    void markFolder(Node node);

    /// Throws SetTooLargeException. O(bytes of the keys).
    std::shared_ptr<PathArena> build(const Keys& keys);

    // --- After building.

    PathArena::Id folderOf(Node node) const noexcept;  // of one with children or marked
    /// The child of a folder at a position, which there is. O(1).
    PathArena::Place placeOf(Node folder, std::size_t position) const;

private:
    static constexpr std::uint32_t kLeaf = 0xFFFFFFFF;

    /// A node with children, or one that is asked for as a folder. The root is the first.
    struct Branch {
        std::uint32_t firstChild;  // in children_
        std::uint32_t childCount;
        PathArena::Id folder;
    };

    std::uint32_t branchOf(Node node) const noexcept {
        return node == kRootNode ? 0 : branchOf_[node];
    }
    std::size_t readShape(std::span<const std::uint8_t> structure, std::size_t keyCount);
    void listChildren(std::span<const std::uint8_t> structure);
    bool isFile(std::size_t child) const noexcept;
    void buildRun(const Keys& keys, const Branch& branch, std::uint32_t begin);
    PathArena::Id buildFolder(const Keys& keys, PathArena::Id parent, std::uint32_t position,
                              std::uint32_t child);

    Error error_ = Error::kNone;
    std::size_t leafCount_ = 0;
    FlatArray<std::uint32_t> branchOf_;  // by node: in branches_, or kLeaf
    FlatArray<Branch> branches_;
    FlatArray<Node> children_;          // of all branches, one after the other
    FlatArray<std::int32_t> marks_;     // by child: marked ranges that begin less those that end
    FlatArray<PathArena::Link> items_;  // by child: the item that it stands in
    std::shared_ptr<PathArena> arena_;
};

}  // namespace compressedpaths
