// Adding paths, fetching them by number, copying the set.

#include <algorithm>
#include <cmath>
#include <iterator>
#include <type_traits>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

using Id = PathArena::Id;
using Transaction = PathArena::Transaction;

std::size_t longestOf(const std::vector<std::vector<Bytes>>& codedLists) {
    std::size_t longest = 0;
    for (const std::vector<Bytes>& list : codedLists)
        for (const Bytes& code : list) longest = std::max(longest, code.size());
    return longest;
}

bool isCodedWhole(const std::vector<std::vector<std::u16string>>& lists,
                  const std::vector<std::vector<Bytes>>& codedLists) {
    return std::equal(
        lists.begin(), lists.end(), codedLists.begin(), codedLists.end(),
        [](const auto& list, const auto& coded) { return list.size() == coded.size(); });
}

/// The path numbers as integers. They come from hosts whose only numbers are 64-bit floats.
std::vector<std::size_t> wholeNumbers(const std::vector<double>& requested, std::size_t pathCount) {
    std::vector<std::size_t> numbers;
    numbers.reserve(requested.size());
    for (const double number : requested) {
        // Written so that NaN is refused too, and nothing is converted that does not fit.
        if (!(number >= 1 && number < 0x1p64) || number != std::floor(number))
            throw InvalidPathNumberException();
        numbers.push_back(static_cast<std::size_t>(number));
        if (numbers.back() > pathCount) throw InvalidPathNumberException();
    }
    return numbers;
}

/// One folder entry of keys, in stored form.
struct StoredEntry {
    CodedBatch::Entry entry;
    FlatArray<std::uint8_t> names;

    StoredEntry(const Path& folder, const std::vector<Bytes>& files)
        : entry{0, folder.size(), 0, files.size(), 0} {
        for (const Bytes& key : folder) appendStoredName(key, names);
        entry.folderSize = names.size();
        for (const Bytes& key : files) appendStoredName(key, names);
        entry.fileSize = names.size() - entry.folderSize;
    }
};

void moveTo(std::vector<Path>& out, std::vector<Path>& paths) noexcept {
    out.insert(out.end(), std::make_move_iterator(paths.begin()),
               std::make_move_iterator(paths.end()));
}

}  // namespace

HuffmanPathTree::HuffmanPathTree() : pathTree(std::make_unique<BPathTree>()) {}

HuffmanPathTree::~HuffmanPathTree() {
    clearThreadResources();
}

// --- Adding.

/// Takes back what has been added to the index and the counters, unless it is kept.
class HuffmanPathTree::Addition {
public:
    explicit Addition(HuffmanPathTree& set)
        : set_(set),
          entries_(set.entries_.mark()),
          pathCount_(set.pathCount),
          maxFolderDepth_(set.maxFolderDepth),
          adding_(set.arena()) {}
    Addition(const Addition&) = delete;
    Addition& operator=(const Addition&) = delete;
    ~Addition() {
        if (isKept_) return;
        set_.entries_.rollBack(entries_);
        set_.pathCount = pathCount_;
        set_.maxFolderDepth = maxFolderDepth_;
    }

    Transaction& trie() noexcept { return adding_; }
    void keep() noexcept {
        adding_.commit();
        set_.entriesByFolder_.reset();
        isKept_ = true;
    }

private:
    HuffmanPathTree& set_;
    FolderEntries::Mark entries_;
    std::size_t pathCount_;
    std::size_t maxFolderDepth_;
    Transaction adding_;
    bool isKept_ = false;
};

void HuffmanPathTree::addCodedBatch(const CodedBatch& batch) {
    const CodedBatch* const only = &batch;
    addCodedBatches({&only, 1});
}

/// Forgets the lists that ParallelCoding.cpp keeps of a batch that could not be coded.
void HuffmanPathTree::clearThreadResources() {
    const auto release = [](auto& list) { std::remove_reference_t<decltype(list)>().swap(list); };
    release(asyncFolders);
    release(asyncFiles);
    release(asyncCodedFolders);
    release(asyncCodedFiles);
}

void HuffmanPathTree::addCodedBatches(std::span<const CodedBatch* const> batches) {
    Addition addition(*this);
    std::size_t longest = maxCodeBytes;
    std::vector<Id> chain;
    for (const CodedBatch* const batch : batches) {
        std::span<const std::uint8_t> names = batch->names().values();
        chain.clear();
        for (const CodedBatch::Entry& entry : batch->entries().values()) {
            addEntry(addition.trie(), chain, entry, names);
            names = names.subspan(entry.folderSize + entry.fileSize);
        }
        longest = std::max(longest, batch->maxCodeBytes());
    }
    addition.keep();
    maxCodeBytes = longest;
}

