#pragma once
// PlainPathSet is a path set of coded components without any compression: linked nodes, a list of
// entries and the described steps written out one by one. What the library does is compared with
// it.
//
//     PlainPathSet plain;
//     plain.addEntry({x}, {y, z});
//     plain.fetch(2);               // the path x/z
//     plain.saved(set.getBoolTree());  // the bytes that the set has to be saved as
//
// Copies share the nodes, as copies of a set share their trie, and go their own ways otherwise.
//
// Threads: sets that share nodes belong to one thread at a time.

#include <cstddef>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "compressedpaths/BPathTree.hpp"

namespace compressedpaths {

struct PlainNode {
    Bytes key;
    std::vector<std::shared_ptr<PlainNode>> children;
    bool wasFile = false;  // it came into the trie at the end of a path
};
using PlainNodes = std::vector<std::shared_ptr<PlainNode>>;
using PlainTrack = std::vector<std::size_t>;

/// The trie and one walk over it.
struct PlainTrie {
    std::shared_ptr<PlainNode> root = std::make_shared<PlainNode>();
    PlainNodes nodeStack;
    PlainNodes parentStack;
    Path currentPath;

    PlainTrie separateCopy() const;  // of the nodes; its walk has not begun

    std::shared_ptr<PlainNode> nodeAt(const PlainTrack& track, std::size_t levels) const;
    void reset();
    bool hasNext() const { return !root->children.empty() && !nodeStack.empty(); }
    std::optional<Path> next();

private:
    bool isLastChild(const std::shared_ptr<PlainNode>& node) const;
    void pushChildren(const PlainNode& node);
};

class PlainPathSet {
public:
    struct Entry {
        std::shared_ptr<PlainNode> folder;
        Path components;        // of the folder
        std::size_t firstFile;  // its position in the folder
        PlainTrack track;
        bool endsInFirstFile;     // the last position of the track is that of the first file
        bool isCertain = true;    // false if loading cannot know where its files begin
        std::size_t numbersEnd;   // the last of its numbers
        std::size_t numberCount;  // more than its files if paths were added on their own before it
    };

    /// What a number leads to.
    struct Fetched {
        enum class Kind { kPath, kSinglePath, kNoFile, kUncertain } kind;
        const Entry* entry = nullptr;  // of a path
        const PlainNode* file = nullptr;
    };

    void addEntry(const Path& folder, const std::vector<Bytes>& files);
    void addSingle(const Path& path);

    Fetched fetch(std::size_t number) const;

    void resetWalk();
    bool hasNext() const;
    /// The next path; nothing past the last. A repeated one is to be appended to the caller's path.
    struct Step {
        Path path;
        bool isRepeated;
    };
    std::optional<Step> next();

    /// The saved form, not compressed, of a set whose coding tree has this shape.
    Bytes saved(const std::vector<bool>& shape) const;
    /// What a set becomes that is saved and loaded, or written as an image and opened.
    PlainPathSet loaded() const;
    PlainPathSet opened() const;

    const PlainTrie& trie() const { return trie_; }
    const std::vector<Entry>& entries() const { return entries_; }
    const std::unordered_map<std::size_t, PlainTrack>& pathTracks() const { return pathTracks_; }
    std::size_t pathCount() const { return pathCount_; }
    std::size_t iterationPosition() const { return iterationPosition_; }
    std::size_t maxFolderDepth() const { return maxFolderDepth_; }
    std::size_t maxTrackLength() const { return maxTrackLength_; }
    std::size_t maxTrackKey() const { return maxTrackKey_; }
    /// True if every number of each entry is that of a file which the entry added.
    bool hasOwnNumbers() const { return hasOwnNumbers_; }
    bool isCertain() const;

    /// True if the tracks of some entries with numbers do not say by themselves where files begin.
    bool needsTrackEnds() const;

private:
    bool readsAsFirstFile(const Entry& entry) const;
    PlainPathSet onCopyOfTrie() const;

    PlainTrie trie_;
    std::vector<Entry> entries_;
    // Not any map: the order of this one is the order of the saved bytes.
    std::unordered_map<std::size_t, PlainTrack> pathTracks_;
    std::size_t pathCount_ = 0;
    std::size_t iterationPosition_ = 0;
    std::size_t maxFolderDepth_ = 0;
    std::size_t maxTrackLength_ = 0;
    std::size_t maxTrackKey_ = 0;
    bool hasOwnNumbers_ = true;
};

}  // namespace compressedpaths
