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
// Copies share their nodes: what is added through one is seen by all. Each has its own walk.
// Tries of any depth are walked and freed without recursion.
//
// Threads: tries that share nodes belong to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stack>
#include <vector>

#include "compressedpaths/BPathTreeExceptions.hpp"

namespace compressedpaths {

using Bytes = std::vector<std::uint8_t>;
using Path = std::vector<Bytes>;

class WideFolders;

class BPathTree {
public:
    struct BNode {
        std::vector<std::uint8_t> key;                 // empty for the root
        std::vector<std::shared_ptr<BNode>> children;  // in the order of adding

        ~BNode();  // frees what hangs below without recursion and without asking for memory
    };
    using NodeStack = std::stack<std::shared_ptr<BNode>>;

    /// What the last position of a folder's track is.
    enum class TrackEnd : std::uint8_t {
        kFolder,     // the folder itself: its files begin at child 0
        kFirstFile,  // the child of the folder at which the files begin
    };

    BPathTree();
    BPathTree(const BPathTree& other);  // shares the nodes, copies the walk. O(depth of the walk)
    BPathTree& operator=(const BPathTree&) = delete;
    virtual ~BPathTree();

    /// Adds one path. True if it was there as a whole. `existingIndices` grows by the positions of
    /// the leading components that were there; the others are moved into the trie and left empty.
    /// Throws only std::bad_alloc. O(components), expected.
    bool addPath(Path& components, std::vector<std::size_t>& existingIndices);

    /// Adds a folder and `fileNames` as new children of it, equal names included; new folder
    /// components and all file names are moved into the trie and left empty. True if the folder was
    /// there; then `priorChildCount` is the number of children it had, otherwise SIZE_MAX.
    /// `folderIndices` grows by the folder's track. With no folder components the files become
    /// children of the root and the result is false.
    /// Throws only std::bad_alloc. O(folder components + files), expected.
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

    /// The same for a caller who remembers what the last position of each track is: `trackEnds[j]`
    /// belongs to `folderTracks[j]`. A file may then have become a folder since it was added.
    void getPath(std::vector<Path>& folders, std::vector<Path>& files,
                 const std::vector<std::size_t>& entries,
                 const std::vector<std::vector<std::size_t>>& folderTracks,
                 const std::vector<TrackEnd>& trackEnds,
                 const std::vector<std::vector<std::size_t>>& fileNumbers) const;

    /// What the last position of `track` is if nothing is remembered of it, the rule of getPath.
    TrackEnd guessTrackEnd(const std::vector<std::size_t>& track) const noexcept;

    /// What the last position of each of `folderTracks` is, worked out from the shape of the trie
    /// and the number of files of each entry (`fileCounts`, parallel). O(track positions),
    /// expected.
    std::vector<TrackEnd> readTrackEnds(const std::vector<std::vector<std::size_t>>& folderTracks,
                                        const std::vector<std::size_t>& fileCounts) const;

    /// True if `track` leads to a node; or, of a folder's track, to the place behind the last
    /// child.
    bool leadsToNode(const std::vector<std::size_t>& track) const noexcept;
    bool leadsToFolder(const std::vector<std::size_t>& folderTrack) const noexcept;

    /// Starts the walk: every path once, children in their order. Does nothing on an empty trie.
    /// Paths that are added during a walk may be missed; start again after adding. O(top level).
    void reset();

    /// False also on a trie that was never reset. O(1).
    bool hasNextPath();

    /// Replaces `path` by the next one. Throws NoMorePathException if there is none; nothing has
    /// changed then. O(bytes of the path + children of the folders entered).
    void getNextPath(Path& path);

    /// Pushes the children of a node, last first, so that the first is on top.
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
    /// there then stay. O(nodes).
    std::size_t deserialize(Bytes& structure, std::vector<Bytes>& codes);

private:
    friend class BPathTreePeer;

    /// Where the files of a folder entry are.
    struct FolderPlace {
        const std::vector<std::size_t>* track;
        TrackEnd end;
        const BNode* folder;  // the node that the walk along the track has come to

        bool endsInFirstFile() const { return end == TrackEnd::kFirstFile && !track->empty(); }
        std::size_t levels() const { return track->size() - (endsInFirstFile() ? 1 : 0); }
        std::size_t firstFile() const { return endsInFirstFile() ? track->back() : 0; }
    };

    std::size_t findOrAppend(BNode& folder, Bytes& key, bool& existed);
    const BNode* nodeAt(const std::vector<std::size_t>& track, std::size_t levels) const noexcept;
    static void locateFolders(std::vector<FolderPlace>& places);
    static void locateFiles(const FolderPlace& place, const std::vector<std::size_t>& fileNumbers,
                            std::vector<const BNode*>& fileNodes);

    std::shared_ptr<BNode> root;
    NodeStack nodeStack;    // nodes still to be visited; the top is next
    NodeStack parentStack;  // the root and the nodes that are open above the next one
    Path currentPath;       // keys of the nodes on parentStack, without the root's
    bool flag = false;      // carried along by copies

    std::unique_ptr<WideFolders> wideFolders_;  // derived from the nodes; null until one is needed
};

}  // namespace compressedpaths
