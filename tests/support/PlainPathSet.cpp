#include "tests/support/PlainPathSet.hpp"

#include <algorithm>

#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace compressedpaths {
namespace {

struct Found {
    std::size_t position;
    bool existed;
};

/// The first child with this key, or a new one at the end.
Found findOrAppend(PlainNode& parent, const Bytes& key, bool isFile) {
    const auto found = std::find_if(parent.children.begin(), parent.children.end(),
                                    [&](const auto& child) { return child->key == key; });
    const auto position = static_cast<std::size_t>(found - parent.children.begin());
    if (found != parent.children.end()) return {position, true};
    parent.children.push_back(std::make_shared<PlainNode>(PlainNode{key, {}, isFile}));
    return {position, false};
}

/// A saved form tells folders from files by their children alone.
void forgetFormerFiles(PlainNode& node) {
    node.wasFile = node.children.empty();
    for (const auto& child : node.children) forgetFormerFiles(*child);
}

std::shared_ptr<PlainNode> separateCopyOf(const PlainNode& node) {
    auto copy = std::make_shared<PlainNode>(PlainNode{node.key, {}, node.wasFile});
    for (const auto& child : node.children) copy->children.push_back(separateCopyOf(*child));
    return copy;
}

/// Writes a body as docs/format.md draws it.
class BodyWriter {
public:
    Bytes body;

    void byte(std::size_t value) { body.push_back(static_cast<std::uint8_t>(value)); }
    void integer(std::size_t value, std::size_t widthTag) {
        for (std::size_t i = 0; i < std::size_t{1} << widthTag; ++i) byte(value >> 8 * i & 0xFF);
    }
    void sizedBytes(const Bytes& bytes, std::size_t countTag) {
        integer(bytes.size(), countTag);
        body.insert(body.end(), bytes.begin(), bytes.end());
    }
    void bits(const std::vector<bool>& bits) {
        Bytes packed;
        sixpacks::boolVecToBytes(packed, bits);
        sizedBytes(packed, 3);
    }
    void track(const PlainTrack& track, std::size_t positionTag, std::size_t lengthTag) {
        integer(track.size(), lengthTag);
        for (const std::size_t position : track) integer(position, positionTag);
    }
    /// Writes the width tag of a value and returns it.
    std::size_t tag(std::size_t value) {
        const std::size_t tag = value <= 0xFF          ? 0
                                : value <= 0xFFFF      ? 1
                                : value <= 0xFFFF'FFFF ? 2
                                                       : 3;
        byte(tag);
        return tag;
    }
};

struct FlatTrie {
    Bytes structure;
    std::vector<Bytes> keys;
    std::size_t leafCount = 0;
    std::size_t maxFanOut = 0;
    std::size_t longestKey = 0;
};

void flatten(const PlainNode& node, FlatTrie& flat) {
    flat.maxFanOut = std::max(flat.maxFanOut, node.children.size());
    for (const auto& child : node.children) {
        const bool isLast = child == node.children.back();
        const bool isLeaf = child->children.empty();
        flat.structure.push_back(static_cast<std::uint8_t>((isLast ? 0 : 2) + (isLeaf ? 0 : 1)));
        flat.keys.push_back(child->key);
        flat.longestKey = std::max(flat.longestKey, child->key.size());
        if (isLeaf) ++flat.leafCount;
        flatten(*child, flat);
    }
}

std::size_t longestOf(const std::vector<PlainPathSet::Entry>& entries) {
    std::size_t longest = 0;
    for (const auto& entry : entries) longest = std::max(longest, entry.track.size());
    return longest;
}

std::size_t largestPositionOf(const std::vector<PlainPathSet::Entry>& entries) {
    std::size_t largest = 0;
    for (const auto& entry : entries)
        for (const std::size_t position : entry.track) largest = std::max(largest, position);
    return largest;
}

}  // namespace

// --- The trie.

PlainTrie PlainTrie::separateCopy() const {
    PlainTrie copy;
    copy.root = separateCopyOf(*root);
    return copy;
}

std::shared_ptr<PlainNode> PlainTrie::nodeAt(const PlainTrack& track, std::size_t levels) const {
    std::shared_ptr<PlainNode> node = root;
    for (std::size_t level = 0; level < levels; ++level) node = node->children.at(track[level]);
    return node;
}

void PlainTrie::reset() {
    if (root->children.empty()) return;
    nodeStack.clear();
    pushChildren(*root);
    parentStack = {root};
    currentPath.clear();
}

void PlainTrie::pushChildren(const PlainNode& node) {
    nodeStack.insert(nodeStack.end(), node.children.rbegin(), node.children.rend());
}

bool PlainTrie::isLastChild(const std::shared_ptr<PlainNode>& node) const {
    if (parentStack.empty() || parentStack.back()->children.empty()) return false;
    return parentStack.back()->children.back() == node;
}

