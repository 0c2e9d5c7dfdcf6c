#pragma once
// FolderTotals are how many paths a set has in each of its folders and below it, without those that
// are gone, for who shows the set as a tree or as a map:
//
//     const zqpaths::FolderTotals totals(set);
//     const auto usr = totals.find("/usr");
//     totals.of(*usr).filesBelow;
//     for (const auto inside : totals.foldersIn(*usr)) totals.nameOf(inside);
//
// A folder is known by its place, a number from 0 on; the top, which holds all paths, is kTop. The
// first name of a path from the root is "/", and how many separators stand together does not
// matter:
//
//     paths            folders
//     /usr/lib/a       top (1 file) > "/" > "usr" > "lib" (2 files)
//     /usr//lib/b                   > "src" (1 file)
//     src/c
//     d
//
// It takes some 120 bytes a folder, and nothing for a path.
//
// Threads: never changes; any number of threads may read it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/Export.hpp"
#include "zqpaths/PathSet.hpp"

namespace zqpaths {

class ZQPATHS_EXPORT FolderTotals {
public:
    using Place = std::size_t;
    static constexpr Place kTop = 0;

    struct Totals {
        std::uint64_t filesIn = 0;     // paths whose folder it is
        std::uint64_t filesBelow = 0;  // and those in the folders below it
        std::uint64_t foldersIn = 0;
        std::uint64_t foldersBelow = 0;
    };

    /// Reads no names of files. Throws Error kDamaged. O(folders + entries); packed segments are
    /// inflated.
    explicit FolderTotals(const PathSet& set);
    FolderTotals(FolderTotals&&) noexcept;
    FolderTotals& operator=(FolderTotals&&) noexcept;
    ~FolderTotals();

    /// Of a folder that there is. O(1).
    const Totals& of(Place folder) const noexcept;
    Place parentOf(Place folder) const noexcept;  // of the top, the top

    /// The folders in a folder, in the order in which the set met them. O(folders in it).
    std::vector<Place> foldersIn(Place folder) const;

    /// The last name of a folder, "/" for the root, empty for the top; and its whole path, without
    /// a separator at its end. Throw Error kDamaged. O(bytes).
    std::string nameOf(Place folder) const;
    std::string pathOf(Place folder) const;

    /// The folder of this path, as PathSet::under takes it. Throws Error kDamaged. O(bytes of the
    /// names in the folders on the way).
    std::optional<Place> find(std::string_view folder) const;

    /// How many paths have one name, two, and so on up to the most; the root counts as one.
    /// O(folders).
    std::vector<std::uint64_t> filesByDepth() const;

    /// Up to `limit` folders, that with most files below it first, each after the one that it is
    /// in. O(folders * log limit).
    std::vector<Place> largest(std::size_t limit) const;

private:
    class Work;
    std::unique_ptr<const Work> work_;
};

}  // namespace zqpaths
