#pragma once
// SetFolders are the folders of a set as a whole: each once, however many segments it is in, and
// with how many files it has in all of them.
//
//     SetFolders folders(opened);
//     forEachSegment(opened, [&](std::uint64_t place, const PinnedSegment& segment) {
//         segment->read([&](const auto& set) { folders.add(place, segment, set); });
//     });
//     folders.all()[SetFolders::kTop].fileCount;  // paths without folder
//
// Folders have places from 0 on, that of a folder after that of the one it is in. How many
// separators stand together does not matter: "a/b" and "a//b" are one folder.
//
//     /usr/x      "/" > "usr"         the first name of a path from the root is "/"
//     usr/lib/y   "usr" > "lib"
//     z           the top itself
//
// Threads: belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "zqpaths/set/OpenedSet.hpp"

namespace zqpaths {

class SetFolders {
public:
    static constexpr std::size_t kTop = 0;

    struct Folder {
        std::uint32_t segment = 0;  // its place, in which it was met first, and as which
        compressedpaths::FolderId id{};
        std::size_t parent = kTop;
        std::uint64_t depth = 0;  // names from the top to it
        std::uint64_t fileCount = 0;
        std::uint64_t goneCount = 0;   // of the files
        std::uint64_t childCount = 0;  // folders

        std::uint64_t presentCount() const noexcept { return fileCount - goneCount; }
    };

    /// `opened` outlives it.
    explicit SetFolders(const OpenedSet& opened) : opened_(opened), folders_(1) {}

    /// Takes the folders of the segment at a place, whose set it is, and how many files it has in
    /// each. Each segment is taken once. Throws what the core throws for damage. O(folders +
    /// entries).
    void add(std::uint64_t place, const PinnedSegment& segment,
             const compressedpaths::HuffmanPathTree& set);

    /// Makes room: no more segments are taken after that. O(folders).
    void finish();

    const std::vector<Folder>& all() const noexcept { return folders_; }

    /// Runs of neighbouring paths that are in one folder.
    std::uint64_t entryCount() const noexcept { return entryCount_; }

    /// The last name of a folder without separators, or "/". O(bytes).
    std::string nameOf(std::size_t place) const;

    /// The folder as it was written where it was met first, with the separators at its end; empty
    /// for the top. O(bytes).
    std::string textOf(std::size_t place) const;

private:
    std::size_t findOrAdd(std::size_t parent, std::uint32_t segment, compressedpaths::FolderId id,
                          const std::u16string& name);
    std::string componentOf(std::size_t place) const;

    const OpenedSet& opened_;
    std::vector<Folder> folders_;
    // Of folders, by the hash of their parent and name: two folders of one hash pass for one.
    std::unordered_map<std::uint64_t, std::size_t> places_;
    std::uint64_t entryCount_ = 0;
};

/// Calls `visit(place, segment)` for the segments that are not missing. Throws Error as
/// OpenedParts::pin.
template <class Visit>
void forEachSegment(const OpenedSet& opened, Visit visit) {
    for (std::size_t i = 0; i < opened.parts().count(); ++i) {
        if (opened.parts()[i].isMissing) continue;
        const PinnedPart part = opened.part(i);
        std::uint64_t place = opened.parts()[i].segmentsBefore;
        for (const Segment& segment : part->segments())
            visit(place++, PinnedSegment(part, segment));
    }
}

}  // namespace zqpaths
