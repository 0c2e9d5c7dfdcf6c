#pragma once
// SetStatistics is what can be told about a set and its file: counts, the shape of its folders, and
// where the bytes go.
//
//     const zqpaths::SetStatistics statistics = zqpaths::statisticsOf(set, 10);
//     statistics.bytes.names;  // bytes of the file that hold names
//
// Folders are those of SetFolders. The place of paths without folder is among them where files are
// counted, and is no folder otherwise.
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zqpaths/Error.hpp"
#include "zqpaths/Export.hpp"
#include "zqpaths/PathSet.hpp"

namespace zqpaths {

struct SetStatistics {
    /// A folder with the separators at its end, empty for that of paths without one.
    struct Folder {
        std::string name;
        std::uint64_t fileCount;
    };

    /// Bytes of the segments. What the file has besides are its header, its directories, what fills
    /// pages, and what is in the file no more.
    struct Bytes {
        std::uint64_t names = 0;    // of files and folders, coded
        std::uint64_t folders = 0;  // the records of folders
        std::uint64_t index = 0;    // which numbers are where
        std::uint64_t orders = 0;   // folders by name, entries by folder
        std::uint64_t code = 0;     // characters, code words and their tables
        std::uint64_t sums = 0;     // and what an image has at its front, between and at its end
        std::uint64_t packed = 0;   // all of packed segments, which are not taken apart

        std::uint64_t all() const noexcept {
            return names + folders + index + orders + code + sums + packed;
        }
    };

    std::uint64_t pathCount = 0;
    std::uint64_t textSize = 0;  // of all paths, one more for each
    std::uint64_t segmentCount = 0;
    std::uint64_t packedCount = 0;  // of segments
    std::uint64_t folderCount = 0;
    std::uint64_t entryCount = 0;      // runs of neighbouring paths that are in one folder
    std::uint64_t depth = 0;           // most names in a path, its first separators count as one
    std::uint64_t depthSum = 0;        // over all paths
    std::uint64_t widest = 0;          // most files and folders in a folder
    std::uint64_t characterCount = 0;  // different ones
    std::optional<std::uint64_t> codedCount;  // characters of all names as they are kept, if known
    std::optional<std::uint64_t> codedBits;   // bits of their code words
    Bytes bytes;
    std::vector<Folder> largestFolders;  // most files first, of equal ones the one met first
};

/// Finds up to `folderLimit` folders. Throws Error kDamaged. O(folders + entries + segments);
/// packed segments are inflated. Takes about a hundred bytes a folder.
ZQPATHS_EXPORT SetStatistics statisticsOf(const PathSet& set, std::size_t folderLimit);

}  // namespace zqpaths
