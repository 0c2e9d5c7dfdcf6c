#pragma once
// The directory of a set file, as bytes: which segments it has, where their bytes lie, and which
// blocks of other content there are.
//
//     const Directory directory = decodeSections(bytes);
//     requireRoom(directory, {superblock.directoryOffset, superblock.end});
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "zqpaths/file/SetFileBytes.hpp"

namespace zqpaths {

enum class SegmentForm : std::uint32_t {
    kImage = 1,   // the image of a path set
    kPacked = 2,  // its tree string, UTF-16 with the lowest byte first, then its saved form
};

struct SegmentEntry {
    SegmentForm form;
    std::uint64_t offset;  // in the file, a multiple of kPageSize
    std::uint64_t size;    // bytes
    std::uint64_t pathCount;
    std::uint64_t textSize;        // bytes of all paths, one more for each
    std::uint64_t treeStringSize;  // bytes of the tree string at the front; 0 for an image
    std::uint64_t sum;             // XXH3-64 of the bytes

    bool operator==(const SegmentEntry&) const = default;
};

/// A part of the file that is no segment. Who reads it knows what it holds.
struct BlockEntry {
    std::uint64_t offset;  // in the file, a multiple of kBlockAlignment
    std::uint64_t size;    // bytes, at least one
    std::uint64_t count;   // of what is in it: gone paths, directories of a scan
    std::uint64_t sum;     // XXH3-64 of the bytes

    bool operator==(const BlockEntry&) const = default;
};

/// A section of a directory that only a later version understands.
struct UnknownSection {
    std::uint32_t tag;
    std::uint32_t flags;
    std::vector<std::byte> bytes;

    bool operator==(const UnknownSection&) const = default;
};

// What errors call the blocks.
inline constexpr const char* kGonePathsText = "the gone paths";
inline constexpr const char* kScansText = "the scans";

inline constexpr std::uint64_t kGoneRunSize = 16;  // bytes of a run of gone paths in its block

struct Directory {
    std::vector<SegmentEntry> segments;   // in the order of the numbers
    std::vector<UnknownSection> unknown;  // in their order
    std::optional<BlockEntry> gone = {};  // which paths are gone: set/GonePaths.hpp
    std::optional<BlockEntry> scans =
        {};  // the directories that were read: directory/ScanRecord.hpp

    std::uint64_t pathCount() const noexcept;

    bool operator==(const Directory&) const = default;
};

/// From the first byte on up to the one before `end`.
struct Extent {
    std::uint64_t begin;
    std::uint64_t end;
};

/// The directory that has these bytes. Throws Error kDamaged, kNotASet if it needs a later version.
/// O(directory).
Directory decodeSections(std::span<const std::byte> bytes);

/// Throws Error kDamaged unless all segments and blocks lie in the file, apart from each other and
/// from the directory, which has the last bytes, and hold what can be counted. O(n log n).
void requireRoom(const Directory& directory, Extent own);

/// Throws std::bad_alloc. O(directory).
std::vector<std::byte> encodeDirectory(const Directory& directory);

/// True if a writer that changes the segments may copy all sections that it does not know.
bool canBeRewritten(const Directory& directory) noexcept;

}  // namespace zqpaths
