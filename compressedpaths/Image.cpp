// Writing a set as an image, and opening one.

#include "compressedpaths/Image.hpp"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <ostream>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "compressedpaths/store/Hashing.hpp"
#include "compressedpaths/store/TrieOrder.hpp"

namespace compressedpaths {
namespace {

using image::Header;
using image::Part;

constexpr std::uint64_t aligned(std::uint64_t offset) noexcept {
    return (offset + image::kAlignment - 1) / image::kAlignment * image::kAlignment;
}

/// Writes bytes to a stream and sums each MiB of them.
class SummingWriter {
public:
    explicit SummingWriter(std::ostream& out) : out_(out) { piece_.reserve(image::kSummedSize); }

    void write(const void* bytes, std::size_t size) {
        const auto* next = static_cast<const std::uint8_t*>(bytes);
        position_ += size;
        while (size > 0) {
            const std::size_t count = std::min(size, image::kSummedSize - piece_.size());
            piece_.insert(piece_.end(), next, next + count);
            next += count;
            size -= count;
            if (piece_.size() == image::kSummedSize) finishPiece();
        }
    }
    void padTo(std::uint64_t offset) {
        const std::array<std::uint8_t, image::kAlignment> zeros{};
        while (position_ < offset)
            write(zeros.data(), std::min<std::size_t>(zeros.size(), offset - position_));
    }
    /// The sums of all that has been written; what follows is not summed.
    std::vector<std::uint64_t> finish() {
        if (!piece_.empty()) finishPiece();
        return sums_;
    }

private:
    void finishPiece() {
        sums_.push_back(hashOf(piece_.data(), piece_.size(), 0));
        out_.write(reinterpret_cast<const char*>(piece_.data()),
                   static_cast<std::streamsize>(piece_.size()));
        if (!out_) throw ImageNotWrittenException();
        piece_.clear();
    }

    std::ostream& out_;
    std::vector<std::uint8_t> piece_;
    std::vector<std::uint64_t> sums_;
    std::uint64_t position_ = 0;
};

}  // namespace

class ImageWriter {
public:
    explicit ImageWriter(const HuffmanPathTree& set) : set_(set) {
        sixpacks::boolVecToBytes(shape_, set.boolTree);
        for (const FolderEntries::Place& place : set.entries_.unpairedPlaces())
            unpairedPlaces_.push_back(
                {place.existed ? 1U : 0U, place.run, place.skip, place.folder, place.firstChild});
        listParts();
        layOut();
    }

    void write(std::ostream& out) {
        SummingWriter writer(out);
        writer.write(&header_, sizeof header_);
        for (std::size_t part = 0; part + 1 < image::kPartCount; ++part) {
            writer.padTo(header_.parts[part].offset);
            writer.write(bytes_[part].data(), bytes_[part].size());
        }
        writer.padTo(header_[Part::kSums].offset);
        const std::vector<std::uint64_t> sums = writer.finish();
        writer.write(sums.data(), sums.size() * sizeof(std::uint64_t));
        writer.padTo(header_.byteSize);
        static_cast<void>(writer.finish());
        out.flush();
        if (!out) throw ImageNotWrittenException();
    }

private:
    template <class T>
    void set(Part part, const T* values, std::size_t count) {
        bytes_.at(static_cast<std::size_t>(part)) = {reinterpret_cast<const std::uint8_t*>(values),
                                                     count * sizeof(T)};
    }
    template <class Values>
    void set(Part part, const Values& values) {
        set(part, values.data(), values.size());
    }

    void listParts() {
        const PathArena::Arrays& arena = set_.arena().arrays();
        set(Part::kNames, arena.names);
        set(Part::kFolders, arena.folders);
        set(Part::kFormerFiles, arena.formerFiles.slots());
        set(Part::kEntryBytes, set_.entries_.bytes());
        set(Part::kEntryBlocks, set_.entries_.blocks());
        set(Part::kUnpairedCounts, set_.entries_.unpairedCounts());
        set(Part::kUnpairedPlaces, unpairedPlaces_);
        set(Part::kRepeatedPaths, set_.repeatedPaths_);
        set(Part::kRepeatedOrder, set_.repeatedOrder_);
        set(Part::kShape, shape_);
        set(Part::kLeaves, set_.treeString);
        set(Part::kFrequencies, set_.frequencies);
        set(Part::kFoldersByName, set_.arena().foldersByName());
        set(Part::kEntriesByFolder, set_.entriesByFolder());
        if (set_.pathCount < image::kMinPathsWithTables) return;
        const CodeTables::Arrays& tables = set_.codeTables_.arrays();
        set(Part::kPagesOfWords, tables.pageOf);
        set(Part::kWords, tables.words);
        set(Part::kLongWords, tables.longWords);
        set(Part::kLongBits, tables.longBits);
        set(Part::kSteps, tables.steps);
        set(Part::kBranches, tables.branches);
    }

