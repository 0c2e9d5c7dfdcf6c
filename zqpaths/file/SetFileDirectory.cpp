#include "zqpaths/file/SetFileDirectory.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace zqpaths {
namespace {

using compressedpaths::sixpacks::ByteReader;

constexpr std::uint32_t tagOf(char a, char b, char c, char d) noexcept {
    return static_cast<std::uint32_t>(a | b << 8 | c << 16 | d << 24);
}

// Of a section.
constexpr std::uint32_t kSegmentsTag = tagOf('S', 'E', 'G', 'M');
constexpr std::uint32_t kGoneTag = tagOf('G', 'O', 'N', 'E');
constexpr std::uint32_t kScansTag = tagOf('S', 'C', 'A', 'N');
constexpr std::uint32_t kMustBeKnown = 1;  // by readers
constexpr std::uint32_t kMayBeCopied = 2;  // by a writer that does not know it
constexpr std::size_t kSectionHeadSize = 16;
constexpr std::size_t kSectionAlignment = 8;
constexpr std::size_t kSegmentEntrySize = 56;
constexpr std::size_t kBlockEntrySize = 32;

constexpr std::uint64_t kMostInAll = std::uint64_t{1} << 62;  // paths, and bytes of their text
constexpr std::uint64_t kMostInflated = 1032;  // bytes that a byte of deflate can stand for

/// The entries of a section, one after the other.
std::vector<SegmentEntry> decodeSegments(ByteReader section) {
    if (section.left() % kSegmentEntrySize != 0)
        refuseDamage("the directory ends within a segment");
    std::vector<SegmentEntry> segments(section.left() / kSegmentEntrySize);
    for (SegmentEntry& entry : segments) {
        const std::uint64_t form = section.readInteger(4);
        const std::uint64_t kept = section.readInteger(4);
        if ((form != 1 && form != 2) || kept != 0) refuseNewer();
        entry.form = static_cast<SegmentForm>(form);
        for (std::uint64_t* field : {&entry.offset, &entry.size, &entry.pathCount, &entry.textSize,
                                     &entry.treeStringSize, &entry.sum})
            *field = section.readInteger(8);
    }
    return segments;
}

BlockEntry decodeBlock(ByteReader section) {
    if (section.left() != kBlockEntrySize) refuseDamage("the directory ends within a block");
    BlockEntry entry{};
    for (std::uint64_t* field : {&entry.offset, &entry.size, &entry.count, &entry.sum})
        *field = section.readInteger(8);
    return entry;
}

/// Takes a section that there is once at most.
template <class Value, class Decode>
void takeOnce(std::optional<Value>& taken, const char* what, Decode decode) {
    if (taken) refuseDamage(std::string("the directory lists its ") + what + " twice");
    taken = decode();
}

/// Every path has a name of its own, which takes a byte at least where it is not packed. So the
/// work that a file asks for is in proportion to its bytes.
bool hasRoomForPaths(const SegmentEntry& entry) noexcept {
    const std::uint64_t pathsAByte = entry.form == SegmentForm::kImage ? 1 : kMostInflated;
    return entry.pathCount / pathsAByte <= entry.size;
}

bool isPlausible(const SegmentEntry& entry) noexcept {
    const bool isTextEnough = entry.textSize <= kMostInAll && entry.pathCount > 0 &&
                              entry.pathCount <= entry.textSize / 2;  // a byte and one more each
    const bool isTreeStringRight =
        entry.form == SegmentForm::kImage
            ? entry.treeStringSize == 0
            : entry.treeStringSize % 2 == 0 && entry.treeStringSize < entry.size;
    return isTextEnough && isTreeStringRight && hasRoomForPaths(entry);
}

/// Each run has a path at least, and no path is in two.
bool isPlausibleGone(const BlockEntry& entry, std::uint64_t pathCount) noexcept {
    return entry.size % kGoneRunSize == 0 && entry.size / kGoneRunSize <= entry.count &&
           entry.count <= pathCount;
}

/// Extents of a file that may be taken by one thing each.
class TakenExtents {
public:
    explicit TakenExtents(Extent own) : end_(own.end), taken_{own} {}

    /// False if it does not lie between the header and the end.
    bool take(std::uint64_t offset, std::uint64_t size, std::uint64_t alignment) {
        if (offset < kPageSize || offset % alignment != 0 || offset > end_ || size == 0 ||
            size > end_ - offset)
            return false;
        taken_.push_back({offset, offset + size});
        return true;
    }

