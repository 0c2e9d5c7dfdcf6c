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
        superblock.directoryOffset % kBlockAlignment == 0 &&
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
    Directory directory = decodeSections(*bytes);
    requireRoom(directory, {superblock.directoryOffset, superblock.end});
    return directory;
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
