// The saved form of a path set: the shape of the coding tree, the trie and the index, packed, and
// compressed as a whole. docs/format.md draws it.

#include <algorithm>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/SavedForm.hpp"
#include "compressedpaths/SavedSetReader.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "compressedpaths/store/TrieOrder.hpp"

namespace compressedpaths {
namespace {

using sixpacks::BlockCompressor;
using sixpacks::byteSizeOf;
using sixpacks::PackedSizeT;
using sixpacks::widthOf;

/// Passes the body on in pieces, into the caller's bytes or to be compressed.
class BodyWriter {
public:
    explicit BodyWriter(Bytes& out) noexcept : out_(&out) {}
    explicit BodyWriter(BlockCompressor& compressor) noexcept : compressor_(&compressor) {}

    /// Where `count` bytes are to be written, which the caller does before anything else.
    std::uint8_t* roomFor(std::size_t count) {
        if (buffer_.size() >= kPieceSize) flush();
        buffer_.reserveFor(count);
        size_ += count;
        return buffer_.extend(count);
    }
    void integer(std::uint64_t value, PackedSizeT width) {
        const unsigned byteCount = byteSizeOf(width);
        sixpacks::writeInteger(value, byteCount, roomFor(byteCount));
    }
    void byte(std::uint8_t value) { *roomFor(1) = value; }
    void bytes(const Bytes& bytes) {
        integer(bytes.size(), kCount8);
        if (!bytes.empty()) std::copy(bytes.begin(), bytes.end(), roomFor(bytes.size()));
    }
    PackedSizeT widthTag(std::uint64_t largest) {
        const PackedSizeT width = widthOf(largest);
        byte(static_cast<std::uint8_t>(width));
        return width;
    }
    void flush() {
        if (compressor_ != nullptr)
            compressor_->append(buffer_.values());
        else
            out_->insert(out_->end(), buffer_.data(), buffer_.end());
        buffer_.truncate(0);
    }
    std::uint64_t size() const noexcept { return size_; }

private:
    static constexpr std::size_t kPieceSize = std::size_t{1} << 16;

    Bytes* out_ = nullptr;
    BlockCompressor* compressor_ = nullptr;
    FlatArray<std::uint8_t> buffer_;
    std::uint64_t size_ = 0;
};

/// How deep each folder is, from what stands above it.
FlatArray<std::uint32_t> depthsOf(const PathArena& arena) {
    FlatArray<std::uint32_t> depths;
    depths.assign(arena.folderCount(), 0);
    for (PathArena::Id id = 1; id < arena.folderCount(); ++id)
        depths.at(id) = depths[arena.parentOf(id)] + 1;
    return depths;
}

}  // namespace

std::size_t HuffmanPathTree::serializePathTree(Bytes& structure, std::vector<Bytes>& keys) {
    return pathTree->serialize(structure, keys);
}

std::size_t HuffmanPathTree::deserializePathTree(Bytes& structure, std::vector<Bytes>& keys) {
    auto fresh = std::make_unique<BPathTree>();
    forgetPaths();
    pathTree.swap(fresh);
    pathCount = pathTree->deserialize(structure, keys);
    return pathCount;
}

/// What the body is made of, written in its order.
class HuffmanPathTree::BodySections {
public:
    BodySections(const HuffmanPathTree& set, BodyWriter& out) : set_(set), out_(out) {}

    void write() {
        Bytes shape;
        sixpacks::boolVecToBytes(shape, set_.boolTree);
        out_.bytes(shape);
        writeTrie();
        if (set_.entries_.size() + set_.entries_.unpairedPlaces().size() > 0) writeFolders();
        if (!set_.repeatedPaths_.isEmpty()) writeRepeatedPaths();
        out_.flush();
    }

private:
    // The width tags of all sections are those of the counters, which may be smaller than the data
    // need: a copy that shares the trie adds names and children, a first-met folder does not count
    // for the depth, coded components may come from elsewhere. So each is raised to that.

