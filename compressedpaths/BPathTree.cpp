#include "compressedpaths/BPathTree.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace compressedpaths {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
constexpr std::uint32_t kManyChildren = 64;  // with fewer, looking through them is as fast

using Nodes = std::vector<std::shared_ptr<BPathTree::BNode>>;

/// Appends a new node that takes the key over, and returns its position.
std::size_t append(Nodes& children, Bytes& key) {
    auto node = std::make_shared<BPathTree::BNode>();
    children.push_back(node);
    node->key = std::move(key);
    key.clear();
    return children.size() - 1;
}

void appendMoving(std::vector<Path>& out, std::vector<Path>& paths) {
    out.insert(out.end(), std::make_move_iterator(paths.begin()),
               std::make_move_iterator(paths.end()));
}

/// Keys as the arena stores them, one after the other.
class StoredKeys {
public:
    explicit StoredKeys(const std::vector<Bytes>& keys) {
        ends_.reserve(keys.size());
        for (const Bytes& key : keys) {
            appendStoredName(key, bytes_);
            ends_.push_back(bytes_.size());
        }
    }

    std::span<const std::uint8_t> all() const noexcept { return bytes_.values(); }
    std::span<const std::uint8_t> operator[](std::size_t i) const noexcept {
        const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
        return all().subspan(begin, ends_[i] - begin);
    }

private:
    FlatArray<std::uint8_t> bytes_;
    std::vector<std::size_t> ends_;
};

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

BPathTree::BPathTree() : arena_(std::make_shared<PathArena>()) {}

BPathTree::BPathTree(std::shared_ptr<PathArena> arena) : arena_(std::move(arena)) {}

BPathTree::BPathTree(const BPathTree& other)
    : arena_(other.arena_),
      frames_(other.frames_),
      parents_(other.parents_),
      current_(other.current_),
      nodeStack(other.nodeStack),
      parentStack(other.parentStack),
      flag(other.flag) {}

BPathTree::~BPathTree() = default;

bool BPathTree::addPath(Path& components, std::vector<std::size_t>& existingIndices) {
    PathArena::Place last{};
    return addPath(components, existingIndices, last);
}

bool BPathTree::addPath(Path& components, std::vector<std::size_t>& existingIndices,
                        PathArena::Place& last) {
    if (components.empty()) return false;

    const StoredKeys keys(components);
    existingIndices.reserve(existingIndices.size() + components.size());
    std::vector<std::size_t> found;
    found.reserve(components.size());
    PathArena::Transaction adding(*arena_);
    PathArena::Id folder = PathArena::kRoot;
    std::size_t level = 0;
    for (; level < components.size(); ++level) {
        const auto child = adding.find(folder, keys[level]);
        if (!child.isThere()) break;
        last = child.folder != PathArena::kNone
                   ? PathArena::Place{PathArena::kFolderLink | child.folder, 0}
                   : child.file;
        found.push_back(arena_->positionOf(last));
        if (level + 1 < components.size()) folder = adding.enter(child);
    }
    const bool existed = level == components.size();
    for (std::size_t created = level; created + 1 < components.size(); ++created)
        folder = adding.makeFolder(folder, keys[created]);
    if (!existed) {
        const auto [run, skip] = adding.appendFiles(folder, keys[components.size() - 1], 1);
        last = {run, skip};
    }

    adding.commit();
    existingIndices.insert(existingIndices.end(), found.begin(), found.end());
    for (; level < components.size(); ++level) Bytes().swap(components[level]);
    return existed;
}

