#pragma once
// BPathTree is a trie of coded path components. A path is a list of components, root side first;
// folders that paths share are held once. A component is a byte string that the trie only compares.
//
//     BPathTree tree;
//     Path folder{{'a'}};
//     std::vector<Bytes> files{{'b'}, {'c'}};
//     std::vector<std::size_t> track;
//     std::size_t prior = 0;
//     tree.addPath(folder, files, track, prior);  // a/b and a/c; track == {0}
//
//     for (tree.reset(); tree.hasNextPath();) tree.getNextPath(path);  // a/b, then a/c
//
// Children keep the order in which they were added and are never removed, so a track (the child
// positions from the root to a node, counted from 0) stays valid for the life of the trie. A path
// ends at a leaf: a node without children.
//
// The trie stands in a PathArena. Copies share it: what is added through one is seen by all. Each
// has its own walk. Tries of any depth are walked and freed without recursion.
//
// Nodes with pointers, as some operations take them, are the caller's own: the trie has none.
//
// Threads: tries that share an arena belong to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stack>
#include <unordered_map>
#include <vector>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "compressedpaths/store/PathArena.hpp"

namespace compressedpaths {

using Bytes = std::vector<std::uint8_t>;
using Path = std::vector<Bytes>;

class BPathTree {
public:
    struct BNode {
        std::vector<std::uint8_t> key;                 // empty for the root
        std::vector<std::shared_ptr<BNode>> children;  // in the order of adding

        ~BNode();  // frees what hangs below without recursion and without asking for memory
    };
    using NodeStack = std::stack<std::shared_ptr<BNode>>;

    BPathTree();
    BPathTree(const BPathTree& other);  // shares the arena, copies the walk. O(depth of the walk)
    /// A trie that has been built elsewhere; its walk has not been started.
    explicit BPathTree(std::shared_ptr<PathArena> arena);
    BPathTree& operator=(const BPathTree&) = delete;
    virtual ~BPathTree();

    /// Adds one path. True if it was there as a whole. `existingIndices` grows by the positions of
    /// the leading components that were there; the others are moved into the trie and left empty.
    /// Throws SetTooLargeException. O(bytes), expected.
    bool addPath(Path& components, std::vector<std::size_t>& existingIndices);

    /// The same; `last` is where the last component is then, if there is any.
    bool addPath(Path& components, std::vector<std::size_t>& existingIndices,
                 PathArena::Place& last);

    /// Adds a folder and `fileNames` as new children of it, equal names included; new folder
    /// components and all file names are moved into the trie and left empty. True if the folder was
    /// there; then `priorChildCount` is the number of children it had, otherwise SIZE_MAX.
    /// `folderIndices` grows by the folder's track. With no folder components the files become
    /// children of the root and the result is false.
    /// Throws SetTooLargeException. O(bytes), expected.
    bool addPath(Path& folderComponents, std::vector<Bytes>& fileNames,
                 std::vector<std::size_t>& folderIndices, std::size_t& priorChildCount);

    /// The position of the first of `children` with this key; if there is none, a new node takes
    /// the key over at the end. O(children).
    std::size_t addIfExistsAndFind(std::vector<std::shared_ptr<BNode>>& children, Bytes& key,
                                   bool& existed) const;

    /// The position of the first of `children` with this key, or SIZE_MAX. O(children).
    std::size_t findNode(const Bytes& key,
                         const std::vector<std::shared_ptr<BNode>>& children) const;

    bool isLeaf(const std::shared_ptr<BNode>& node) const;

    /// Appends to `components` the keys on the way along `track`. Throws NoTreeToTraverseException
    /// on an empty trie, EmptyPathForTraverseException on an empty track, InvalidTrackException if
    /// the track leads to no node; `components` is then unchanged. O(bytes of the path).
    void traversePath(const std::vector<std::size_t>& track, Path& components);

    /// For each i, appends the folder of `folderTracks[entries[i]]` to `folders` and, to `files`,
    /// its files numbered `fileNumbers[i]`, counted from 1 from where the track says that the files
    /// begin: at child 0 of the node it leads to if that has children, otherwise at that node
    /// itself. Throws InvalidTrackException or InvalidFileNumberException if something is not
    /// there; both outputs are then unchanged. O(bytes appended + track positions).
    void getPath(std::vector<Path>& folders, std::vector<Path>& files,
                 const std::vector<std::size_t>& entries,
                 const std::vector<std::vector<std::size_t>>& folderTracks,
                 const std::vector<std::vector<std::size_t>>& fileNumbers);

