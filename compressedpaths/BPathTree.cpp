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

/// Fetching is waiting for memory, one thing after the other: entry, track, folder, file, name. So
/// several entries are fetched step by step side by side (bench/fetching).
constexpr std::size_t kFetchedTogether = 32;

void prefetch(const void* address) {
    __builtin_prefetch(address);
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
    const std::size_t childCount = folder.children.size();
    if (childCount < WideFolders::kMinChildren || childCount > WideFolders::kMaxChildren)
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
    std::vector<FolderPlace> places;
    std::vector<const BNode*> fileNodes;
    for (std::size_t begin = 0; begin < entries.size(); begin += kFetchedTogether) {
        const std::size_t end = std::min(begin + kFetchedTogether, entries.size());
        places.clear();
        for (std::size_t i = begin; i < end; ++i) {
            if (entries[i] >= folderTracks.size() || entries[i] >= trackEnds.size())
                throw InvalidTrackException();
            prefetch(folderTracks[entries[i]].data());
            places.push_back({&folderTracks[entries[i]], trackEnds[entries[i]], root.get()});
        }
        locateFolders(places);
        fileNodes.clear();
        for (std::size_t i = begin; i < end; ++i)
            locateFiles(places[i - begin], fileNumbers[i], fileNodes);
        for (const BNode* node : fileNodes) prefetch(node->key.data());

        auto node = fileNodes.begin();
        for (std::size_t i = begin; i < end; ++i) {
            appendKeys(*root, folderTracks[entries[i]], places[i - begin].levels(), newFolders[i]);
            newFiles[i].reserve(fileNumbers[i].size());
            for (std::size_t left = fileNumbers[i].size(); left > 0; --left, ++node)
                newFiles[i].push_back((*node)->key);
        }
    }
    appendMoving(folders, newFolders);
    appendMoving(files, newFiles);
}

/// Walks from the root to the folders, one level of all of them after the other.
void BPathTree::locateFolders(std::vector<FolderPlace>& places) {
    bool isWalking = true;
    for (std::size_t level = 0; isWalking; ++level) {
        isWalking = false;
        for (const FolderPlace& place : places) {
            if (level >= place.levels()) continue;
            isWalking = true;
            const std::size_t position = (*place.track)[level];
            if (position >= place.folder->children.size()) throw InvalidTrackException();
            prefetch(&place.folder->children[position]);
        }
        for (FolderPlace& place : places) {
            if (level >= place.levels()) continue;
            place.folder = place.folder->children[(*place.track)[level]].get();
            prefetch(place.folder);
        }
    }
    for (const FolderPlace& place : places)
        if (place.firstFile() > place.folder->children.size()) throw InvalidTrackException();
}

/// Appends the nodes of files that are numbered from 1 on from where the files begin.
void BPathTree::locateFiles(const FolderPlace& place, const std::vector<std::size_t>& fileNumbers,
                            std::vector<const BNode*>& fileNodes) {
    const Nodes& children = place.folder->children;
    const std::size_t fileCount = children.size() - place.firstFile();
    for (const std::size_t number : fileNumbers) {
        if (number == 0 || number > fileCount) throw InvalidFileNumberException();
        fileNodes.push_back(children[place.firstFile() + number - 1].get());
        prefetch(fileNodes.back());
    }
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

}  // namespace compressedpaths
