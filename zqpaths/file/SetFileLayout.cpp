#include "zqpaths/file/SetFileLayout.hpp"

#include <algorithm>
#include <bit>
#include <cassert>
#include <string>
#include <string_view>
#include <utility>

#include "compressedpaths/Image.hpp"
#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/store/Hashing.hpp"
#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

// Images are read as they stand in the file, without a step between.
static_assert(std::endian::native == std::endian::little,
              "set files are read and written by little-endian machines only");

using compressedpaths::sixpacks::ByteReader;

// The older form was a database, which says at a place of its own whose it is.
constexpr std::string_view kOlderForm{"SQLite format 3\0", 16};
constexpr std::string_view kOlderOwner = "zqps";
constexpr std::size_t kOlderOwnerOffset = 68;

constexpr std::size_t kSumSize = 8;

// Of the header.
constexpr std::uint32_t kKnownFlags = 0;  // of those that a reader must know

// Of a section of the directory.
constexpr std::uint32_t kSegmentsTag = 'S' | 'E' << 8 | 'G' << 16 | 'M' << 24;
constexpr std::uint32_t kMustBeKnown = 1;  // by readers
constexpr std::uint32_t kMayBeCopied = 2;  // by a writer that does not know it
constexpr std::size_t kSectionHeadSize = 16;
constexpr std::size_t kSectionAlignment = 8;
constexpr std::size_t kEntrySize = 56;

constexpr std::uint64_t kMostInAll = std::uint64_t{1} << 62;  // paths, and bytes of their text

[[noreturn]] void refuseDamage(const std::string& reason) {
    throw Error(ErrorKind::kDamaged, {}, reason);
}

[[noreturn]] void refuseNewer() {
    throw Error(ErrorKind::kNotASet, {}, "is a set that needs a newer version of this program");
}

