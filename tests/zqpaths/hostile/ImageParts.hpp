#pragma once
// An image taken apart, so that its parts can be made by hand, and put together again with all sums
// right:
//
//     ImageParts image;                             // a set with a code and no paths
//     const Link run = image.addRun(0, 0, {"a"});   // in the root, from child 0 on
//     image.closeRing(0, {run});
//     image.addEntry(1, run);                       // one path, which begins there
//     image.order();                                // both orders
//     std::string bytes = image.bytes();
//
// Names are of the characters of kAlphabet. docs/image.md draws the parts.
//
// Threads: belongs to one thread at a time.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/Image.hpp"
#include "compressedpaths/store/FolderEntries.hpp"
#include "compressedpaths/store/PathArena.hpp"

namespace hostile {

using compressedpaths::image::Part;
using Link = compressedpaths::PathArena::Link;
using FolderNumber = std::uint32_t;

inline constexpr FolderNumber kRoot = compressedpaths::PathArena::kRoot;
inline constexpr std::uint32_t kNone = compressedpaths::PathArena::kNone;
inline constexpr Link kFolderLink = compressedpaths::PathArena::kFolderLink;

class ImageParts {
public:
    /// The parts of a set without paths.
    ImageParts();
    /// Those of a whole set.
    explicit ImageParts(const compressedpaths::HuffmanPathTree& set);

    // --- Names and folders.

    /// How a name stands in the names.
    std::string storedName(std::string_view name) const;

    /// Appends bytes to the names and returns where they begin.
    std::uint32_t addNames(std::string_view bytes);

    /// A run of files in a folder, the first of them at a position, by their stored names. The next
    /// item is itself until a ring is closed. `flags` as in the form.
    Link addRun(FolderNumber folder, std::uint64_t position, const std::vector<std::string>& names,
                unsigned flags = 0);

    /// A folder in another, by its stored name, or by where its position and name stand already.
    FolderNumber addFolder(FolderNumber parent, std::uint64_t position, std::string_view name);
    FolderNumber addFolderNamedAt(FolderNumber parent, std::uint32_t name);

    /// Has the items of a folder follow each other.
    void closeRing(FolderNumber folder, const std::vector<Link>& items);
    compressedpaths::PathArena::Folder& folder(FolderNumber number) { return folders_.at(number); }
    void setNext(Link item, Link next);

    // --- The index.

    /// Paths that begin with the file of a run that `skip` others stand before; or in a folder.
    void addEntry(std::uint64_t pathCount, Link run, std::uint32_t skip = 0);
    void addEntryIn(std::uint64_t pathCount, FolderNumber folder, std::uint64_t position);

    /// Both orders, by the numbers: right where names ascend and entries come folder by folder.
    void order();

    // --- All of it.

    template <class T>
    void put(Part part, std::span<const T> values) {
        (*this)[part].assign(reinterpret_cast<const char*>(values.data()), values.size_bytes());
    }
    std::string& operator[](Part part) { return parts_.at(static_cast<std::size_t>(part)); }
    compressedpaths::image::Header& header() { return header_; }
    std::uint64_t pathCount() const { return header_.pathCount; }
    std::string bytes();

private:
    std::string laidOut();

    compressedpaths::HuffmanPathTree code_;
    compressedpaths::image::Header header_{};
    std::array<std::string, compressedpaths::image::kPartCount> parts_;
    std::vector<compressedpaths::PathArena::Folder> folders_;
    compressedpaths::FolderEntries entries_;
    bool isHandMade_ = false;
};

std::string varint(std::uint64_t value);

/// The image of a set as it writes it.
std::string imageOf(const compressedpaths::HuffmanPathTree& set);

}  // namespace hostile
