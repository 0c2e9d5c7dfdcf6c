#include "compressedpaths/SavedSetReader.hpp"

#include <algorithm>
#include <numeric>
#include <utility>

#include "compressedpaths/SavedForm.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"

namespace compressedpaths {
namespace {

using sixpacks::byteSizeOf;
using sixpacks::PackedSizeT;
using Node = TrieBuilder::Node;

constexpr std::uint32_t kNotFirst = 0xFFFFFFFF;

PackedSizeT readWidth(sixpacks::ByteReader& in) {
    return static_cast<PackedSizeT>(in.readInteger(1));
}

}  // namespace

void SavedSetReader::read() {
    readShape();
    try {
        readTrie();
        readSections();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        if (trie_) build();  // what stands before the damage stays
        throw;
    }
    build();
}

void SavedSetReader::readShape() {
    Bytes packed;
    sixpacks::unpackVector(packed, body_, kCount8);
    std::vector<bool> shape;
    sixpacks::bytesToBoolVec(packed, shape);
    set_.boolTree.swap(shape);
}

void SavedSetReader::readTrie() {
    const std::span<const std::uint8_t> structure = body_.readBytes(body_.readInteger(kCount8Size));
    const std::uint64_t keyCount = body_.readInteger(kCount8Size);
    const PackedSizeT lengthWidth = readWidth(body_);
    body_.requireElements(keyCount, 1);  // the width may be none, which is found with the first key
    if (keyCount > 0) keyLengthSize_ = byteSizeOf(lengthWidth);
    keys_.reserveFor(static_cast<std::size_t>(keyCount));
    for (std::uint64_t left = keyCount; left > 0; --left) {
        keys_.append(static_cast<std::uint64_t>(body_.position() - begin_));
        const std::uint64_t size = body_.readInteger(keyLengthSize_);
        static_cast<void>(body_.readBytes(size));
        maxCodeBytes_ = std::max<std::size_t>(maxCodeBytes_, size);
    }
    trie_.emplace(structure, keys_.size());
    if (trie_->error() != TrieBuilder::Error::kNone) TrieBuilder::raise(trie_->error());
}

void SavedSetReader::readSections() {
    if (body_.isAtEnd()) return;
    std::uint64_t section = body_.readInteger(1);
    if (section == kFolderSection) {
        readFolders();
        if (body_.isAtEnd()) return;
        section = body_.readInteger(1);
        if (section == kFirstFileSection) {
            if (!readFirstFiles() || body_.isAtEnd()) return;
            section = body_.readInteger(1);
        }
    }
    if (section == kTrackSection) readRepeatedTracks();
}

void SavedSetReader::readFolders() {
    const PackedSizeT endWidth = readWidth(body_);
    const PackedSizeT endCountWidth = readWidth(body_);
    std::vector<std::size_t> ends;
    sixpacks::unpackSizeTVector(ends, body_, endWidth, endCountWidth);
    if (!std::is_sorted(ends.begin(), ends.end())) throw DescendingPathTotalsException();
    if (!ends.empty() && ends.back() > FolderEntries::kMaxPathCount) throw SetTooLargeException();
    ends_.swap(ends);
    hasFolders_ = true;

    const std::uint64_t trackCount = body_.readInteger(kCount8Size);
    const unsigned positionSize = byteSizeOf(readWidth(body_));
    const unsigned lengthSize = byteSizeOf(readWidth(body_));
    body_.requireElements(trackCount, lengthSize);
    tracks_.reserve(trackCount);
    for (std::uint64_t left = trackCount; left > 0; --left) {
        const std::uint64_t length = body_.readInteger(lengthSize);
        body_.requireElements(length, positionSize);
        Track track;
        for (std::uint64_t level = 0; level < length; ++level) {
            if (track.node == TrieBuilder::kNoNode) throw InvalidTrackException();
            track.parent = track.node;
            const std::uint64_t position = body_.readInteger(positionSize);
            const std::uint32_t count = trie_->childCount(track.parent);
            if (position > count) throw InvalidTrackException();
            track.last = static_cast<std::uint32_t>(position);
            if (level == 0) track.first = track.last;
            track.node =
                position == count ? TrieBuilder::kNoNode : trie_->childOf(track.parent, track.last);
        }
        track.length = static_cast<std::uint8_t>(std::min<std::uint64_t>(length, 2));
        maxFolderDepth_ = std::max<std::size_t>(maxFolderDepth_, length);
        tracks_.push_back(track);
    }
}

/// Reads which entries begin with a first file. Bytes that cannot be that for these entries are
/// those of a section that this reader does not know, at which reading ends: false then.
bool SavedSetReader::readFirstFiles() {
    const std::size_t entryCount = tracks_.size();
    const std::size_t packedSize = entryCount == 0 ? 0 : entryCount / 8 + 2;
    if (body_.left() < kCount8Size || body_.readInteger(kCount8Size) != packedSize) return false;
    const std::span<const std::uint8_t> packed = body_.readBytes(packedSize);
    std::vector<bool> isFirstFile;
    sixpacks::bytesToBoolVec({packed.begin(), packed.end()}, isFirstFile);
    if (isFirstFile.size() != entryCount) return false;
    isFirstFile_.swap(isFirstFile);
    return true;
}

void SavedSetReader::readRepeatedTracks() {
    const PackedSizeT positionWidth = readWidth(body_);
    const PackedSizeT lengthWidth = readWidth(body_);
    const PackedSizeT numberWidth = readWidth(body_);
    hasRepeated_ = true;
    while (!body_.isAtEnd()) {
        RepeatedTrack track{body_.readInteger(byteSizeOf(numberWidth)), TrieBuilder::kRootNode, 0};
        maxTrackKey_ = std::max<std::size_t>(maxTrackKey_, track.number);
        const std::uint64_t length = body_.readInteger(byteSizeOf(lengthWidth));
        const unsigned positionSize = byteSizeOf(positionWidth);
        body_.requireElements(length, positionSize);
        if (length == 0) throw InvalidTrackException();
        Node node = TrieBuilder::kRootNode;
        for (std::uint64_t left = length; left > 0; --left) {
            track.parent = node;
            const std::uint64_t position = body_.readInteger(positionSize);
            if (position >= trie_->childCount(node)) throw InvalidTrackException();
            track.last = static_cast<std::uint32_t>(position);
            node = trie_->childOf(node, track.last);
        }
        maxTrackLength_ = std::max<std::size_t>(maxTrackLength_, length);
        repeated_.push_back(track);
    }
    isWhole_ = true;
}

std::uint64_t SavedSetReader::countOf(std::size_t entry) const noexcept {
    if (entry >= ends_.size()) return 0;
    return ends_[entry] - (entry == 0 ? 0 : ends_[entry - 1]);
}

/// Where the files of an entry begin. An empty track does not say where in the root; the entries
/// before do, by their totals, as long as no path was added on its own: `rootChildren` is how many
/// children the root had.
SavedSetReader::Start SavedSetReader::startOf(std::size_t entry,
                                              std::uint64_t& rootChildren) const {
    const Track& track = tracks_[entry];
    const std::uint64_t count = countOf(entry);
    if (track.length == 0) {
        const std::uint64_t first = rootChildren;
        rootChildren += count;
        return {TrieBuilder::kRootNode, first, false};
    }
    bool isFirstFile = track.node == TrieBuilder::kNoNode;
    if (!isFirstFile && !isFirstFile_.empty()) {
        isFirstFile = isFirstFile_[entry];
    } else if (!isFirstFile && track.length > 1) {
        isFirstFile = readsTrackAsFirstFile(trie_->childCount(track.node),
                                            trie_->childCount(track.parent) - track.last, count);
    }
    if (isFirstFile) return {track.parent, track.last, true};
    return {track.node, 0, false};
}

/// Calls `visit(entry, start)` for every entry with a track.
template <class Visit>
void SavedSetReader::forEachStart(Visit visit) const {
    std::uint64_t rootChildren = 0;
    for (std::size_t entry = 0; entry < tracks_.size(); ++entry) {
        visit(entry, startOf(entry, rootChildren));
        if (tracks_[entry].length > 0)
            rootChildren = std::max(rootChildren, std::uint64_t{tracks_[entry].first} + 1);
    }
}

/// Puts the trie and the index into the set.
void SavedSetReader::build() {
    forEachStart([this](std::size_t entry, const Start& start) {
        if (start.folder != TrieBuilder::kRootNode) trie_->markFolder(start.folder);
        trie_->markFiles(start.folder, start.first, countOf(entry));
    });
    auto tree = std::make_unique<BPathTree>(
        trie_->build(TrieBuilder::Keys(begin_, keys_.data(), keyLengthSize_)));

    FolderEntries entries;
    const std::size_t pairs = std::min(ends_.size(), tracks_.size());
    entries.reserveUnpaired(ends_.size() - pairs, tracks_.size() - pairs);
    forEachStart([&](std::size_t entry, const Start& start) {
        if (entry >= pairs) return entries.appendPlace(placeOf(start));
        entries.reserveForOne();
        entries.append({countOf(entry), placeOf(start)});
    });
    for (std::size_t entry = pairs; entry < ends_.size(); ++entry)
        entries.appendCount(countOf(entry));
    entries.shrink();
    FlatArray<HuffmanPathTree::RepeatedPath> repeatedPaths;
    FlatArray<std::uint32_t> repeatedOrder;
    listRepeated(repeatedPaths, repeatedOrder);

    set_.forgetPaths();
    set_.pathTree.swap(tree);
    set_.entries_ = std::move(entries);
    set_.repeatedPaths_.swap(repeatedPaths);
    set_.repeatedOrder_.swap(repeatedOrder);
    set_.maxCodeBytes = maxCodeBytes_;
    set_.pathCount = trie_->error() == TrieBuilder::Error::kNone ? trie_->leafCount() : 0;
    if (hasFolders_) {
        if (!ends_.empty()) set_.pathCount = ends_.back();
        set_.maxFolderDepth = maxFolderDepth_;
    }
    if (!hasRepeated_) return;
    set_.maxTrackLength = maxTrackLength_;
    set_.maxTrackKey = maxTrackKey_;
    if (isWhole_) set_.pathCount += set_.repeatedPaths_.size();
}

/// The paths added again, in their order, and their order by number. Of equal numbers the first has
/// the place and the last the path.
void SavedSetReader::listRepeated(FlatArray<HuffmanPathTree::RepeatedPath>& paths,
                                  FlatArray<std::uint32_t>& order) const {
    std::vector<std::uint32_t> sorted(repeated_.size());
    std::iota(sorted.begin(), sorted.end(), 0U);
    std::stable_sort(sorted.begin(), sorted.end(), [this](std::uint32_t a, std::uint32_t b) {
        return repeated_[a].number < repeated_[b].number;
    });
    std::vector<std::uint32_t> lastOf(repeated_.size(),
                                      kNotFirst);  // by the first of equal numbers
    for (std::size_t i = 0, first = 0; i < sorted.size(); ++i) {
        if (repeated_[sorted[i]].number != repeated_[sorted[first]].number) first = i;
        lastOf[sorted[first]] = sorted[i];
    }
    std::vector<std::uint32_t> placeOfFirst(repeated_.size());
    paths.reserveFor(repeated_.size());
    for (std::size_t i = 0; i < repeated_.size(); ++i) {
        if (lastOf[i] == kNotFirst) continue;
        placeOfFirst[i] = static_cast<std::uint32_t>(paths.size());
        const RepeatedTrack& track = repeated_[lastOf[i]];
        paths.append({track.number, trie_->placeOf(track.parent, track.last)});
    }
    order.reserveFor(paths.size());
    for (const std::uint32_t i : sorted)
        if (lastOf[i] != kNotFirst) order.append(placeOfFirst[i]);
}

FolderEntries::Place SavedSetReader::placeOf(const Start& start) const {
    FolderEntries::Place place;
    place.existed = start.existed;
    if (start.first < trie_->childCount(start.folder)) {
        const PathArena::Place first =
            trie_->placeOf(start.folder, static_cast<std::size_t>(start.first));
        if ((first.link & PathArena::kFolderLink) == 0) {
            place.run = first.link;
            place.skip = first.index;
            return place;
        }
    }
    place.folder = trie_->folderOf(start.folder);
    place.firstChild = start.first;
    return place;
}

}  // namespace compressedpaths