ByteReader readerOf(std::span<const std::byte> bytes) noexcept {
    return ByteReader({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

/// Writes integers one after the other, lowest byte first, and zeros.
class ByteWriter {
public:
    explicit ByteWriter(std::span<std::byte> bytes) noexcept : left_(bytes) {}

    void integer(std::uint64_t value, unsigned byteCount) noexcept {
        for (unsigned i = 0; i < byteCount; ++i, value >>= 8)
            left_[i] = static_cast<std::byte>(value & 0xFF);
        left_ = left_.subspan(byteCount);
    }
    void bytes(std::span<const std::byte> bytes) noexcept {
        std::copy(bytes.begin(), bytes.end(), left_.begin());
        left_ = left_.subspan(bytes.size());
    }

private:
    std::span<std::byte> left_;
};

/// Whether the last eight of the bytes are the sum of those before.
bool hasItsSum(std::span<const std::byte> bytes) {
    const auto summed = bytes.first(bytes.size() - kSumSize);
    return readerOf(bytes.last(kSumSize)).readInteger(kSumSize) == sumOf(summed);
}

void putSum(std::span<std::byte> bytes) noexcept {
    const auto summed = bytes.first(bytes.size() - kSumSize);
    ByteWriter(bytes.last(kSumSize)).integer(sumOf(summed), kSumSize);
}

bool holdsAt(std::span<const std::byte> bytes, std::size_t offset,
             std::span<const std::byte> wanted) noexcept {
    return bytes.size() >= offset + wanted.size() &&
           std::equal(wanted.begin(), wanted.end(),
                      bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

bool isDatabase(std::span<const std::byte> page) noexcept {
    return holdsAt(page, 0, std::as_bytes(std::span(kOlderForm)));
}

/// Whether a front that has lost its magic number has the rest of a header.
bool hasHeader(std::span<const std::byte> front) noexcept {
    if (front.size() < kHeaderSize) return false;
    std::array<std::byte, kHeaderSize> header{};
    std::copy_n(front.begin(), kHeaderSize, header.begin());
    std::copy(kMagic.begin(), kMagic.end(), header.begin());
    return hasItsSum(header);
}

/// Whether bytes begin with a superblock.
bool hasSuperblock(std::span<const std::byte> bytes) noexcept {
    return bytes.size() >= kSuperblockSize &&
           decodeSuperblock(bytes.first<kSuperblockSize>()).has_value();
}

/// A part of a file, or nothing if it does not lie between the header and `end`.
std::optional<std::span<const std::byte>> partOf(std::span<const std::byte> file,
                                                 std::uint64_t offset, std::uint64_t size,
                                                 std::uint64_t end) {
    if (offset < kPageSize || end > file.size() || offset > end || size > end - offset)
        return std::nullopt;
    return file.subspan(offset, size);
}

/// The entries of a section, one after the other.
std::vector<SegmentEntry> decodeSegments(ByteReader section) {
    if (section.left() % kEntrySize != 0) refuseDamage("the directory ends within a segment");
    std::vector<SegmentEntry> segments(section.left() / kEntrySize);
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

bool isPlausible(const SegmentEntry& entry) noexcept {
    const bool isTextEnough = entry.textSize <= kMostInAll && entry.pathCount > 0 &&
                              entry.pathCount <= entry.textSize / 2;  // a byte and one more each
    const bool isTreeStringRight =
        entry.form == SegmentForm::kImage
            ? entry.treeStringSize == 0
            : entry.treeStringSize % 2 == 0 && entry.treeStringSize < entry.size;
    return entry.size > 0 && isTextEnough && isTreeStringRight;
}

/// Throws Error kDamaged unless all segments lie in the file, apart from each other and from the
/// directory, and hold what can be counted.
void requireRoom(const std::vector<SegmentEntry>& segments, const Superblock& superblock) {
    using Extent = std::pair<std::uint64_t, std::uint64_t>;
    std::vector<Extent> taken{{superblock.directoryOffset, superblock.end}};
    taken.reserve(segments.size() + 1);
    std::uint64_t pathCount = 0;
    std::uint64_t textSize = 0;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const SegmentEntry& entry = segments[i];
        const bool isInside = entry.offset >= kPageSize && entry.offset % kPageSize == 0 &&
                              entry.offset <= superblock.end &&
                              entry.size <= superblock.end - entry.offset;
        if (!isInside || !isPlausible(entry))
            refuseDamage("the directory says of segment " + std::to_string(i + 1) +
                         " what cannot be");
        taken.emplace_back(entry.offset, entry.offset + entry.size);
        pathCount += entry.pathCount;
        textSize += entry.textSize;
        if (pathCount > kMostInAll || textSize > kMostInAll)
            refuseDamage("the directory counts more paths than there can be");
    }
    std::sort(taken.begin(), taken.end());
    const auto shared =
        std::adjacent_find(taken.begin(), taken.end(),
                           [](const Extent& a, const Extent& b) { return a.second > b.first; });
    if (shared != taken.end()) refuseDamage("segments lie over one another");
}

/// The last superblock of a file once more, as it stands after its directory.
std::optional<Superblock> closingSuperblock(std::span<const std::byte> file) {
    if (file.size() < kPageSize + kSuperblockSize) return std::nullopt;
    const auto closing = decodeSuperblock(file.last<kSuperblockSize>());
    return closing && closing->end == file.size() ? closing : std::nullopt;
}

struct Candidate {
    Superblock superblock;
    std::optional<unsigned> slot;
};

/// Superblocks that are whole, the latest first. The one at the end of the file is for a header
/// that is not: what it names was on the device before the header was touched.
std::vector<Candidate> candidatesOf(const Header& header, std::span<const std::byte> file) {
    std::vector<Candidate> candidates;
    for (unsigned slot = 0; slot < header.superblocks.size(); ++slot)
        if (header.superblocks[slot]) candidates.push_back({*header.superblocks[slot], slot});
    const auto isLater = [](const Candidate& a, const Candidate& b) {
        return a.superblock.sequence > b.superblock.sequence;
    };
    std::stable_sort(candidates.begin(), candidates.end(), isLater);
    if (candidates.size() == header.superblocks.size()) return candidates;
    const auto closing = closingSuperblock(file);
    if (closing &&
        (candidates.empty() || closing->sequence > candidates.front().superblock.sequence))
        candidates.insert(candidates.begin(), {*closing, std::nullopt});
    return candidates;
}

}  // namespace

std::uint64_t Directory::pathCount() const noexcept {
    std::uint64_t count = 0;
    for (const SegmentEntry& entry : segments) count += entry.pathCount;
    return count;
}

std::uint64_t sumOf(std::span<const std::byte> bytes) noexcept {
    return compressedpaths::hashOf(bytes.data(), bytes.size(), 0);
}

void requireSize(std::uint64_t size, std::uint64_t wanted) {
    if (size < wanted)
        refuseDamage("has " + std::to_string(size) + " bytes instead of " + std::to_string(wanted));
}

Header decodeHeader(std::span<const std::byte> page) {
    if (isDatabase(page))
        throw Error(ErrorKind::kNotASet, {}, "is a set of an older form; index it anew");
    if (!holdsAt(page, 0, kMagic)) throw Error(ErrorKind::kNotASet, {}, kIsNoSet);
    std::array<std::byte, kPageSize> whole{};
    std::copy_n(page.begin(), std::min(page.size(), whole.size()), whole.begin());
    const std::span<const std::byte, kPageSize> bytes(whole);
    if (!hasItsSum(bytes.first<kHeaderSize>())) refuseDamage("the header is damaged");
    ByteReader reader = readerOf(bytes.subspan(kMagic.size()));
    const std::uint64_t version = reader.readInteger(4);
    const std::uint64_t needed = reader.readInteger(4);
    if (version != kVersion || (needed & ~std::uint64_t{kKnownFlags}) != 0) refuseNewer();

    Header header;
    header.flags = static_cast<std::uint32_t>(reader.readInteger(4));
    for (std::size_t slot = 0; slot < header.superblocks.size(); ++slot)
        header.superblocks[slot] =
            decodeSuperblock(bytes.subspan(kSuperblockOffsets[slot]).first<kSuperblockSize>());
    return header;
}

std::array<std::byte, kPageSize> encodeHeader(const Header& header) {
    std::array<std::byte, kPageSize> page{};
    const std::span<std::byte> bytes(page);
    ByteWriter writer(bytes);
    writer.bytes(kMagic);
    writer.integer(kVersion, 4);
    writer.integer(kKnownFlags, 4);
    writer.integer(header.flags, 4);
    putSum(bytes.first(kHeaderSize));
    for (std::size_t slot = 0; slot < header.superblocks.size(); ++slot)
        if (const auto& superblock = header.superblocks[slot])
            ByteWriter(bytes.subspan(kSuperblockOffsets[slot]))
                .bytes(encodeSuperblock(*superblock));
    return page;
}

bool isOfOurs(std::span<const std::byte> front, std::span<const std::byte> end) noexcept {
    const auto magic = std::span(kMagic).first(std::min(front.size(), kMagic.size()));
    if (holdsAt(front, 0, magic) || hasHeader(front)) return true;
    if (isDatabase(front))
        return holdsAt(front, kOlderOwnerOffset, std::as_bytes(std::span(kOlderOwner)));
    for (const std::size_t offset : kSuperblockOffsets)
        if (front.size() >= offset && hasSuperblock(front.subspan(offset))) return true;
    return hasSuperblock(end) ||
           holdsAt(front, kPageSize, std::as_bytes(std::span(compressedpaths::image::kMagic)));
}

std::optional<Superblock> decodeSuperblock(std::span<const std::byte, kSuperblockSize> bytes) {
    if (!hasItsSum(bytes)) return std::nullopt;
    ByteReader reader = readerOf(bytes);
    Superblock superblock{};
    for (std::uint64_t* field :
         {&superblock.sequence, &superblock.directoryOffset, &superblock.directorySize,
          &superblock.directorySum, &superblock.end})
        *field = reader.readInteger(8);
    const bool isPlaced =
        superblock.directoryOffset >= kPageSize &&
        superblock.directoryOffset % kDirectoryAlignment == 0 &&
        superblock.directoryOffset <= superblock.end &&
        superblock.end - superblock.directoryOffset >= kSuperblockSize &&
        superblock.end - superblock.directoryOffset - kSuperblockSize == superblock.directorySize;
    if (!isPlaced || superblock.sequence > kMaxSequence) return std::nullopt;
    return superblock;
}

std::array<std::byte, kSuperblockSize> encodeSuperblock(const Superblock& superblock) {
    std::array<std::byte, kSuperblockSize> bytes{};
    ByteWriter writer(bytes);
    for (const std::uint64_t field :
         {superblock.sequence, superblock.directoryOffset, superblock.directorySize,
          superblock.directorySum, superblock.end})
        writer.integer(field, 8);
    putSum(bytes);
    return bytes;
}

Directory decodeDirectory(std::span<const std::byte> file, const Superblock& superblock) {
    const auto bytes =
        partOf(file, superblock.directoryOffset, superblock.directorySize, superblock.end);
    if (!bytes || sumOf(*bytes) != superblock.directorySum)
        refuseDamage("the directory at byte " + std::to_string(superblock.directoryOffset) +
                     " is damaged");
    Directory directory;
    bool hasSegments = false;
    try {
        ByteReader reader = readerOf(*bytes);
        while (!reader.isAtEnd()) {
            const auto tag = static_cast<std::uint32_t>(reader.readInteger(4));
            const auto flags = static_cast<std::uint32_t>(reader.readInteger(4));
            const auto section = std::as_bytes(reader.readBytes(reader.readInteger(8)));
            reader.readBytes(alignedUp(section.size(), kSectionAlignment) - section.size());
            if (tag == kSegmentsTag && !std::exchange(hasSegments, true))
                directory.segments = decodeSegments(readerOf(section));
            else if (tag == kSegmentsTag)
                refuseDamage("the directory lists its segments twice");
            else if ((flags & kMustBeKnown) != 0)
                refuseNewer();
            else
                directory.unknown.push_back({tag, flags, {section.begin(), section.end()}});
        }
    } catch (const compressedpaths::sixpacks::PrematureEndException&) {
        refuseDamage("the directory ends within a section");
    }
    if (!hasSegments) refuseDamage("the directory lists no segments");
    requireRoom(directory.segments, superblock);
    return directory;
}

std::vector<std::byte> encodeDirectory(const Directory& directory) {
    std::vector<std::byte> bytes(kSectionHeadSize + directory.segments.size() * kEntrySize);
    ByteWriter writer(bytes);
    writer.integer(kSegmentsTag, 4);
    writer.integer(kMustBeKnown, 4);
    writer.integer(directory.segments.size() * kEntrySize, 8);
    for (const SegmentEntry& entry : directory.segments) {
        writer.integer(static_cast<std::uint32_t>(entry.form), 4);
        writer.integer(0, 4);
        for (const std::uint64_t field : {entry.offset, entry.size, entry.pathCount, entry.textSize,
                                          entry.treeStringSize, entry.sum})
            writer.integer(field, 8);
    }
    for (const UnknownSection& section : directory.unknown) {
        const std::size_t begin = bytes.size();
        bytes.resize(begin + kSectionHeadSize + alignedUp(section.bytes.size(), kSectionAlignment));
        ByteWriter head(std::span<std::byte>(bytes).subspan(begin));
        head.integer(section.tag, 4);
        head.integer(section.flags, 4);
        head.integer(section.bytes.size(), 8);
        head.bytes(section.bytes);
    }
    return bytes;
}

bool canBeRewritten(const Directory& directory) noexcept {
    return std::all_of(
        directory.unknown.begin(), directory.unknown.end(),
        [](const UnknownSection& section) { return (section.flags & kMayBeCopied) != 0; });
}

CommittedState committedState(std::span<const std::byte> firstPage,
                              std::span<const std::byte> file) {
    const Header header = decodeHeader(firstPage);
    const std::vector<Candidate> candidates = candidatesOf(header, file);
    // What a superblock names is on the device before it is written: no crash leaves a file that
    // is shorter than the latest one says.
    requireSize(file.size(), candidates.empty() ? kPageSize : candidates.front().superblock.end);
    if (candidates.empty()) refuseDamage("both superblocks are damaged");

    std::optional<Error> latestDamage;
    for (const Candidate& candidate : candidates) {
        try {
            Directory directory = decodeDirectory(file, candidate.superblock);
            return {header, candidate.superblock, candidate.slot, !latestDamage,
                    std::move(directory)};
        } catch (const Error& error) {
            if (error.kind() != ErrorKind::kDamaged) throw;
            if (!latestDamage) latestDamage = error;
        }
    }
    throw Error(*latestDamage);
}

}  // namespace zqpaths
