// What the last position of each folder's track is, worked out from the trie alone.
//
// A saved set says where the files of an entry begin, but not whether that is the folder or, for a
// folder that was there before, its first file. A first file without children can only be a file.
// One that has children may have become a folder since, so the shape has to tell: every child of a
// folder is a file of one of that folder's entries, or a folder itself.

#include <algorithm>
#include <limits>
#include <unordered_map>

#include "compressedpaths/BPathTree.hpp"

namespace compressedpaths {
namespace {

using Node = BPathTree::BNode;
using TrackEnd = BPathTree::TrackEnd;

/// What the entries that have been read so far say of a node.
struct Evidence {
    bool isTrackTarget = false;         // some track leads to it
    bool isFolderFromTheStart = false;  // so it is nobody's file
    // The least child that some track ends with, whatever that means: the entry that made the
    // folder came first, and its files are all before.
    std::size_t firstTrackedChild = std::numeric_limits<std::size_t>::max();
};

class TrackReader {
public:
    /// Takes in one track, which leads to child `childIndex` of `parent`.
    void addTrack(const Node& parent, std::size_t childIndex) {
        evidence_[parent.children[childIndex].get()].isTrackTarget = true;
        std::size_t& first = evidence_[&parent].firstTrackedChild;
        first = std::min(first, childIndex);
    }

    /// Reads one track, which leads to child `childIndex` of `parent` and belongs to an entry of
    /// `fileCount` files, at least one. All tracks must have been taken in, and longer ones been
    /// read before. O(fileCount).
    TrackEnd read(const Node& parent, std::size_t childIndex, std::size_t fileCount) {
        const Node& target = *parent.children[childIndex];
        const TrackEnd end = decide(parent, childIndex, target, fileCount);
        if (end == TrackEnd::kFolder) evidence_[&target].isFolderFromTheStart = true;
        return end;
    }

private:
    TrackEnd decide(const Node& parent, std::size_t childIndex, const Node& target,
                    std::size_t fileCount) const {
        const bool canBeFolder =
            canBeFiles(target, 0, fileCount) && of(target).firstTrackedChild >= fileCount;
        const bool canBeFile = canBeFiles(parent, childIndex, fileCount);
        if (canBeFolder && canBeFile && !hasPlainFile(target, 0, fileCount) &&
            hasPlainFile(parent, childIndex + 1, fileCount - 1))
            return TrackEnd::kFirstFile;
        if (canBeFolder != canBeFile) return canBeFolder ? TrackEnd::kFolder : TrackEnd::kFirstFile;
        return target.children.empty() ? TrackEnd::kFirstFile : TrackEnd::kFolder;
    }

    bool canBeFiles(const Node& folder, std::size_t first, std::size_t count) const {
        const std::size_t childCount = folder.children.size();
        if (first > childCount || count > childCount - first) return false;
        for (std::size_t i = first; i < first + count; ++i) {
            const Node& child = *folder.children[i];
            if (!child.children.empty() && of(child).isFolderFromTheStart) return false;
        }
        return true;
    }

    /// True if one of the children up to the next one that begins an entry is a file for certain: a
    /// leaf that no track leads to belongs to the entry before it.
    bool hasPlainFile(const Node& folder, std::size_t first, std::size_t count) const {
        for (std::size_t i = first; i < first + count; ++i) {
            const Node& child = *folder.children[i];
            if (of(child).isTrackTarget) return false;
            if (child.children.empty()) return true;
        }
        return false;
    }

    Evidence of(const Node& node) const {
        const auto found = evidence_.find(&node);
        return found == evidence_.end() ? Evidence{} : found->second;
    }

    std::unordered_map<const Node*, Evidence> evidence_;
};

}  // namespace

std::vector<TrackEnd> BPathTree::readTrackEnds(
    const std::vector<std::vector<std::size_t>>& folderTracks,
    const std::vector<std::size_t>& fileCounts) const {
    TrackReader reader;
    std::vector<TrackEnd> ends(folderTracks.size());
    std::vector<std::size_t> undecided;  // entries, see below
    for (std::size_t entry = 0; entry < folderTracks.size(); ++entry) {
        const std::vector<std::size_t>& track = folderTracks[entry];
        ends[entry] = guessTrackEnd(track);
        if (track.empty() || !leadsToNode(track)) continue;
        reader.addTrack(*nodeAt(track, track.size() - 1), track.back());
        // The root is there before every entry, so a track of one position leads to a new folder.
        const bool hasFiles = entry < fileCounts.size() && fileCounts[entry] > 0;
        if (hasFiles && track.size() >= 2) undecided.push_back(entry);
    }

    std::stable_sort(undecided.begin(), undecided.end(), [&](std::size_t a, std::size_t b) {
        return folderTracks[a].size() > folderTracks[b].size();
    });
    for (const std::size_t entry : undecided) {
        const std::vector<std::size_t>& track = folderTracks[entry];
        const Node* const parent = nodeAt(track, track.size() - 1);
        ends[entry] = reader.read(*parent, track.back(), fileCounts[entry]);
    }
    return ends;
}

}  // namespace compressedpaths