    void writeTrie() {
        Bytes structure;
        std::size_t longestKey = set_.maxCodeBytes;
        maxFanOut_ = set_.arena().childCount(PathArena::kRoot);
        forEachNode(set_.arena(),
                    [&](const PathArena::Cursor& child, std::uint32_t childCount, bool isLast) {
                        structure.push_back(structureByte(childCount, isLast));
                        maxFanOut_ = std::max<std::uint64_t>(maxFanOut_, childCount);
                        longestKey = std::max(longestKey, set_.arena().nameOf(child).keySize());
                    });
        out_.bytes(structure);

        out_.integer(structure.size(), kCount8);
        const unsigned lengthSize = byteSizeOf(out_.widthTag(longestKey));
        forEachNode(set_.arena(), [&](const PathArena::Cursor& child, std::uint32_t, bool) {
            const NameView name = set_.arena().nameOf(child);
            const std::size_t size = name.keySize();
            writeKey(name,
                     sixpacks::writeInteger(size, lengthSize, out_.roomFor(lengthSize + size)));
        });
    }

    void writeFolders() {
        const FolderEntries& entries = set_.entries_;
        out_.byte(kFolderSection);
        const PackedSizeT endWidth =
            out_.widthTag(std::max<std::uint64_t>(set_.pathCount, set_.totalOfEntries()));
        const std::size_t endCount = entries.size() + entries.unpairedCounts().size();
        const PackedSizeT endCountWidth = out_.widthTag(endCount);
        out_.integer(endCount, endCountWidth);
        std::uint64_t end = 0;
        set_.forEachEntry([&](const FolderEntries::Cursor& entry) {
            end = entry.pathsUpTo();
            out_.integer(end, endWidth);
        });
        for (const std::uint64_t count : entries.unpairedCounts())
            out_.integer(end += count, endWidth);

        writeTracks();
        if (isMisread_) writeFirstFiles();
    }

    template <class Visit>
    void forEachPlace(Visit visit) const {
        set_.forEachEntry([&](const FolderEntries::Cursor& entry) {
            visit(entry.entry.place, entry.entry.pathCount);
        });
        for (const FolderEntries::Place& place : set_.entries_.unpairedPlaces())
            visit(place, std::uint64_t{0});
    }

    void writeTracks() {
        const FlatArray<std::uint32_t> depths = depthsOf(set_.arena());
        std::size_t longest = set_.maxFolderDepth;
        forEachPlace([&](const FolderEntries::Place& place, std::uint64_t fileCount) {
            const PathArena::Id folder = set_.folderOfEntry(place);
            if (folder >= depths.size()) throw InvalidImageException();
            longest = std::max<std::size_t>(longest, depths[folder] + (place.existed ? 1U : 0U));
            if (!isMisread_ && fileCount > 0)
                isMisread_ =
                    readsAsFirstFile(place, folder, depths[folder], fileCount) != place.existed;
        });
        out_.integer(set_.entries_.size() + set_.entries_.unpairedPlaces().size(), kCount8);
        const unsigned positionSize = byteSizeOf(out_.widthTag(maxFanOut_));
        const PackedSizeT lengthWidth = out_.widthTag(longest);
        forEachPlace([&](const FolderEntries::Place& place, std::uint64_t) {
            PathArena::Id folder = set_.folderOfEntry(place);
            const std::size_t depth = depths[folder];
            const std::size_t length = depth + (place.existed ? 1 : 0);
            out_.integer(length, lengthWidth);
            if (length == 0) return;
            std::uint8_t* const track = out_.roomFor(length * positionSize);
            if (place.existed)
                sixpacks::writeInteger(set_.firstChildOf(place), positionSize,
                                       track + depth * positionSize);
            for (std::size_t level = depth; level > 0; folder = set_.arena().parentOf(folder))
                sixpacks::writeInteger(set_.arena().positionOf(folder), positionSize,
                                       track + --level * positionSize);
        });
    }