    void layOut() {
        header_.magic = image::kMagic;
        header_.version = image::kVersion;
        header_.partCount = image::kPartCount;
        header_.seed = set_.arena().seed();
        header_.pathCount = set_.pathCount;
        header_.maxFolderDepth = set_.maxFolderDepth;
        header_.maxTrackLength = set_.maxTrackLength;
        header_.maxCodeBytes = set_.maxCodeBytes;
        header_.maxTrackKey = set_.maxTrackKey;
        header_.entryCount = set_.entries_.size();
        header_.entryPathCount = set_.entries_.pathCount();
        header_.lastRun = set_.entries_.lastRun();
        header_.formerFileCount =
            static_cast<std::uint32_t>(set_.arena().arrays().formerFiles.count());

        std::uint64_t end = sizeof header_;
        for (std::size_t part = 0; part + 1 < image::kPartCount; ++part) {
            header_.parts[part] = {aligned(end), bytes_[part].size()};
            end = aligned(end) + bytes_[part].size();
        }
        const std::uint64_t sumCount = (aligned(end) + image::kSummedSize - 1) / image::kSummedSize;
        header_[Part::kSums] = {aligned(end), sumCount * sizeof(std::uint64_t)};
        header_.byteSize =
            aligned(aligned(end) + sumCount * sizeof(std::uint64_t)) + image::kZeroBytes;
    }

    const HuffmanPathTree& set_;
    Bytes shape_;
    std::vector<image::UnpairedPlace> unpairedPlaces_;
    std::array<std::span<const std::uint8_t>, image::kPartCount> bytes_;
    Header header_{};
};

class ImageReader {
public:
    /// Reads the header. Throws InvalidImageException unless all parts are inside the image.
    explicit ImageReader(std::span<const std::byte> image) : image_(image) {
        if (reinterpret_cast<std::uintptr_t>(image.data()) % alignof(std::uint64_t) != 0 ||
            image.size() < sizeof header_ + image::kZeroBytes)
            throw InvalidImageException();
        std::memcpy(&header_, image.data(), sizeof header_);
        if (header_.magic != image::kMagic || header_.version != image::kVersion ||
            header_.partCount != image::kPartCount || header_.byteSize > image.size() ||
            header_.byteSize < sizeof header_ + image::kZeroBytes)
            throw InvalidImageException();
        const std::uint64_t end = header_.byteSize - image::kZeroBytes;
        for (const image::Extent& part : header_.parts)
            if (part.offset % image::kAlignment != 0 || part.offset > end ||
                part.byteSize > end - part.offset)
                throw InvalidImageException();
    }

    const Header& header() const noexcept { return header_; }

    template <class T>
    std::span<const T> values(Part part) const {
        const image::Extent& extent = header_[part];
        if (extent.byteSize % sizeof(T) != 0) throw InvalidImageException();
        return {reinterpret_cast<const T*>(image_.data() + extent.offset),
                static_cast<std::size_t>(extent.byteSize / sizeof(T))};
    }
    template <class T>
    FlatArray<T> array(Part part) const {
        return FlatArray<T>::borrowing(values<T>(part));
    }

    std::unique_ptr<HuffmanPathTree> open() const {
        auto set = std::make_unique<HuffmanPathTree>();
        set->pathTree = std::make_unique<BPathTree>(openArena());
        openEntries(*set);
        openCode(*set);
        set->pathCount = header_.pathCount;
        set->maxFolderDepth = header_.maxFolderDepth;
        set->maxTrackLength = header_.maxTrackLength;
        set->maxCodeBytes = header_.maxCodeBytes;
        set->maxTrackKey = header_.maxTrackKey;
        return set;
    }

private:
    std::shared_ptr<PathArena> openArena() const {
        PathArena::Arrays arrays;
        arrays.names = array<std::uint8_t>(Part::kNames);
        arrays.folders = array<PathArena::Folder>(Part::kFolders);
        auto slots = array<std::uint32_t>(Part::kFormerFiles);
        const bool isPowerOfTwo = slots.isEmpty() || std::has_single_bit(slots.size());
        if (arrays.folders.isEmpty() || arrays.folders.size() > PathArena::kFolderLink ||
            arrays.names.size() > PathArena::kFolderLink || !isPowerOfTwo)
            throw InvalidImageException();
        arrays.formerFiles = IdTable(std::move(slots), header_.formerFileCount);
        auto arena = std::make_shared<PathArena>(std::move(arrays), header_.seed);
        arena->setFoldersByName(array<PathArena::Id>(Part::kFoldersByName));
        return arena;
    }