bool BPathTree::addPath(Path& folderComponents, std::vector<Bytes>& fileNames,
                        std::vector<std::size_t>& folderIndices, std::size_t& priorChildCount) {
    const StoredKeys keys(folderComponents);
    const StoredKeys files(fileNames);
    if (fileNames.size() >= PathArena::kFolderLink) throw SetTooLargeException();
    std::vector<std::size_t> track;
    track.reserve(folderComponents.size());
    folderIndices.reserve(folderIndices.size() + folderComponents.size());

    PathArena::Transaction adding(*arena_);
    PathArena::Id folder = PathArena::kRoot;
    std::size_t foundCount = 0;
    for (std::size_t level = 0; level < folderComponents.size(); ++level) {
        PathArena::Transaction::Found child;
        if (foundCount == level) child = adding.find(folder, keys[level]);
        if (child.isThere()) {
            ++foundCount;
            folder = adding.enter(child);
        } else {
            folder = adding.makeFolder(folder, keys[level]);
        }
        track.push_back(arena_->positionOf(folder));
    }
    const bool existed = !track.empty() && foundCount == track.size();
    const std::size_t prior = existed ? arena_->childCount(folder) : kNone;
    if (!fileNames.empty())
        adding.appendFiles(folder, files.all(), static_cast<std::uint32_t>(fileNames.size()));

    adding.commit();
    folderIndices.insert(folderIndices.end(), track.begin(), track.end());
    priorChildCount = prior;
    for (std::size_t level = foundCount; level < folderComponents.size(); ++level)
        Bytes().swap(folderComponents[level]);
    for (Bytes& name : fileNames) Bytes().swap(name);
    return existed;
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

/// The child at a position, which there is. Among many children the items are remembered, so that
/// following tracks again does not go through them again.
PathArena::Place BPathTree::childAt(PathArena::Id folder, std::size_t position) {
    const std::uint32_t count = arena_->childCount(folder);
    if (position >= count) throw InvalidTrackException();
    if (count < kManyChildren) return *arena_->childAt(folder, position);

    FlatArray<PathArena::Link>& items = itemsOf_[folder];
    const auto firstOf = [this](PathArena::Link link) {
        return arena_->positionOf(PathArena::Place{link, 0});
    };
    if (items.isEmpty()) items.push(arena_->firstChild(folder).link);
    while (firstOf(*(items.end() - 1)) < position) {
        const PathArena::Link last = *(items.end() - 1);
        if (last == arena_->lastItemOf(folder)) break;
        items.push(arena_->itemAfter(last));
    }
    const PathArena::Link* const after = std::partition_point(
        items.data(), items.end(), [&](PathArena::Link link) { return firstOf(link) <= position; });
    return {*(after - 1), static_cast<std::uint32_t>(position - firstOf(*(after - 1)))};
}

/// Follows the first `levels` positions of a track, at least one, from the root.
PathArena::Place BPathTree::locate(const std::vector<std::size_t>& track, std::size_t levels) {
    PathArena::Id folder = PathArena::kRoot;
    PathArena::Place place{PathArena::kNone, 0};
    for (std::size_t level = 0; level < levels; ++level) {
        if (level > 0) folder = arena_->folderAt(place);
        if (folder == PathArena::kNone) throw InvalidTrackException();
        place = childAt(folder, track[level]);
    }
    return place;
}

void BPathTree::traversePath(const std::vector<std::size_t>& track, Path& components) {
    if (arena_->childCount(PathArena::kRoot) == 0) throw NoTreeToTraverseException();
    if (track.empty()) throw EmptyPathForTraverseException();
    Path keys;
    arena_->appendKeysOf(locate(track, track.size()), keys);
    components.insert(components.end(), std::make_move_iterator(keys.begin()),
                      std::make_move_iterator(keys.end()));
}

void BPathTree::getPath(std::vector<Path>& folders, std::vector<Path>& files,
                        const std::vector<std::size_t>& entries,
                        const std::vector<std::vector<std::size_t>>& folderTracks,
                        const std::vector<std::vector<std::size_t>>& fileNumbers) {
    if (fileNumbers.size() < entries.size()) throw InvalidFileNumberException();

    std::vector<Path> newFolders(entries.size());
    std::vector<Path> newFiles(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i] >= folderTracks.size()) throw InvalidTrackException();
        getFiles(folderTracks[entries[i]], fileNumbers[i], newFolders[i], newFiles[i]);
    }
    folders.reserve(folders.size() + newFolders.size());
    files.reserve(files.size() + newFiles.size());
    appendMoving(folders, newFolders);
    appendMoving(files, newFiles);
}

/// The folder that a track leads to, and its files with these numbers from 1. A track that ends at
/// a child with children leads to the folder itself; otherwise its last position is the first file.
void BPathTree::getFiles(const std::vector<std::size_t>& track,
                         const std::vector<std::size_t>& fileNumbers, Path& folderKeys,
                         std::vector<Bytes>& fileKeys) {
    PathArena::Id folder = PathArena::kRoot;
    std::size_t first = 0;
    if (!track.empty()) {
        if (track.size() > 1) folder = arena_->folderAt(locate(track, track.size() - 1));
        if (folder == PathArena::kNone && track.back() > 0) throw InvalidTrackException();
        const std::uint32_t count = folder == PathArena::kNone ? 0 : arena_->childCount(folder);
        if (track.back() > count) throw InvalidTrackException();
        const PathArena::Id last = track.back() == count
                                       ? PathArena::kNone
                                       : arena_->folderAt(childAt(folder, track.back()));
        if (last != PathArena::kNone && arena_->childCount(last) > 0)
            folder = last;
        else
            first = track.back();
    }
    const std::uint32_t count = folder == PathArena::kNone ? 0 : arena_->childCount(folder);
    for (const std::size_t number : fileNumbers) {
        if (number == 0 || number > count - first) throw InvalidFileNumberException();
        fileKeys.push_back(keyOf(arena_->nameOf(childAt(folder, first + number - 1))));
    }
    if (folder == PathArena::kRoot) return;
    if (folder == PathArena::kNone)
        arena_->appendKeysOf(locate(track, track.size() - 1),
                             folderKeys);  // a file, met as a folder
    else
        arena_->appendKeysTo(folder, folderKeys);
}

}  // namespace compressedpaths
