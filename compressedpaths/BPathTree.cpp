#include "compressedpaths/BPathTree.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

#include "compressedpaths/WideFolders.hpp"

namespace compressedpaths {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

using Nodes = std::vector<std::shared_ptr<BPathTree::BNode>>;

/// Makes room for `count` more children: exactly that in a new folder, where most folders stay;
/// an eighth more when one grows, so that growing by one file at a time stays linear.
void makeRoom(Nodes& children, std::size_t count) {
    const std::size_t needed = children.size() + count;
    if (needed <= children.capacity()) return;
    children.reserve(std::max(needed, children.capacity() + children.capacity() / 8));
}

/// Appends a new node that takes the key over, and returns its position.
std::size_t append(Nodes& children, Bytes& key) {
    makeRoom(children, 1);
    children.push_back(std::make_shared<BPathTree::BNode>());
    children.back()->key = std::move(key);
    key.clear();
    return children.size() - 1;
}

/// Appends the keys met along the first `levels` positions of a track that leads to a node.
void appendKeys(const BPathTree::BNode& root, const std::vector<std::size_t>& track,
                std::size_t levels, Path& keys) {
    const BPathTree::BNode* node = &root;
    keys.reserve(keys.size() + levels);
    for (std::size_t level = 0; level < levels; ++level) {
        node = node->children[track[level]].get();
        keys.push_back(node->key);
    }
}

void appendMoving(std::vector<Path>& out, std::vector<Path>& paths) {
    out.insert(out.end(), std::make_move_iterator(paths.begin()),
               std::make_move_iterator(paths.end()));
}

}  // namespace

// Pointer reversal (Schorr and Waite, 1967): on the way down, the slot that a child leaves in its
// parent holds the way back up, so that freeing needs neither call stack nor heap.
BPathTree::BNode::~BNode() {
    while (!children.empty()) {
        std::shared_ptr<BNode> node = std::move(children.back());
        children.pop_back();
        std::shared_ptr<BNode> above;
        while (node) {
            if (node.use_count() == 1 && !node->children.empty()) {
                std::shared_ptr<BNode> child =
                    std::exchange(node->children.back(), std::move(above));
                above = std::move(node);
                node = std::move(child);
                continue;
            }
            node = std::move(above);  // the node dies childless, or others still hold it
            if (!node) break;
            above = std::move(node->children.back());
            node->children.pop_back();
        }
    }
}

BPathTree::BPathTree() : root(std::make_shared<BNode>()) {}

BPathTree::BPathTree(const BPathTree& other)
    : root(other.root),
      nodeStack(other.nodeStack),
      parentStack(other.parentStack),
      currentPath(other.currentPath),
      flag(other.flag) {}

BPathTree::~BPathTree() = default;

bool BPathTree::addPath(Path& components, std::vector<std::size_t>& existingIndices) {
    BNode* node = root.get();
    bool existed = false;
    for (Bytes& component : components) {
        const std::size_t position = findOrAppend(*node, component, existed);
        node = node->children[position].get();
        if (existed) existingIndices.push_back(position);
    }
    return existed;
}

bool BPathTree::addPath(Path& folderComponents, std::vector<Bytes>& fileNames,
                        std::vector<std::size_t>& folderIndices, std::size_t& priorChildCount) {
    BNode* folder = root.get();
    bool existed = false;
    for (Bytes& component : folderComponents) {
        folderIndices.push_back(findOrAppend(*folder, component, existed));
        folder = folder->children[folderIndices.back()].get();
    }

    priorChildCount = existed ? folder->children.size() : kNone;
    makeRoom(folder->children, fileNames.size());
    for (Bytes& name : fileNames) append(folder->children, name);
    return existed;
}

/// addIfExistsAndFind for a node of this trie.
std::size_t BPathTree::findOrAppend(BNode& folder, Bytes& key, bool& existed) {
    if (folder.children.size() < WideFolders::kMinChildren)
        return addIfExistsAndFind(folder.children, key, existed);

    if (!wideFolders_) wideFolders_ = std::make_unique<WideFolders>();
    const std::size_t position = wideFolders_->find(folder, key);
    existed = position != kNone;
    return existed ? position : append(folder.children, key);
}

std::size_t BPathTree::addIfExistsAndFind(std::vector<std::shared_ptr<BNode>>& children, Bytes& key,
                                          bool& existed) const {
    const std::size_t position = findNode(key, children);
    existed = position != kNone;
    return existed ? position : append(children, key);
}

