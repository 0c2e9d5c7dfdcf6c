// What the last position of each folder's track is, worked out from the trie alone.
//
// A saved set says where the files of an entry begin, but not whether that is the folder or, for a
// folder that was there before, its first file. A first file without children can only be a file.
// One that has children may have become a folder since, so the shape has to tell:
//
// - Every position that some track ends with was the next free one of its folder when an entry was
//   added. So an entry's files, which follow one another, have none of them inside, and those of
//   the entry that made a folder are before all of them.
// - A leaf that no track leads to is a file of the entry before it. So is a node that an entry
//   found without children: it was a leaf then.
// - A path that is listed once has one file. A child with a later twin of the same key was there
//   before its path was listed, as a folder on the way to something else. But a folder that no
//   earlier entry mentions cannot have been found, whatever twins there are.
// - What is first in a folder that was a file was made by later entries, before any of them found
//   places behind it.
//
// Where all of this leaves both readings open, the bytes of two different sets are the same, and a
// node with children is taken for the folder.

#include <algorithm>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "compressedpaths/BPathTree.hpp"

namespace compressedpaths {
namespace {

using Node = BPathTree::BNode;
using TrackEnd = BPathTree::TrackEnd;

/// Some children of a folder, from `first` on.
struct Files {
    const Node* folder;
    std::size_t first;
    std::size_t count;
};

bool hasFiles(std::size_t entry, const std::vector<std::size_t>& fileCounts) {
    return entry < fileCounts.size() && fileCounts[entry] > 0;
}

/// The children of a folder that tracks lead to.
struct Targets {
    std::size_t firstChild;
    std::size_t firstEntry;  // whose track leads to any of them
};

class TrackReader {
public:
    TrackReader(const Node& root, const std::vector<std::vector<std::size_t>>& folderTracks,
                const std::vector<std::size_t>& fileCounts)
        : root_(root), folderTracks_(folderTracks), fileCounts_(fileCounts) {}

    /// Takes in the track of an entry, which leads to child `childIndex` of `parent`. Entries come
    /// in their order.
    void addTrack(std::size_t entry, const Node& parent, std::size_t childIndex) {
        targets_.insert(parent.children[childIndex].get());
        Targets& targets =
            targetsOf_.try_emplace(&parent, Targets{childIndex, entry}).first->second;
        targets.firstChild = std::min(targets.firstChild, childIndex);
    }

    /// Reads the track of an entry, which leads to child `childIndex` of `parent` and has
    /// `fileCount` files, at least one. All tracks must have been taken in and longer ones been
    /// read before. O(fileCount), once for each folder O(its children) and once for all O(track
    /// positions), all only where files have become folders.
    TrackEnd read(std::size_t entry, const Node& parent, std::size_t childIndex,
                  std::size_t fileCount) {
        const bool isFile = isFirstFile(entry, parent, childIndex, fileCount);
        if (isFile && childIndex == 0) foundEmpty_.insert(&parent);
        return isFile ? TrackEnd::kFirstFile : TrackEnd::kFolder;
    }

private:
    bool isFirstFile(std::size_t entry, const Node& parent, std::size_t childIndex,
                     std::size_t fileCount) {
        const Node& target = *parent.children[childIndex];
        if (target.children.empty()) return true;

        const Files inTarget{&target, 0, fileCount};
        const Files inParent{&parent, childIndex, fileCount};
        const auto targets = targetsOf_.find(&target);
        const bool canBeFolder = exist(inTarget) && (targets == targetsOf_.end() ||
                                                     targets->second.firstChild >= fileCount);
        const bool canBeFile = exist(inParent) && !hasTargetInside(inParent);
        return canBeFile && (!canBeFolder || isRatherIn(entry, inParent, inTarget));
    }

    static bool exist(const Files& files) {
        const std::size_t childCount = files.folder->children.size();
        return files.first <= childCount && files.count <= childCount - files.first;
    }

    bool hasTargetInside(const Files& files) const {
        for (std::size_t i = files.first + 1; i < files.first + files.count; ++i)
            if (targets_.contains(files.folder->children[i].get())) return true;
        return false;
    }

    /// True if there is more that speaks for the one place of the files than for the other. Neither
    /// has a target inside.
    bool isRatherIn(std::size_t entry, const Files& one, const Files& other) {
        if (hasCertainFile(other) || !canBeMadeAfter(entry, other)) return false;
        if (hasCertainFile(one)) return true;
        return hasTwin(other) && !hasTwin(one) && wasThereBefore(entry, one);
    }

    /// True if `files` can be the first folders in a folder that was a file when an entry was
    /// added: later entries made them, before one found places behind them.
    bool canBeMadeAfter(std::size_t entry, const Files& files) {
        const auto targets = targetsOf_.find(files.folder);
        const std::size_t end =
            targets == targetsOf_.end() ? folderTracks_.size() : targets->second.firstEntry;
        for (std::size_t i = files.first; i < files.first + files.count; ++i) {
            const std::size_t made = firstMentionOf(files.folder->children[i].get());
            if (made <= entry || made >= end) return false;
        }
        return true;
    }

