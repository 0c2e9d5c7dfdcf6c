#pragma once
// CodedBatch is a run of folder entries whose components have been coded, in flat buffers, in the
// form in which the trie takes them over. Any thread can fill one while nobody changes the set:
//
//     CodedBatch batch(set);                  // or several, one a thread
//     batch.beginEntry(0);
//     batch.appendFolder(u"usr/");
//     batch.appendFile(u"readme");
//     batch.beginEntry(1);                    // the first component is that of the entry before
//     batch.appendFolder(u"lib");
//     batch.appendFile(u"libc.so");
//     set.addCodedBatch(batch);
//
// Threads: a batch belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "compressedpaths/store/FlatArray.hpp"

namespace compressedpaths {

class CodeTables;
class HuffmanPathTree;

class CodedBatch {
public:
    /// Coded with the code of this set, which must outlive the filling.
    explicit CodedBatch(const HuffmanPathTree& set);
    explicit CodedBatch(const CodeTables& tables) noexcept : tables_(&tables) {}

    /// Begins an entry. Its folder begins with the first `sharedComponents` components of the
    /// folder of the entry before in this batch, which had as many. Throws only std::bad_alloc.
    /// O(1).
    void beginEntry(std::size_t sharedComponents);

    /// Appends a component to the folder of the entry begun last; all of them before its first
    /// file. Throws NoCodeForEmptyString, CodeNotFoundException, std::bad_alloc; nothing has
    /// changed then. O(characters).
    void appendFolder(std::u16string_view component);

    /// Appends a file to the entry begun last. Throws as appendFolder. O(characters).
    void appendFile(std::u16string_view name);

    /// What the set takes: `names()` holds, for each entry, its own folder components, then its
    /// files, as StoredName.hpp says.
    struct Entry {
        std::size_t sharedComponents;
        std::size_t folderCount;  // components of its own
        std::size_t folderSize;   // bytes of them in names()
        std::size_t fileCount;
        std::size_t fileSize;
    };
    const FlatArray<Entry>& entries() const noexcept { return entries_; }
    const FlatArray<std::uint8_t>& names() const noexcept { return names_; }
    std::size_t maxCodeBytes() const noexcept { return maxCodeBytes_; }  // of one component's code

private:
    const CodeTables* tables_;
    FlatArray<Entry> entries_;
    FlatArray<std::uint8_t> names_;
    std::size_t maxCodeBytes_ = 0;
};

}  // namespace compressedpaths
