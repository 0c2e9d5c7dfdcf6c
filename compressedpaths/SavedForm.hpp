#pragma once
// The numbers that live in the saved form of a set; docs/format.md draws it.

#include <cstddef>
#include <cstdint>

#include "compressedpaths/sixpacks/PackedIntegers.hpp"

namespace compressedpaths {

// Structure bytes of the trie.
inline constexpr std::uint8_t kHasChildren = 1;
inline constexpr std::uint8_t kHasNextSibling = 2;
inline constexpr std::uint8_t kLargestNodeType = kHasChildren | kHasNextSibling;

constexpr std::uint8_t structureByte(std::size_t childCount, bool isLast) noexcept {
    return static_cast<std::uint8_t>((childCount > 0 ? kHasChildren : 0) |
                                     (isLast ? 0 : kHasNextSibling));
}

// What a section begins with.
inline constexpr std::uint8_t kTrackSection = 0;
inline constexpr std::uint8_t kFolderSection = 1;
inline constexpr std::uint8_t kFirstFileSection = 2;  // which entries' tracks end with a first file

inline constexpr sixpacks::PackedSizeT kCount8 = sixpacks::PackedSizeT::Uint64;
inline constexpr unsigned kCount8Size = 8;  // of counts that have no tag of their own

/// The rule for the last position of a track of two or more, by which a reader tells an entry's
/// first file from its folder where nothing else says it: `inside` are the children of the node
/// there, none of a leaf or where there is no node; `beside` are those of the folder above from
/// there on.
constexpr bool readsTrackAsFirstFile(std::uint64_t inside, std::uint64_t beside,
                                     std::uint64_t fileCount) noexcept {
    return inside == 0 || (inside < fileCount && beside >= fileCount);
}

}  // namespace compressedpaths
