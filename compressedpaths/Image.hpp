#pragma once
// The image of a set: its arrays as they are, flat and without addresses, so that a file that holds
// it is mapped and read at once, by any number of processes. docs/image.md draws it.
// HuffmanPathTree has the operations; here stand the numbers that live in images.
//
// Images hold integers as little-endian machines have them; others cannot read or write them.

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace compressedpaths::image {

static_assert(std::endian::native == std::endian::little,
              "images are made of arrays as they stand in the memory of little-endian machines");

inline constexpr std::array<char, 8> kMagic{'Z', 'Q', 'P', 'I', 'M', 'A', 'G', 'E'};
inline constexpr std::uint32_t kVersion = 1;
inline constexpr std::size_t kAlignment = 64;  // of sections, and of the whole
inline constexpr std::size_t kZeroBytes = 64;  // at the end: words are loaded whole
inline constexpr std::size_t kSummedSize = std::size_t{1} << 20;  // bytes of a sum
inline constexpr std::uint64_t kMinPathsWithTables = 65536;       // smaller sets build their tables

/// What an image holds, in this order.
enum class Part : std::uint32_t {
    kNames,
    kFolders,
    kFormerFiles,
    kEntryBytes,
    kEntryBlocks,
    kUnpairedCounts,
    kUnpairedPlaces,
    kRepeatedPaths,
    kRepeatedOrder,
    kShape,
    kLeaves,
    kFrequencies,
    kPagesOfWords,
    kWords,
    kLongWords,
    kLongBits,
    kSteps,
    kBranches,
    kFoldersByName,
    kEntriesByFolder,
    kSums,
};
inline constexpr std::size_t kPartCount = static_cast<std::size_t>(Part::kSums) + 1;

struct Extent {
    std::uint64_t offset;
    std::uint64_t byteSize;
};

struct Header {
    std::array<char, 8> magic;
    std::uint32_t version;
    std::uint32_t partCount;
    std::uint64_t byteSize;  // of the whole image
    std::uint64_t seed;      // of the table of former files
    std::uint64_t pathCount;
    std::uint64_t maxFolderDepth;
    std::uint64_t maxTrackLength;
    std::uint64_t maxCodeBytes;
    std::uint64_t maxTrackKey;
    std::uint64_t entryCount;
    std::uint64_t entryPathCount;
    std::uint32_t lastRun;  // that the next entry is counted from
    std::uint32_t formerFileCount;
    std::array<Extent, kPartCount> parts;

    const Extent& operator[](Part part) const { return parts.at(static_cast<std::size_t>(part)); }
    Extent& operator[](Part part) { return parts.at(static_cast<std::size_t>(part)); }
};

/// A place without a total, of a set that was loaded with more of the one than of the other.
struct UnpairedPlace {
    std::uint32_t existed;
    std::uint32_t run;
    std::uint32_t skip;
    std::uint32_t folder;
    std::uint64_t firstChild;
};

}  // namespace compressedpaths::image