    void openEntries(HuffmanPathTree& set) const {
        auto blocks = array<FolderEntries::Block>(Part::kEntryBlocks);
        const std::uint64_t mostEntries = blocks.size() * FolderEntries::kBlockSize;
        if (header_.entryCount > mostEntries ||
            header_.entryCount + FolderEntries::kBlockSize <= mostEntries)
            throw InvalidImageException();
        set.entries_ = FolderEntries(array<std::uint8_t>(Part::kEntryBytes), std::move(blocks),
                                     header_.entryCount, header_.entryPathCount, header_.lastRun);
        const auto counts = values<std::uint64_t>(Part::kUnpairedCounts);
        const auto places = values<image::UnpairedPlace>(Part::kUnpairedPlaces);
        if (!counts.empty() && !places.empty()) throw InvalidImageException();
        set.entries_.reserveUnpaired(counts.size(), places.size());
        for (const std::uint64_t count : counts) set.entries_.appendCount(count);
        for (const image::UnpairedPlace& place : places)
            set.entries_.appendPlace(
                {place.existed != 0, place.run, place.skip, place.folder, place.firstChild});
        set.repeatedPaths_ = array<HuffmanPathTree::RepeatedPath>(Part::kRepeatedPaths);
        set.repeatedOrder_ = array<std::uint32_t>(Part::kRepeatedOrder);
        if (set.repeatedOrder_.size() != set.repeatedPaths_.size()) throw InvalidImageException();
        set.entriesByFolder_.set(array<std::uint32_t>(Part::kEntriesByFolder));
    }

    void openCode(HuffmanPathTree& set) const {
        const auto shape = values<std::uint8_t>(Part::kShape);
        sixpacks::bytesToBoolVec({shape.begin(), shape.end()}, set.boolTree);
        const auto leaves = values<char16_t>(Part::kLeaves);
        set.treeString.assign(leaves.begin(), leaves.end());
        const auto frequencies = values<double>(Part::kFrequencies);
        set.frequencies.assign(frequencies.begin(), frequencies.end());
        if (header_.pathCount < image::kMinPathsWithTables) {
            set.buildCodeTables();
        } else {
            CodeTables::Arrays tables;
            tables.pageOf = array<std::uint16_t>(Part::kPagesOfWords);
            tables.words = array<std::uint64_t>(Part::kWords);
            tables.longWords = array<std::uint32_t>(Part::kLongWords);
            tables.longBits = array<std::uint8_t>(Part::kLongBits);
            tables.steps = array<std::uint64_t>(Part::kSteps);
            tables.branches = array<std::uint32_t>(Part::kBranches);
            set.codeTables_ = CodeTables(std::move(tables));
        }
        set.isCodingTreeDeferred_ = true;
    }