/// Adds an entry whose folder begins with the first folders of `chain`, those of the entry before;
/// `chain` then has its own. Returns how many of its own components were there.
std::size_t HuffmanPathTree::addEntry(Transaction& adding, std::vector<Id>& chain,
                                      const CodedBatch::Entry& entry,
                                      std::span<const std::uint8_t> names) {
    if (entry.fileCount >= PathArena::kFolderLink) throw SetTooLargeException();
    chain.resize(std::min(entry.sharedComponents, chain.size()));
    chain.reserve(chain.size() + entry.folderCount);
    const std::uint8_t* name = names.data();
    const std::uint8_t* const filesBegin = name + entry.folderSize;
    std::size_t foundCount = 0;
    for (std::size_t level = 0; level < entry.folderCount; ++level) {
        const std::uint8_t* const end = viewName(name, filesBegin).end();
        const std::span<const std::uint8_t> storedName(name, end);
        const Id parent = chain.empty() ? PathArena::kRoot : chain.back();
        Transaction::Found child;
        if (foundCount == level) child = adding.find(parent, storedName);
        foundCount += child.isThere() ? 1 : 0;
        chain.push_back(child.isThere() ? adding.enter(child)
                                        : adding.makeFolder(parent, storedName));
        name = end;
    }

    const Id folder = chain.empty() ? PathArena::kRoot : chain.back();
    FolderEntries::Entry added;
    added.place.existed = !chain.empty() && foundCount == entry.folderCount;
    added.place.folder = folder;
    added.place.firstChild = arena().childCount(folder);
    if (entry.fileCount > 0) {
        const PathArena::Appended files = adding.appendFiles(
            folder, {filesBegin, entry.fileSize}, static_cast<std::uint32_t>(entry.fileCount));
        added.place.run = files.run;
        added.place.skip = files.skip;
    }
    added.pathCount = pathCount + entry.fileCount - totalOfEntries();
    entries_.reserveForOne();
    entries_.append(added);
    pathCount += entry.fileCount;
    if (added.place.existed) maxFolderDepth = std::max(maxFolderDepth, chain.size() + 1);
    return foundCount;
}

void HuffmanPathTree::addPathToBTree(std::vector<Bytes>& codedFolders,
                                     std::vector<Bytes>& codedFiles) {
    const StoredEntry stored(codedFolders, codedFiles);
    Addition addition(*this);
    std::vector<Id> chain;
    const std::size_t foundCount =
        addEntry(addition.trie(), chain, stored.entry, stored.names.values());
    addition.keep();
    for (std::size_t level = foundCount; level < codedFolders.size(); ++level)
        Bytes().swap(codedFolders[level]);
    for (Bytes& code : codedFiles) Bytes().swap(code);
}

void HuffmanPathTree::addPathToBTreeFromAsyncData() {
    if (!isCodedWhole(asyncFolders, asyncCodedFolders) ||
        !isCodedWhole(asyncFiles, asyncCodedFiles))
        throw IncompleteBatchException();

    Addition addition(*this);
    std::vector<Id> chain;
    for (std::size_t i = 0; i < asyncCodedFolders.size(); ++i) {
        const StoredEntry stored(asyncCodedFolders[i], asyncCodedFiles[i]);
        addEntry(addition.trie(), chain, stored.entry, stored.names.values());
    }
    addition.keep();
    maxCodeBytes =
        std::max({maxCodeBytes, longestOf(asyncCodedFolders), longestOf(asyncCodedFiles)});
    clearThreadResources();
}

void HuffmanPathTree::addPathToBTree(std::vector<Bytes>& codedPath) {
    reserveForRepeatedPath();
    static_cast<void>(repeatedPathsFrom(pathCount + 1));  // refuses an order that leads nowhere
    std::vector<std::size_t> existing;
    PathArena::Place place{};
    const bool existed = pathTree->addPath(codedPath, existing, place);
    entriesByFolder_.reset();
    ++pathCount;
    if (!existed) return;
    maxTrackLength = std::max(maxTrackLength, existing.size());
    maxTrackKey = std::max(maxTrackKey, pathCount);
    rememberRepeatedPath(pathCount, place);
}

void HuffmanPathTree::reserveForRepeatedPath() {
    repeatedPaths_.reserveFor(1);
    repeatedOrder_.reserveFor(1);
}

const HuffmanPathTree::RepeatedPath& HuffmanPathTree::repeatedPath(std::uint32_t position) const {
    if (position >= repeatedPaths_.size()) throw InvalidImageException();
    return repeatedPaths_[position];
}

/// Where the paths from a number on stand in their order.
const std::uint32_t* HuffmanPathTree::repeatedPathsFrom(std::size_t number) const {
    return std::partition_point(
        repeatedOrder_.data(), repeatedOrder_.end(),
        [&](std::uint32_t position) { return repeatedPath(position).number < number; });
}