std::optional<Path> PlainTrie::next() {
    if (!hasNext()) return std::nullopt;
    while (true) {
        const std::shared_ptr<PlainNode> node = nodeStack.back();
        nodeStack.pop_back();
        bool isLast = isLastChild(node);
        if (!node->children.empty()) {
            currentPath.push_back(node->key);
            pushChildren(*node);
            parentStack.push_back(node);
            continue;
        }
        Path path = currentPath;
        path.push_back(node->key);
        while (isLast && !parentStack.empty()) {
            const std::shared_ptr<PlainNode> finished = parentStack.back();
            parentStack.pop_back();
            if (!currentPath.empty()) currentPath.pop_back();
            isLast = isLastChild(finished);
        }
        return path;
    }
}

// --- Adding.

void PlainPathSet::addEntry(const Path& folder, const std::vector<Bytes>& files) {
    std::shared_ptr<PlainNode> node = trie_.root;
    PlainTrack track;
    bool existed = false;
    for (const Bytes& component : folder) {
        const Found found = findOrAppend(*node, component, false);
        track.push_back(found.position);
        existed = found.existed;
        node = node->children[found.position];
    }
    const std::size_t firstFile = node->children.size();
    if (existed) {
        track.push_back(firstFile);
        maxFolderDepth_ = std::max(maxFolderDepth_, track.size());
    }
    for (const Bytes& name : files)
        node->children.push_back(std::make_shared<PlainNode>(PlainNode{name, {}, true}));

    pathCount_ += files.size();
    const std::size_t start = entries_.empty() ? 0 : entries_.back().numbersEnd;
    const std::size_t numberCount = pathCount_ - start;
    hasOwnNumbers_ = hasOwnNumbers_ && numberCount == files.size();
    entries_.push_back({node, folder, firstFile, track, existed, true, pathCount_, numberCount});
}

void PlainPathSet::addSingle(const Path& path) {
    ++pathCount_;
    PlainNode* node = trie_.root.get();
    PlainTrack track;
    bool existed = false;
    for (std::size_t level = 0; level < path.size(); ++level) {
        const Found found = findOrAppend(*node, path[level], level + 1 == path.size());
        existed = found.existed;
        if (existed) track.push_back(found.position);
        node = node->children[found.position].get();
    }
    if (!existed) return;
    maxTrackLength_ = std::max(maxTrackLength_, track.size());
    maxTrackKey_ = std::max(maxTrackKey_, pathCount_);
    pathTracks_[pathCount_] = track;
}

// --- Fetching and walking.

PlainPathSet::Fetched PlainPathSet::fetch(std::size_t number) const {
    const auto entry = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& candidate) {
        return candidate.numbersEnd >= number;
    });
    if (entry == entries_.end()) return {Fetched::Kind::kSinglePath};
    if (!entry->isCertain) return {Fetched::Kind::kUncertain};
    const std::size_t place =
        entry->firstFile + number - 1 - (entry->numbersEnd - entry->numberCount);
    if (place >= entry->folder->children.size()) return {Fetched::Kind::kNoFile};
    return {Fetched::Kind::kPath, &*entry, entry->folder->children[place].get()};
}

void PlainPathSet::resetWalk() {
    trie_.reset();
    iterationPosition_ = 0;
}

bool PlainPathSet::hasNext() const {
    return pathTracks_.contains(iterationPosition_ + 1) || trie_.hasNext();
}

std::optional<PlainPathSet::Step> PlainPathSet::next() {
    ++iterationPosition_;  // also where there is none: the described step comes first
    const auto repeated = pathTracks_.find(iterationPosition_);
    if (repeated == pathTracks_.end()) {
        std::optional<Path> path = trie_.next();
        if (!path) return std::nullopt;
        return Step{*std::move(path), false};
    }
    Path path;
    const PlainNode* node = trie_.root.get();
    for (const std::size_t position : repeated->second) {
        node = node->children.at(position).get();
        path.push_back(node->key);
    }
    return Step{path, true};
}

// --- Saving.

/// What a track ends with, if nothing but the shape of the trie and the number of files tells.
bool PlainPathSet::readsAsFirstFile(const Entry& entry) const {
    if (entry.track.size() <= 1) return false;
    const auto parent = trie_.nodeAt(entry.track, entry.track.size() - 1);
    const std::size_t position = entry.track.back();
    if (position >= parent->children.size()) return true;
    const PlainNode& target = *parent->children[position];
    if (target.children.empty()) return true;
    const bool fitsTarget = entry.numberCount <= target.children.size();
    const bool fitsParent = entry.numberCount <= parent->children.size() - position;
    return fitsParent && !fitsTarget;
}

bool PlainPathSet::needsTrackEnds() const {
    return std::any_of(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        return entry.numberCount > 0 && readsAsFirstFile(entry) != entry.endsInFirstFile;
    });
}

