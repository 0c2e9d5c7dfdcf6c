#pragma once
// FolderTree goes through the folders of a set that are to be shown, line by line, from the top
// down:
//
//     FolderTree tree(totals, top, {.depth = 2, .most = 10});
//     tree.visit([](const TreeLine& line) { ... });
//
// A folder that holds nothing but one folder shares its line, so that depth counts where there is
// something to choose:
//
//     /usr            level 0, the folders "/" and "usr"
//     ├── share       level 1
//     │   └── doc     level 2
//     └── … 3 more    level 1: the folders in /usr that are not shown, and its files, if any are
//
// It holds the folders on the way to the line, and those beside them.
//
// Threads: belongs to one thread at a time.

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "zqpaths/PathSet.hpp"
#include "zqpaths/totals/FolderTotals.hpp"

namespace zqpaths::program {

struct TreeOptions {
    enum class Order { kCount, kName };

    std::uint64_t depth = 2;      // levels below the top
    std::uint64_t most = 10;      // folders shown in one folder, and files; 0 for all
    Order order = Order::kCount;  // most files first, or by the bytes of names
    bool hasFiles = false;        // files are shown, too
};

struct TreeLine {
    enum class Kind { kFolder, kFile, kRest };

    Kind kind = Kind::kFolder;
    std::uint64_t level = 0;
    bool isLast = true;             // of those in the same folder
    std::string name;               // below the line above; of a rest, nothing
    std::string path;               // of the folder or file; of a rest, that of the folder
    FolderTotals::Totals totals{};  // of a rest, filesIn and foldersIn count what is not shown,
                                    // filesBelow the files of both
};

class FolderTree {
public:
    /// `totals` outlives it.
    FolderTree(const FolderTotals& totals, FolderTotals::Place top, const TreeOptions& options);

    /// With hasFiles, to be called before visit: finds the files that are shown. Calls `step` for
    /// each path that is looked at. Throws as PathSet::under. O(paths below the top).
    void findFiles(const PathSet& set, const std::function<void()>& step);

    /// Throws Error kDamaged.
    void visit(const std::function<void(const TreeLine& line)>& visitor) const;

private:
    using Place = FolderTotals::Place;
    struct Folder;
    struct Inside;

    Folder folderAt(Place place, const std::string& pathAbove) const;
    std::vector<Folder> foldersIn(Place place, const std::string& path) const;
    Inside insideOf(const Folder& folder) const;

    const FolderTotals& totals_;
    Place top_;
    TreeOptions options_;
    // By folder, the names of files in it that are shown, in their order.
    std::unordered_map<std::string, std::vector<std::string>> files_;
};

}  // namespace zqpaths::program
