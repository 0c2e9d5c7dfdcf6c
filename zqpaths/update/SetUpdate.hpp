#pragma once
// An update compares a set with the directories that its paths come from, and tells what is to be
// changed for the set to hold what a walk would give now:
//
//     SetUpdate update(set, roots, {.onChange = [&](PathChange change, std::uint64_t number,
//                                            std::string_view path) { ... },
//                            .onError = ...});
//     for (const Scan& scan : scansOf(set))
//         recordScans(writer, {update.run(scan.root, walkOptionsOf(scan.options, 0), &scan)});
//
// A directory of a scan whose stamp is the same is not read: its files are as they were. One that
// is read is compared with the files that the set has right in it. One that was not there before is
// walked, and what the set may have below it is compared with all that the walk finds. A directory
// that cannot be read is told, and its paths stay as they are.
//
// Threads: belongs to one thread, which calls the visitors; it starts others and joins them.

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "zqpaths/Export.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"
#include "zqpaths/directory/ScanRecord.hpp"
#include "zqpaths/update/FilesOfFolder.hpp"

namespace zqpaths {

enum class PathChange {
    kAdded,  // a path that the set has not: its number is the next one after those before
    kGone,   // it is there no more
    kBack,   // it is there again, under the number that it had
};

struct UpdateVisitors {
    std::function<void(PathChange change, std::uint64_t number, std::string_view path)> onChange;
    ErrorVisitor onError;          // for what cannot be read
    std::function<void()> onStep;  // again and again, for who wants to end it by throwing
};

/// What the paths below a root begin with: the root as given, and a separator unless it ends with
/// one.
ZQPATHS_EXPORT std::string folderOfRoot(std::string_view root);

class ZQPATHS_EXPORT SetUpdate {
public:
    /// The set outlives the update. `roots` are all that its paths come from: what is below one of
    /// them is not for another to lose.
    SetUpdate(const PathSet& set, std::span<const std::string> roots, UpdateVisitors visitors);

    /// Compares what is below a root, as the walk by these options finds it. `before` is the scan
    /// that the set remembers of it by the same options, if there is one. Returns the scan as it is
    /// now, which began at this time. Throws as walkDirectory, Error kDamaged, and what the
    /// visitors throw. O(directories + entries of those that are read + paths that are gone).
    EncodedScan run(const std::string& root, const WalkOptions& options, const Scan* before,
                    std::int64_t began = nowInNanoseconds());

private:
    /// A directory of which nothing is known, with all below it.
    struct Region {
        std::string folder;
        bool isFresh;                         // the set has nothing in it
        std::unordered_set<std::string> met;  // folders that the walk has come to
        std::vector<std::string> unreadable;
    };

    void take(const MetDirectory& met);
    void beginRegion(std::string_view folder);
    void endRegion();
    void compare(const MetDirectory& met, bool isAllRead);
    void compareFiles(const MetDirectory& met, bool isAllRead);
    void takeNamesakes(std::span<const FileOfFolder> files, bool isThere);
    void add(std::string_view name);
    void loseBelow(std::string_view folder);
    void lose(std::uint64_t number, std::string_view path);
    std::string_view pathOf(std::string_view name);
    template <class Visit>
    void forEachBelow(std::string_view folder, Visit visit) const;

    const PathSet& set_;
    const UpdateVisitors visitors_;
    std::vector<std::string> roots_;  // as texts of folders
    std::string root_;                // at hand
    std::uint64_t addedCount_ = 0;
    // Roots may lie in one another: what one of them has changed is left alone by the others.
    std::unordered_set<std::string> compared_;
    std::unordered_set<std::string> lost_;
    std::optional<Region> region_;
    std::string path_;  // of a file at hand, after that of its folder
    std::size_t folderSize_ = 0;
};

}  // namespace zqpaths