    bool areApart() {
        std::ranges::sort(taken_, {}, &Extent::begin);
        return std::adjacent_find(taken_.begin(), taken_.end(),
                                  [](const Extent& a, const Extent& b) {
                                      return a.end > b.begin;
                                  }) == taken_.end();
    }

private:
    std::uint64_t end_;
    std::vector<Extent> taken_;
};

void requirePlausible(const std::vector<SegmentEntry>& segments, TakenExtents& taken) {
    std::uint64_t textSize = 0;  // at least two bytes for each path
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const SegmentEntry& entry = segments[i];
        if (!taken.take(entry.offset, entry.size, kPageSize) || !isPlausible(entry))
            refuseDamage("the directory says of segment " + std::to_string(i + 1) +
                         " what cannot be");
        textSize += entry.textSize;
        if (textSize > kMostInAll)
            refuseDamage("the directory counts more paths than there can be");
    }
}

/// Writes one section after the other.
class SectionWriter {
public:
    /// The content is to be written by the one who asks.
    ByteWriter section(std::uint32_t tag, std::uint32_t flags, std::size_t size) {
        const std::size_t begin = bytes_.size();
        bytes_.resize(begin + kSectionHeadSize + alignedUp(size, kSectionAlignment));
        ByteWriter writer(std::span<std::byte>(bytes_).subspan(begin));
        writer.integer(tag, 4);
        writer.integer(flags, 4);
        writer.integer(size, 8);
        return writer;
    }

    void block(std::uint32_t tag, std::uint32_t flags, const std::optional<BlockEntry>& entry) {
        if (!entry) return;
        ByteWriter writer = section(tag, flags, kBlockEntrySize);
        for (const std::uint64_t field : {entry->offset, entry->size, entry->count, entry->sum})
            writer.integer(field, 8);
    }

    std::vector<std::byte> take() noexcept { return std::move(bytes_); }

private:
    std::vector<std::byte> bytes_;
};

}  // namespace

std::uint64_t Directory::pathCount() const noexcept {
    std::uint64_t count = 0;
    for (const SegmentEntry& entry : segments) count += entry.pathCount;
    return count;
}

Directory decodeSections(std::span<const std::byte> bytes) {
    Directory directory;
    std::optional<std::vector<SegmentEntry>> segments;
    try {
        ByteReader reader = readerOf(bytes);
        while (!reader.isAtEnd()) {
            const auto tag = static_cast<std::uint32_t>(reader.readInteger(4));
            const auto flags = static_cast<std::uint32_t>(reader.readInteger(4));
            const auto section = std::as_bytes(reader.readBytes(reader.readInteger(8)));
            reader.readBytes(alignedUp(section.size(), kSectionAlignment) - section.size());
            const auto block = [&] { return decodeBlock(readerOf(section)); };
            if (tag == kSegmentsTag)
                takeOnce(segments, "segments", [&] { return decodeSegments(readerOf(section)); });
            else if (tag == kGoneTag)
                takeOnce(directory.gone, "gone paths", block);
            else if (tag == kScansTag)
                takeOnce(directory.scans, "scans", block);
            else if ((flags & kMustBeKnown) != 0)
                refuseNewer();
            else
                directory.unknown.push_back({tag, flags, {section.begin(), section.end()}});
        }
    } catch (const compressedpaths::sixpacks::PrematureEndException&) {
        refuseDamage("the directory ends within a section");
    }
    if (!segments) refuseDamage("the directory lists no segments");
    directory.segments = *std::move(segments);
    return directory;
}

void requireRoom(const Directory& directory, Extent own) {
    TakenExtents taken(own);
    requirePlausible(directory.segments, taken);
    for (const auto& block : {directory.gone, directory.scans})
        if (block && !taken.take(block->offset, block->size, kBlockAlignment))
            refuseDamage("the directory says of a block what cannot be");
    if (directory.gone && !isPlausibleGone(*directory.gone, directory.pathCount()))
        refuseDamage("the directory says of the gone paths what cannot be");
    if (!taken.areApart()) refuseDamage("segments lie over one another");
}

std::vector<std::byte> encodeDirectory(const Directory& directory) {
    SectionWriter sections;
    ByteWriter writer =
        sections.section(kSegmentsTag, kMustBeKnown, directory.segments.size() * kSegmentEntrySize);
    for (const SegmentEntry& entry : directory.segments) {
        writer.integer(static_cast<std::uint32_t>(entry.form), 4);
        writer.integer(0, 4);
        for (const std::uint64_t field : {entry.offset, entry.size, entry.pathCount, entry.textSize,
                                          entry.treeStringSize, entry.sum})
            writer.integer(field, 8);
    }
    // Who does not know the gone paths would give them out as others; who does not know the scans
    // misses nothing, but may not copy where they are.
    sections.block(kGoneTag, kMustBeKnown, directory.gone);
    sections.block(kScansTag, 0, directory.scans);
    for (const UnknownSection& section : directory.unknown)
        sections.section(section.tag, section.flags, section.bytes.size()).bytes(section.bytes);
    return sections.take();
}

bool canBeRewritten(const Directory& directory) noexcept {
    return std::all_of(
        directory.unknown.begin(), directory.unknown.end(),
        [](const UnknownSection& section) { return (section.flags & kMayBeCopied) != 0; });
}

}  // namespace zqpaths