const HuffmanPathTree::RepeatedPath* HuffmanPathTree::repeatedPathAt(std::size_t number) const {
    const std::uint32_t* const found = repeatedPathsFrom(number);
    if (found == repeatedOrder_.end() || repeatedPath(*found).number != number) return nullptr;
    return &repeatedPaths_[*found];
}

/// Remembers a path that there is room for, replacing the one that has the number.
void HuffmanPathTree::rememberRepeatedPath(std::size_t number, const PathArena::Place& place) {
    const std::uint32_t* const found = repeatedPathsFrom(number);
    if (found != repeatedOrder_.end() && repeatedPath(*found).number == number) {
        repeatedPaths_.at(*found).place = place;
        return;
    }
    repeatedOrder_.insert(static_cast<std::size_t>(found - repeatedOrder_.data()),
                          static_cast<std::uint32_t>(repeatedPaths_.size()));
    repeatedPaths_.append({number, place});
}

bool HuffmanPathTree::hasDuplicate(const std::uint64_t& pathNumber) {
    return repeatedPathAt(pathNumber) != nullptr;
}

// --- The index.

/// The total of paths after the last entry, those without a place included.
std::uint64_t HuffmanPathTree::totalOfEntries() const noexcept {
    std::uint64_t total = entries_.pathCount();
    for (const std::uint64_t count : entries_.unpairedCounts()) total += count;
    return total;
}

PathArena::Id HuffmanPathTree::folderOfEntry(const FolderEntries::Place& place) const {
    return place.run == PathArena::kNone ? place.folder : arena().runAt(place.run).folder;
}

std::uint64_t HuffmanPathTree::firstChildOf(const FolderEntries::Place& place) const {
    if (place.run == PathArena::kNone) return place.firstChild;
    return std::uint64_t{arena().runAt(place.run).first} + place.skip;
}

/// A file of an entry, counted from 0; `from` is an item that it is not before, if one is known.
/// Numbers of paths that were added on their own before the entry count as its own, so that its
/// last ones can be beyond the files that it has.
std::optional<PathArena::Place> HuffmanPathTree::findFile(const FolderEntries::Entry& entry,
                                                          std::uint64_t index,
                                                          PathArena::Link from) const {
    const FolderEntries::Place& place = entry.place;
    Id folder = place.folder;
    std::uint64_t position = place.firstChild + index;
    if (place.run != PathArena::kNone) {
        const PathArena::Run run = arena().runAt(place.run);
        if (place.skip + index < run.count)
            return PathArena::Place{place.run, static_cast<std::uint32_t>(place.skip + index)};
        folder = run.folder;
        position = run.first + place.skip + index;
    }
    return arena().childAt(folder, position, from == PathArena::kNone ? place.run : from);
}

PathArena::Place HuffmanPathTree::fileOf(const FolderEntries::Entry& entry,
                                         std::uint64_t index) const {
    const auto file = findFile(entry, index);
    if (!file) throw InvalidFileNumberException();
    return *file;
}

std::vector<std::size_t> HuffmanPathTree::trackTo(Id folder) const {
    std::vector<std::size_t> track;
    for (; folder != PathArena::kRoot; folder = arena().parentOf(folder))
        track.push_back(arena().positionOf(folder));
    std::reverse(track.begin(), track.end());
    return track;
}

std::vector<std::size_t> HuffmanPathTree::trackOfEntry(const FolderEntries::Place& place) const {
    std::vector<std::size_t> track = trackTo(folderOfEntry(place));
    if (place.existed) track.push_back(firstChildOf(place));
    return track;
}

std::vector<std::size_t> HuffmanPathTree::partitionEnds() const {
    std::vector<std::size_t> ends;
    ends.reserve(entries_.size() + entries_.unpairedCounts().size());
    forEachEntry([&](const FolderEntries::Cursor& cursor) { ends.push_back(cursor.pathsUpTo()); });
    for (const std::uint64_t count : entries_.unpairedCounts())
        ends.push_back((ends.empty() ? 0 : ends.back()) + count);
    return ends;
}

std::vector<std::vector<std::size_t>> HuffmanPathTree::folderTracks() const {
    std::vector<std::vector<std::size_t>> tracks;
    tracks.reserve(entries_.size() + entries_.unpairedPlaces().size());
    forEachEntry([&](const FolderEntries::Cursor& cursor) {
        tracks.push_back(trackOfEntry(cursor.entry.place));
    });
    for (const FolderEntries::Place& place : entries_.unpairedPlaces())
        tracks.push_back(trackOfEntry(place));
    return tracks;
}