    /// Starts the walk: every path once, children in their order. Does nothing on an empty trie.
    /// Paths that are added during a walk may be missed; start again after adding. O(top level).
    void reset();

    /// False also on a trie that was never reset. O(1).
    bool hasNextPath();

    /// Replaces `path` by the next one. Throws NoMorePathException if there is none; nothing has
    /// changed then. O(bytes of the path + children of the folders entered).
    void getNextPath(Path& path);

    /// The step of getNextPath for who wants no keys: calls `visit` with the folders of the next
    /// path, root side first, and its last component. If that throws, the walk stays where it was.
    using PathVisitor =
        std::function<void(std::span<const PathArena::Id> folders, const NameView& name)>;
    void visitNextPath(const PathVisitor& visit);
    Path keysOf(std::span<const PathArena::Id> folders, const NameView& name) const;

    /// Pushes the children of a node, last first, so that the first is on top; without a stack,
    /// onto one of the trie's own, which serves such walks by hand alone, as does the next one's.
    void pushAllChildren(const std::shared_ptr<BNode>& node);
    void pushAllChildren(const std::shared_ptr<BNode>& node, NodeStack& stack) const;

    /// True if the top of the stack is the parent of `node` and `node` its last child. O(1).
    bool isNodeAtEndOfParent(const std::shared_ptr<BNode>& node) const;
    bool isNodeAtEndOfParent(const std::shared_ptr<BNode>& node, const NodeStack& stack) const;

    /// Appends one structure byte and a copy of the key for each node below the root, in pre-order
    /// (docs/format.md). Returns the largest fan-out. O(bytes of the keys).
    std::size_t serialize(Bytes& structure, std::vector<Bytes>& codes);

    /// Replaces the trie by the described one and moves the keys out of `codes`; what is left over
    /// of either is ignored. Returns the number of leaves. Throws UnknownNodeTypeException on a
    /// structure byte above 3, IncompleteTrieException if nodes are missing; the nodes read up to
    /// there then stay. Copies keep the trie that was. O(nodes).
    std::size_t deserialize(Bytes& structure, std::vector<Bytes>& codes);

    /// The store, for who reads it piece by piece or adds what is coded already.
    PathArena& arena() noexcept { return *arena_; }
    const PathArena& arena() const noexcept { return *arena_; }
    const std::shared_ptr<PathArena>& sharedArena() const noexcept { return arena_; }

private:
    friend class BPathTreePeer;

    /// Trie and walk with nodes, made anew from the arena.
    struct LinkedWalk {
        std::shared_ptr<BNode> root;
        NodeStack nodeStack;    // nodes still to be visited; the top is next
        NodeStack parentStack;  // the root and the nodes that are open above the next one
        Path currentPath;       // keys of the nodes on parentStack, without the root's
    };
    LinkedWalk linkedWalk() const;

    /// The children of a folder that are still to be visited, as many as it had when it was
    /// entered.
    struct Frame {
        PathArena::Cursor next;
        std::uint32_t left;
    };

    /// A child that the walk has come to or left.
    struct Visited {
        PathArena::Id folder;
        std::uint32_t position;
    };

    PathArena::Place childAt(PathArena::Id folder, std::size_t position);
    PathArena::Place locate(const std::vector<std::size_t>& track, std::size_t levels);
    void getFiles(const std::vector<std::size_t>& track,
                  const std::vector<std::size_t>& fileNumbers, Path& folderKeys,
                  std::vector<Bytes>& fileKeys);
    bool isLastOfParent(const Visited& child) const;
    void dropFinishedFrames() noexcept;
    void visitNext(const PathVisitor& visit);
    void closeFinished();

    std::shared_ptr<PathArena> arena_;  // never null
    // The walk. The three follow one another only as long as nothing is added meanwhile.
    std::vector<Frame> frames_;
    std::vector<PathArena::Id> parents_;  // folders that are open above the next child
    std::vector<PathArena::Id> current_;  // folders whose names stand in front of the next path
    // Items of folders with many children, as far as tracks have been followed through them.
    std::unordered_map<PathArena::Id, FlatArray<PathArena::Link>> itemsOf_;

    NodeStack nodeStack;    // of walks by hand
    NodeStack parentStack;  // of walks by hand
    bool flag = false;      // carried along by copies; nothing reads it
};

}  // namespace compressedpaths