    std::span<const std::byte> image_;
    Header header_{};
};

namespace {

void require(bool holds) {
    if (!holds) throw InvalidImageException();
}

void verifySums(const ImageReader& reader, std::span<const std::byte> image) {
    const image::Extent& extent = reader.header()[Part::kSums];
    const auto sums = reader.values<std::uint64_t>(Part::kSums);
    std::span<const std::byte> left = image.first(extent.offset);
    for (const std::uint64_t sum : sums) {
        const std::size_t size = std::min(left.size(), image::kSummedSize);
        require(size > 0 && hashOf(left.data(), size, 0) == sum);
        left = left.subspan(size);
    }
    const std::span<const std::byte> after =
        image.subspan(extent.offset + extent.byteSize,
                      reader.header().byteSize - extent.offset - extent.byteSize);
    require(left.empty() && std::all_of(after.begin(), after.end(),
                                        [](std::byte byte) { return byte == std::byte{0}; }));
}

/// Goes through all children of all folders. Every position must be that of the child, and each
/// folder be met: none is met twice, since the arena refuses to give it in a second place.
void verifyTrie(const PathArena& arena) {
    std::size_t metCount = 1;
    std::vector<PathArena::Id> open{PathArena::kRoot};
    while (!open.empty()) {
        const PathArena::Id folder = open.back();
        open.pop_back();
        std::uint32_t left = arena.childCount(folder);
        if (left == 0) continue;
        for (PathArena::Cursor child = arena.firstChild(folder);; arena.advance(child)) {
            require(arena.positionOf(child.place()) == child.position);
            require(arena.nameOf(child).data != nullptr);
            if (child.isFile()) require(arena.nameOffset(child.run, child.index) == child.name);
            const PathArena::Id inside = arena.folderAt(child);
            if (inside != PathArena::kNone) {
                require(isSameName(arena.nameOf(inside), arena.nameOf(child)));
                ++metCount;
                open.push_back(inside);
            }
            if (--left == 0) {
                require(child.link == arena.lastItemOf(folder));
                break;
            }
        }
    }
    require(metCount == arena.folderCount());
    arena.requireOwnNames();
    require(static_cast<std::size_t>(std::count_if(
                arena.arrays().formerFiles.slots().values().begin(),
                arena.arrays().formerFiles.slots().values().end(), [](PathArena::Id id) {
                    return id != IdTable::kNone;
                })) == arena.arrays().formerFiles.count());
}

void verifyOrder(std::span<const std::uint32_t> order, std::size_t size, std::uint32_t first) {
    std::vector<bool> isMet(size + first, false);
    require(order.size() == size);
    for (const std::uint32_t number : order) {
        require(number >= first && number - first < size && !isMet[number]);
        isMet[number] = true;
    }
}

}  // namespace

void HuffmanPathTree::verifyIndex() const {
    const PathArena& trie = arena();
    const auto requirePlace = [&](const FolderEntries::Place& place) {
        const Id folder = folderOfEntry(place);
        require(folder < trie.folderCount());
        // Totals can put the files of an entry without folder past the children of the root.
        require(!place.existed || firstChildOf(place) <= trie.childCount(folder));
        if (place.run != PathArena::kNone) require(place.skip < trie.runAt(place.run).count);
    };
    std::uint64_t total = 0;
    forEachEntry([&](const FolderEntries::Cursor& entry) {
        if (entry.number % FolderEntries::kBlockSize == 0)
            require(entries_.blocks()[entry.number / FolderEntries::kBlockSize].pathsBefore ==
                    total);
        total += entry.entry.pathCount;
        requirePlace(entry.entry.place);
    });
    require(total == entries_.pathCount());
    for (const FolderEntries::Place& place : entries_.unpairedPlaces()) requirePlace(place);
    require(totalOfEntries() <= pathCount);

    verifyOrder(repeatedOrder_.values(), repeatedPaths_.size(), 0);
    for (std::size_t i = 0; i < repeatedPaths_.size(); ++i) {
        const RepeatedPath& path = repeatedPaths_[repeatedOrder_[i]];
        require(i == 0 || repeatedPaths_[repeatedOrder_[i - 1]].number < path.number);
        if ((path.place.link & PathArena::kFolderLink) == 0)
            require(path.place.index < trie.runAt(path.place.link).count);
        require(trie.nameOf(path.place).data != nullptr);
    }

    const std::span<const std::uint32_t> entryOrder = entriesByFolder().values();
    verifyOrder(entryOrder, entries_.size(), 0);
    for (std::size_t i = 1; i < entryOrder.size(); ++i) {
        const Id before = folderOfEntry(entryAt(entryOrder[i - 1]).entry.place);
        const Id folder = folderOfEntry(entryAt(entryOrder[i]).entry.place);
        require(before < folder || (before == folder && entryOrder[i - 1] < entryOrder[i]));
    }
    verifyOrder(trie.foldersByName().values(), trie.folderCount() - 1, 1);
    require(trie.isOrderedByName());
}

void HuffmanPathTree::writeImage(std::ostream& out) const {
    ImageWriter(*this).write(out);
}

std::unique_ptr<HuffmanPathTree> HuffmanPathTree::openImage(std::span<const std::byte> image) {
    return ImageReader(image).open();
}

void HuffmanPathTree::verifyImage(std::span<const std::byte> image) {
    const ImageReader reader(image);
    verifySums(reader, image);
    const auto set = reader.open();
    verifyTrie(set->arena());
    set->verifyIndex();
    set->verifyCode();
}

}  // namespace compressedpaths