    /// Whether a reader takes the last position of an entry's track for its first file.
    bool readsAsFirstFile(const FolderEntries::Place& place, PathArena::Id folder,
                          std::size_t depth, std::uint64_t fileCount) const {
        const PathArena& arena = set_.arena();
        if (!place.existed) {
            if (depth <= 1) return false;
            return readsTrackAsFirstFile(
                arena.childCount(folder),
                arena.childCount(arena.parentOf(folder)) - std::uint64_t{arena.positionOf(folder)},
                fileCount);
        }
        const std::uint64_t first = set_.firstChildOf(place);
        const std::uint32_t siblings = arena.childCount(folder);
        if (first >= siblings) return true;
        const auto child = place.run != PathArena::kNone
                               ? std::optional(PathArena::Place{place.run, place.skip})
                               : arena.childAt(folder, first);
        const PathArena::Id inside = arena.folderAt(*child);
        return readsTrackAsFirstFile(inside == PathArena::kNone ? 0 : arena.childCount(inside),
                                     siblings - first, fileCount);
    }

    void writeFirstFiles() {
        std::vector<bool> isFirstFile;
        forEachPlace([&](const FolderEntries::Place& place, std::uint64_t) {
            isFirstFile.push_back(place.existed);
        });
        Bytes packed;
        sixpacks::boolVecToBytes(packed, isFirstFile);
        out_.byte(kFirstFileSection);
        out_.bytes(packed);
    }

    void writeRepeatedPaths() {
        const auto tracks = set_.pathTracks();
        std::size_t longest = set_.maxTrackLength;
        std::size_t largestNumber = set_.maxTrackKey;
        for (const auto& [number, track] : tracks) {
            longest = std::max(longest, track.size());
            largestNumber = std::max(largestNumber, number);
        }
        out_.byte(kTrackSection);
        const PackedSizeT positionWidth = out_.widthTag(maxFanOut_);
        const PackedSizeT lengthWidth = out_.widthTag(longest);
        const PackedSizeT numberWidth = out_.widthTag(largestNumber);
        for (const auto& [number, track] : tracks) {
            out_.integer(number, numberWidth);
            out_.integer(track.size(), lengthWidth);
            for (const std::size_t position : track) out_.integer(position, positionWidth);
        }
    }

    const HuffmanPathTree& set_;
    BodyWriter& out_;
    std::uint64_t maxFanOut_ = 0;
    bool isMisread_ = false;  // an entry with files, by who knows only its track
};

void HuffmanPathTree::serialize(std::vector<std::uint8_t>& bytes, bool compress) {
    const std::size_t before = bytes.size();
    try {
        std::uint64_t bodySize = 0;
        bytes.resize(before + kCount8Size);
        if (compress) {
            BlockCompressor compressor;
            BodyWriter out(compressor);
            BodySections(*this, out).write();
            compressor.appendBlockTo(bytes);
            bodySize = out.size();
        } else {
            BodyWriter out(bytes);
            BodySections(*this, out).write();
            bodySize = out.size();
        }
        sixpacks::writeInteger(bodySize, kCount8Size, bytes.data() + before);
    } catch (...) {
        bytes.resize(before);
        throw;
    }
}

void HuffmanPathTree::deserialize(std::vector<std::uint8_t>& bytes, bool compressed,
                                  std::uint64_t maxBodySize) {
    sixpacks::ByteReader in(bytes);
    const std::uint64_t bodySize = in.readInteger(kCount8Size);
    const std::span<const std::uint8_t> body = std::span(bytes).subspan(kCount8Size);
    if (!compressed) return SavedSetReader(*this, body).read();

    if (bodySize > maxBodySize || bodySize / sixpacks::kMaxExpansion > body.size())
        throw ImplausibleLengthException();
    const sixpacks::InflatedBlock block = sixpacks::inflateBlock(body, bodySize);
    if (!block.isWhole) throw DamagedBlockException();
    SavedSetReader(*this, block.bytes).read();
}

/// Drops what refers to the trie that has been: the index and the paths added again.
void HuffmanPathTree::forgetPaths() noexcept {
    entries_ = FolderEntries();
    repeatedPaths_.truncate(0);
    repeatedOrder_.truncate(0);
    entriesByFolder_.reset();
    walkText_ = {};
    pathCount = 0;
}

}  // namespace compressedpaths
