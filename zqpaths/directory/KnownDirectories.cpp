#include "zqpaths/directory/KnownDirectories.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <string>

#include "zqpaths/directory/SystemStamp.hpp"
#include "zqpaths/file/FileDescriptor.hpp"
#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

using Look = KnownDirectories::Look;

constexpr std::size_t kDirectoriesAPiece = 1024;

/// Goes through directories of a scan that follow each other, with the path of each.
class PathsOfScan {
public:
    PathsOfScan(const Scan& scan, std::size_t first) : directories_(scan.directories) {
        std::vector<std::string_view> names;  // of those that lead to the first one
        for (std::size_t i = directories_[first].parent; i > 0; i = directories_[i].parent)
            names.push_back(directories_[i].name);
        for (auto name = names.rbegin(); name != names.rend(); ++name) enter(*name);
    }

    /// Goes to the directory at a place, which is the first one or that after the one before.
    const std::string& at(std::size_t place) {
        const ScannedDirectory& directory = directories_[place];
        if (directory.depth == 0) return path_;
        ends_.resize(directory.depth - 1);
        path_.resize(ends_.empty() ? 0 : ends_.back());
        enter(directory.name);
        return path_;
    }

private:
    void enter(std::string_view name) {
        if (!path_.empty()) path_.push_back(kSeparator);
        path_.append(name);
        ends_.push_back(path_.size());
    }

    const std::vector<ScannedDirectory>& directories_;
    std::string path_;               // from the root
    std::vector<std::size_t> ends_;  // of the path of each directory on the way
};

/// Whether a directory is the one that was read, and has the names that it had.
bool isAsItWas(int root, const std::string& path, const ScannedDirectory& directory, bool follow) {
    if (directory.state != ScanState::kRead || path.size() >= PATH_MAX) return false;
    struct stat status {};
    const int flags = path.empty() ? AT_EMPTY_PATH : follow ? 0 : AT_SYMLINK_NOFOLLOW;
    return ::fstatat(root, path.c_str(), &status, flags) == 0 && S_ISDIR(status.st_mode) &&
           stampOf(status) == directory.stamp;
}

}  // namespace

KnownDirectories lookAtDirectories(const Scan& scan, const WalkOptions& options,
                                   const std::function<void()>& onStep) {
    const FileDescriptor root(::open(scan.root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const std::size_t count = scan.directories.size();
    KnownDirectories known{scan, std::vector<Look>(count, Look::kHere)};
    if (!root.isOpen()) return known;

    const auto look = [&](std::size_t piece) {
        const std::size_t first = piece * kDirectoriesAPiece;
        const std::size_t end = std::min(first + kDirectoriesAPiece, count);
        PathsOfScan paths(scan, first);
        for (std::size_t i = first; i < end; ++i)
            if (isAsItWas(root.number(), paths.at(i), scan.directories[i], options.follow))
                known.looks[i] = Look::kNowhere;
        return piece;
    };
    const std::size_t pieces = (count + kDirectoriesAPiece - 1) / kDirectoriesAPiece;
    makeInOrder(pieces, options.jobs > 0 ? options.jobs : threadCount(), look,
                [&onStep](std::size_t /*piece*/) { onStep(); });
    // Each directory stands after the one that it is in.
    for (std::size_t i = count; i-- > 1;) {
        Look& above = known.looks[scan.directories[i].parent];
        if (known.looks[i] != Look::kNowhere && above == Look::kNowhere) above = Look::kBelow;
    }
    return known;
}

}  // namespace zqpaths
