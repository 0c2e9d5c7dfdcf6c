#pragma once
// SavedForm is what the saved form of a set says about the set and about itself, read from its
// bytes without the class. docs/format.md describes them.
//
//     const SavedForm form = readSavedForm(bytes, characters, 10);
//     form.keys.savedSize;  // bytes of the file that the names take
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/TrieOutline.hpp"

namespace zqpaths {

struct SavedForm {
    struct Section {
        std::uint64_t byteSize = 0;   // before compression
        std::uint64_t savedSize = 0;  // of the compressed bytes, to a few bytes
    };

    struct Folder {
        std::vector<std::u16string> components;  // none: the files have no folder
        std::uint64_t fileCount = 0;
    };

    std::uint64_t byteSize = 0;   // of all sections
    std::uint64_t savedSize = 0;  // of the form as it is saved
    Section shape;
    Section structure;
    Section keys;
    Section index;                      // folder section and track section
    std::uint64_t entryCount = 0;       // folders that were added, each with files in a row
    std::vector<unsigned> codeLengths;  // in bits, of the characters in their order
    TrieOutline trie;
    std::vector<Folder> largestFolders;
};

/// Reads a compressed form and up to `folderLimit` folders. Throws Failure kDamaged with the offset
/// of the first damage: in the form as docs/format.md counts them, if it is not in the compressed
/// stream. Memory for the form before compression, which is taken only if the stream can hold it.
SavedForm readSavedForm(std::span<const std::uint8_t> bytes, std::u16string_view characters,
                        std::size_t folderLimit);

}  // namespace zqpaths
