#pragma once
// Neighbouring paths of one folder as one entry, as a path set wants them: the folder's components
// once, then the names of its files.
//
//     CharacterFrequencies found = countCharacters(paths);
//     set.deflateHuffman(found.frequencies.data(), found.characters);
//     Batch batch;
//     for (std::size_t first = 0; first < paths.size(); first += kBatchPaths) {
//         batch.fill(paths, first);
//         set.generateCodeAsyncAndAddPaths(batch.folders, batch.files);
//     }
//
// Threads: what stands here belongs to one thread at a time.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "examples/PathList.hpp"

namespace examples {

inline constexpr std::size_t kBatchPaths = 65'536;  // of each batch but the last

/// What is coded when a list is added: each entry's folder once, and all file names.
struct CharacterFrequencies {
    std::u16string characters;        // ascending; at least two, see countCharacters
    std::vector<double> frequencies;  // of each of the characters
    std::size_t entryCount = 0;
};

/// Counts the characters of the batches of a list that has a path. There are always two to code
/// with: a path with a folder has a separator and a name, one without a marker and a name.
/// O(bytes).
CharacterFrequencies countCharacters(const PathList& paths);

/// One batch. Its strings are used again by the next, which saves most allocations.
struct Batch {
    std::vector<std::vector<std::u16string>> folders;
    std::vector<std::vector<std::u16string>> files;  // of each folder

    /// Replaces the batch by the one whose first path is at `first`. O(bytes).
    void fill(const PathList& paths, std::size_t first);
};

struct FolderCensus {
    std::size_t distinctCount = 0;  // folders that paths of the list lie in
    // Paths that became folders, because a later path of the list lies below them. A walk through
    // the set does not meet them: it gives what has nothing below.
    std::size_t becameFolderCount = 0;
};

/// Counts the folders of a list. O(bytes), expected.
FolderCensus countFolders(const PathList& paths);

}  // namespace examples