std::size_t BPathTree::findNode(const Bytes& key,
                                const std::vector<std::shared_ptr<BNode>>& children) const {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const auto& child) { return child->key == key; });
    return found == children.end() ? kNone : static_cast<std::size_t>(found - children.begin());
}

bool BPathTree::isLeaf(const std::shared_ptr<BNode>& node) const {
    return node->children.empty();
}

void BPathTree::traversePath(const std::vector<std::size_t>& track, Path& components) {
    if (root->children.empty()) throw NoTreeToTraverseException();
    if (track.empty()) throw EmptyPathForTraverseException();
    if (!leadsToNode(track)) throw InvalidTrackException();

    appendKeys(*root, track, track.size(), components);
}

void BPathTree::getPath(std::vector<Path>& folders, std::vector<Path>& files,
                        const std::vector<std::size_t>& entries,
                        const std::vector<std::vector<std::size_t>>& folderTracks,
                        const std::vector<std::vector<std::size_t>>& fileNumbers) {
    std::vector<TrackEnd> trackEnds(folderTracks.size(), TrackEnd::kFolder);
    for (const std::size_t entry : entries)
        if (entry < folderTracks.size()) trackEnds[entry] = guessTrackEnd(folderTracks[entry]);
    getPath(folders, files, entries, folderTracks, trackEnds, fileNumbers);
}

void BPathTree::getPath(std::vector<Path>& folders, std::vector<Path>& files,
                        const std::vector<std::size_t>& entries,
                        const std::vector<std::vector<std::size_t>>& folderTracks,
                        const std::vector<TrackEnd>& trackEnds,
                        const std::vector<std::vector<std::size_t>>& fileNumbers) const {
    if (fileNumbers.size() < entries.size()) throw InvalidFileNumberException();

    std::vector<Path> newFolders(entries.size());
    std::vector<Path> newFiles(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::size_t entry = entries[i];
        if (entry >= folderTracks.size() || entry >= trackEnds.size())
            throw InvalidTrackException();
        const FolderPlace place = folderAt(folderTracks[entry], trackEnds[entry]);
        appendKeys(*root, folderTracks[entry], place.levels, newFolders[i]);
        newFiles[i].reserve(fileNumbers[i].size());
        const Nodes& children = place.folder->children;
        const std::size_t fileCount = children.size() - place.firstFileIndex;
        for (const std::size_t number : fileNumbers[i]) {
            if (number == 0 || number > fileCount) throw InvalidFileNumberException();
            newFiles[i].push_back(children[place.firstFileIndex + number - 1]->key);
        }
    }
    appendMoving(folders, newFolders);
    appendMoving(files, newFiles);
}

BPathTree::TrackEnd BPathTree::guessTrackEnd(const std::vector<std::size_t>& track) const noexcept {
    const BNode* node = nodeAt(track, track.size());
    const bool isFolder = track.empty() || (node != nullptr && !node->children.empty());
    return isFolder ? TrackEnd::kFolder : TrackEnd::kFirstFile;
}

bool BPathTree::leadsToNode(const std::vector<std::size_t>& track) const noexcept {
    return nodeAt(track, track.size()) != nullptr;
}

bool BPathTree::leadsToFolder(const std::vector<std::size_t>& folderTrack) const noexcept {
    if (leadsToNode(folderTrack)) return true;
    const BNode* folder = nodeAt(folderTrack, folderTrack.size() - 1);
    return folder != nullptr && folderTrack.back() == folder->children.size();
}

/// The node that the first `levels` positions of `track` lead to, or null if there is none.
const BPathTree::BNode* BPathTree::nodeAt(const std::vector<std::size_t>& track,
                                          std::size_t levels) const noexcept {
    const BNode* node = root.get();
    for (std::size_t level = 0; level < levels; ++level) {
        if (track[level] >= node->children.size()) return nullptr;
        node = node->children[track[level]].get();
    }
    return node;
}

BPathTree::FolderPlace BPathTree::folderAt(const std::vector<std::size_t>& track,
                                           TrackEnd end) const {
    FolderPlace place{nullptr, track.size(), 0};
    if (end == TrackEnd::kFirstFile && !track.empty()) {
        place.levels = track.size() - 1;
        place.firstFileIndex = track.back();
    }
    place.folder = nodeAt(track, place.levels);
    if (place.folder == nullptr || place.firstFileIndex > place.folder->children.size())
        throw InvalidTrackException();
    return place;
}

}  // namespace compressedpaths