Bytes PlainPathSet::saved(const std::vector<bool>& shape) const {
    BodyWriter out;
    out.bits(shape);
    FlatTrie flat;
    flatten(*trie_.root, flat);
    out.sizedBytes(flat.structure, 3);
    out.integer(flat.keys.size(), 3);
    const std::size_t keyTag = out.tag(flat.longestKey);
    for (const Bytes& key : flat.keys) out.sizedBytes(key, keyTag);

    if (!entries_.empty()) {
        out.byte(1);
        const std::size_t endTag = out.tag(std::max(pathCount_, entries_.back().numbersEnd));
        const std::size_t countTag = out.tag(entries_.size());
        out.integer(entries_.size(), countTag);
        for (const Entry& entry : entries_) out.integer(entry.numbersEnd, endTag);
        out.integer(entries_.size(), 3);
        const std::size_t positionTag =
            out.tag(std::max(flat.maxFanOut, largestPositionOf(entries_)));
        const std::size_t lengthTag = out.tag(std::max(maxFolderDepth_, longestOf(entries_)));
        for (const Entry& entry : entries_) out.track(entry.track, positionTag, lengthTag);
        if (needsTrackEnds()) {
            out.byte(2);
            std::vector<bool> ends;
            for (const Entry& entry : entries_) ends.push_back(entry.endsInFirstFile);
            out.bits(ends);
        }
    }
    if (!pathTracks_.empty()) {
        out.byte(0);
        const std::size_t positionTag = out.tag(flat.maxFanOut);
        const std::size_t lengthTag = out.tag(maxTrackLength_);
        const std::size_t numberTag = out.tag(maxTrackKey_);
        for (const auto& [number, track] : pathTracks_) {
            out.integer(number, numberTag);
            out.track(track, positionTag, lengthTag);
        }
    }

    BodyWriter form;
    form.integer(out.body.size(), 3);
    form.body.insert(form.body.end(), out.body.begin(), out.body.end());
    return form.body;
}

// --- Loading.

/// The same set on nodes of its own, its walk not begun.
PlainPathSet PlainPathSet::onCopyOfTrie() const {
    PlainPathSet set = *this;
    set.trie_ = trie_.separateCopy();
    set.iterationPosition_ = 0;
    for (Entry& entry : set.entries_)
        entry.folder =
            set.trie_.nodeAt(entry.track, entry.track.size() - (entry.endsInFirstFile ? 1 : 0));
    return set;
}

PlainPathSet PlainPathSet::opened() const {
    return onCopyOfTrie();
}

PlainPathSet PlainPathSet::loaded() const {
    PlainPathSet set = onCopyOfTrie();
    forgetFormerFiles(*set.trie_.root);
    const bool hasTrackEnds = needsTrackEnds();
    std::size_t rootChildren = 0;  // at the time of an entry, as far as the form tells
    for (Entry& entry : set.entries_) {
        if (entry.track.empty()) {
            entry.isCertain = entry.isCertain && entry.firstFile == rootChildren;
            rootChildren += entry.numberCount;
            continue;
        }
        rootChildren = std::max(rootChildren, entry.track.front() + 1);
        if (!hasTrackEnds && set.readsAsFirstFile(entry) != entry.endsInFirstFile) {
            // Only entries without numbers come here.
            entry.endsInFirstFile = !entry.endsInFirstFile;
            const std::size_t levels = entry.track.size() - (entry.endsInFirstFile ? 1 : 0);
            entry.folder = set.trie_.nodeAt(entry.track, levels);
            entry.firstFile = entry.endsInFirstFile ? entry.track.back() : 0;
            entry.components.clear();
            for (std::size_t level = 1; level <= levels; ++level)
                entry.components.push_back(set.trie_.nodeAt(entry.track, level)->key);
        }
    }

    FlatTrie flat;
    flatten(*set.trie_.root, flat);
    set.pathCount_ = entries_.empty() ? flat.leafCount : entries_.back().numbersEnd;
    set.pathCount_ += pathTracks_.size();
    set.maxFolderDepth_ = longestOf(entries_);
    std::unordered_map<std::size_t, PlainTrack> inOrder;
    set.maxTrackLength_ = 0;
    set.maxTrackKey_ = 0;
    for (const auto& [number, track] : pathTracks_) {
        inOrder[number] = track;
        set.maxTrackLength_ = std::max(set.maxTrackLength_, track.size());
        set.maxTrackKey_ = std::max(set.maxTrackKey_, number);
    }
    set.pathTracks_.swap(inOrder);
    return set;
}

bool PlainPathSet::isCertain() const {
    return std::all_of(entries_.begin(), entries_.end(),
                       [](const Entry& entry) { return entry.isCertain; });
}

}  // namespace compressedpaths