    /// True if the folder of `files` can have been there before an entry that has them by its
    /// track: an earlier entry mentions it, or it was a file, in a folder that an earlier entry
    /// mentions.
    bool wasThereBefore(std::size_t entry, const Files& files) {
        if (firstMentionOf(files.folder) < entry) return true;
        const std::vector<std::size_t>& track = folderTracks_[entry];
        const Node* above = &root_;
        for (std::size_t level = 0; level + 2 < track.size(); ++level)
            above = above->children[track[level]].get();
        return files.first == 0 && firstMentionOf(above) < entry;
    }

    /// The first entry whose track leads through or to a node; SIZE_MAX if there is none.
    std::size_t firstMentionOf(const Node* node) {
        if (firstEntryAt_.empty()) mentionAll();
        const auto found = firstEntryAt_.find(node);
        return found == firstEntryAt_.end() ? std::numeric_limits<std::size_t>::max()
                                            : found->second;
    }

    void mentionAll() {
        for (std::size_t entry = 0; entry < folderTracks_.size(); ++entry) {
            const Node* node = &root_;
            if (folderTracks_[entry].empty() && hasFiles(entry, fileCounts_))
                firstEntryAt_.try_emplace(node, entry);
            for (const std::size_t position : folderTracks_[entry]) {
                if (position >= node->children.size()) break;
                node = node->children[position].get();
                firstEntryAt_.try_emplace(node, entry);
            }
        }
    }

    bool hasCertainFile(const Files& files) const {
        for (std::size_t i = files.first; i < files.first + files.count; ++i) {
            const Node* const child = files.folder->children[i].get();
            if (child->children.empty() || foundEmpty_.contains(child)) return true;
        }
        return false;
    }

    /// True if one of the files has the key of another child of the folder.
    bool hasTwin(const Files& files) {
        const auto [keys, isNew] = repeatedKeysOf_.try_emplace(files.folder);
        if (isNew) {
            std::unordered_set<std::string_view> seen;
            for (const auto& child : files.folder->children)
                if (!seen.insert(textOf(*child)).second) keys->second.insert(textOf(*child));
        }
        for (std::size_t i = files.first; i < files.first + files.count; ++i)
            if (keys->second.contains(textOf(*files.folder->children[i]))) return true;
        return false;
    }

    static std::string_view textOf(const Node& node) {
        return {reinterpret_cast<const char*>(node.key.data()), node.key.size()};
    }

    const Node& root_;
    const std::vector<std::vector<std::size_t>>& folderTracks_;
    const std::vector<std::size_t>& fileCounts_;
    std::unordered_map<const Node*, std::size_t> firstEntryAt_;  // whose track mentions a node
    std::unordered_set<const Node*> targets_;                    // nodes that tracks lead to
    std::unordered_set<const Node*> foundEmpty_;  // nodes that entries found without children
    std::unordered_map<const Node*, Targets> targetsOf_;  // by the folder they are in
    std::unordered_map<const Node*, std::unordered_set<std::string_view>> repeatedKeysOf_;
};

}  // namespace

std::vector<TrackEnd> BPathTree::readTrackEnds(
    const std::vector<std::vector<std::size_t>>& folderTracks,
    const std::vector<std::size_t>& fileCounts) const {
    TrackReader reader(*root, folderTracks, fileCounts);
    for (std::size_t entry = 0; entry < folderTracks.size(); ++entry) {
        const std::vector<std::size_t>& track = folderTracks[entry];
        if (!track.empty() && leadsToNode(track))
            reader.addTrack(entry, *nodeAt(track, track.size() - 1), track.back());
    }

    std::vector<TrackEnd> ends(folderTracks.size());
    std::vector<std::size_t> open;  // entries whose tracks have to be read
    for (std::size_t entry = 0; entry < folderTracks.size(); ++entry) {
        const std::vector<std::size_t>& track = folderTracks[entry];
        ends[entry] = guessTrackEnd(track);
        // The root is there before every entry, so a track of one position leads to a new folder.
        if (track.size() >= 2 && hasFiles(entry, fileCounts) && leadsToNode(track))
            open.push_back(entry);
    }
    std::stable_sort(open.begin(), open.end(), [&](std::size_t a, std::size_t b) {
        return folderTracks[a].size() > folderTracks[b].size();
    });
    for (const std::size_t entry : open) {
        const std::vector<std::size_t>& track = folderTracks[entry];
        const Node& parent = *nodeAt(track, track.size() - 1);
        ends[entry] = reader.read(entry, parent, track.back(), fileCounts[entry]);
    }
    return ends;
}

}  // namespace compressedpaths
