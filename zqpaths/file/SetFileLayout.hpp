#pragma once
// How a set file is laid out, as bytes: the header with its two superblocks, and the directory that
// they name. docs/zqp.md draws it. This and SetFileDirectory are the one reader and the one writer
// of that form; they know nothing of files of the system.
//
//     const CommittedState state = committedState(firstPage, file);  // what a reader goes by
//     for (const SegmentEntry& entry : state.directory.segments) ...
//
// Errors have no place in their text: who knows the file puts its name before them.
//
// Threads: free functions without state.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "zqpaths/file/SetFileDirectory.hpp"

namespace zqpaths {

struct Superblock {
    std::uint64_t sequence;  // the higher one counts
    std::uint64_t directoryOffset;
    std::uint64_t directorySize;
    std::uint64_t directorySum;  // XXH3-64
    std::uint64_t end;           // of what is committed

    bool operator==(const Superblock&) const = default;
};

// Numbers of the form, beside those that SetFileLayout.cpp keeps to itself.

inline constexpr std::array<std::byte, 8> kMagic{std::byte{0x89}, std::byte{'z'},  std::byte{'q'},
                                                 std::byte{'p'},  std::byte{'\r'}, std::byte{'\n'},
                                                 std::byte{0x1A}, std::byte{'\n'}};
inline constexpr std::uint32_t kVersion = 1;
inline constexpr std::size_t kHeaderSize = 32;      // at the front, with its sum in the last eight
inline constexpr std::size_t kSuperblockSize = 48;  // with its sum in the last eight
inline constexpr std::array<std::size_t, 2> kSuperblockOffsets{512, 1024};
inline constexpr std::uint64_t kMaxSequence = std::uint64_t{1} << 62;

/// What the first page says.
struct Header {
    std::uint32_t flags = 0;                                 // those that a reader may ignore
    std::array<std::optional<Superblock>, 2> superblocks{};  // none where the bytes are damaged

    bool operator==(const Header&) const = default;
};

/// The first page of a file; what is cut off it counts as zeros. Throws Error kNotASet, kDamaged.
Header decodeHeader(std::span<const std::byte> page);
std::array<std::byte, kPageSize> encodeHeader(const Header& header);

/// How much of a file tells whose it is: bytes at its front, and at its end.
inline constexpr std::size_t kTellingFront = 2 * kPageSize;
inline constexpr std::size_t kTellingEnd = kSuperblockSize;

/// True if a file with this front and this end, as far as it has so many bytes, may give way to a
/// set: it is one, of whatever version, whole or damaged, or of the older form. Any part that no
/// other file has will do: the magic number or what is left of it, the header with its sum, a
/// superblock with its sum, or the image of a first segment. A file without bytes holds nothing
/// that could be lost.
bool isOfOurs(std::span<const std::byte> front, std::span<const std::byte> end) noexcept;

/// Nothing if the bytes are damaged or no superblock can say this.
std::optional<Superblock> decodeSuperblock(std::span<const std::byte, kSuperblockSize> bytes);
std::array<std::byte, kSuperblockSize> encodeSuperblock(const Superblock& superblock);

/// The directory that a superblock names, of the bytes of the file from the first one on. Throws
/// Error kDamaged, kNotASet if it needs a later version. O(directory).
Directory decodeDirectory(std::span<const std::byte> file, const Superblock& superblock);

/// What a file was when it was committed last.
struct CommittedState {
    Header header;
    Superblock superblock;
    std::optional<unsigned>
        slot;       // of the superblock; none if it stands only at the end of the file
    bool isLatest;  // false if the directory that was written last is damaged
    Directory directory;
};

/// What counts of a file, given its first page as it was read before the size of the file was
/// looked at. Throws Error kNotASet, kDamaged. O(directory).
CommittedState committedState(std::span<const std::byte> firstPage,
                              std::span<const std::byte> file);

}  // namespace zqpaths