std::unordered_map<std::size_t, std::vector<std::size_t>> HuffmanPathTree::pathTracks() const {
    std::unordered_map<std::size_t, std::vector<std::size_t>> tracks;
    for (const auto& [number, place] : repeatedPaths_.values()) {
        std::vector<std::size_t> track = trackTo(arena().folderOf(place));
        track.push_back(arena().positionOf(place));
        tracks[number] = std::move(track);
    }
    return tracks;
}

// --- Fetching.

/// The entry that a path number belongs to. Requires a number from 1 to pathCount.
std::optional<FolderEntries::Cursor> HuffmanPathTree::entryHolding(std::size_t number) const {
    if (auto cursor = entries_.holding(number)) return cursor;
    if (number <= totalOfEntries()) throw InvalidTrackException();
    return std::nullopt;  // a path that was added on its own
}

/// What a track leads to in a set that has tracks but no totals.
Path HuffmanPathTree::pathOfTrack(std::size_t number) const {
    if (number > entries_.unpairedPlaces().size()) throw InvalidPathNumberException();
    const FolderEntries::Place& place = entries_.unpairedPlaces()[number - 1];
    const Id folder = folderOfEntry(place);
    if (arena().childCount(PathArena::kRoot) == 0) throw NoTreeToTraverseException();
    if (folder == PathArena::kRoot && !place.existed) throw EmptyPathForTraverseException();
    Path keys;
    arena().appendKeysTo(folder, keys);
    if (!place.existed) return keys;
    const auto child = arena().childAt(folder, firstChildOf(place));
    if (!child) throw InvalidTrackException();
    keys.push_back(keyOf(arena().nameOf(*child)));
    return keys;
}

void HuffmanPathTree::getPath(std::vector<Path>& foldersOut, std::vector<Path>& filesOut,
                              const std::vector<double>& requested) {
    const std::vector<std::size_t> numbers = wholeNumbers(requested, pathCount);
    std::vector<Path> folders;
    std::vector<Path> files;
    const bool hasTracksAlone = entries_.size() == 0 && !entries_.unpairedPlaces().empty();
    if (hasTracksAlone) {
        for (const std::size_t number : numbers) folders.push_back(pathOfTrack(number));
    } else {
        std::optional<FolderEntries::Cursor> entry;
        std::size_t previous = 0;
        for (const std::size_t number : numbers) {
            const bool isSameEntry =
                entry && number > entry->pathsBefore && number <= entry->pathsUpTo();
            if (!isSameEntry) entry = entryHolding(number);
            if (!entry) continue;
            if (!isSameEntry || number < previous) {
                arena().appendKeysTo(folderOfEntry(entry->entry.place), folders.emplace_back());
                files.emplace_back();
            }
            const PathArena::Place file = fileOf(entry->entry, number - entry->pathsBefore - 1);
            files.back().push_back(keyOf(arena().nameOf(file)));
            previous = number;
        }
    }
    foldersOut.reserve(foldersOut.size() + folders.size());
    filesOut.reserve(filesOut.size() + files.size());
    moveTo(foldersOut, folders);
    moveTo(filesOut, files);
}

// --- Copying.

void HuffmanPathTree::copyTree(const HuffmanPathTree& other) {
    other.ensureCodingTree();
    auto sharedTree = std::make_unique<BPathTree>(*other.pathTree);
    std::vector<bool> newBoolTree = other.boolTree;
    std::u16string newTreeString = other.treeString;
    std::vector<double> newFrequencies = other.frequencies;
    std::vector<HNode> newNodes = other.nodes;
    auto newCodes = other.codes;
    auto newParents = other.parents;
    FolderEntries newEntries = other.entries_;
    FlatArray<RepeatedPath> newRepeatedPaths = other.repeatedPaths_;
    FlatArray<std::uint32_t> newRepeatedOrder = other.repeatedOrder_;
    CodeTables newCodeTables = other.codeTables_;

    boolTree.swap(newBoolTree);
    treeString.swap(newTreeString);
    frequencies.swap(newFrequencies);
    nodes.swap(newNodes);
    codes.swap(newCodes);
    parents.swap(newParents);
    entries_ = std::move(newEntries);
    repeatedPaths_.swap(newRepeatedPaths);
    repeatedOrder_.swap(newRepeatedOrder);
    codeTables_ = std::move(newCodeTables);
    pathTree = std::move(sharedTree);
    maxFolderDepth = other.maxFolderDepth;
    maxTrackLength = other.maxTrackLength;
    maxCodeBytes = other.maxCodeBytes;
    maxTrackKey = other.maxTrackKey;
    iterationPosition = other.iterationPosition;
    pathCount = other.pathCount;
    rootIndex = other.rootIndex;
    isCodingTreeDeferred_ = false;
    entriesByFolder_.reset();
    walkText_ = {};
}

}  // namespace compressedpaths
