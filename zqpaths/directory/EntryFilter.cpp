#include "zqpaths/directory/EntryFilter.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

/// The letter of the type of what is no directory; 0 for types without one.
char letterOf(int directory, const dirent& entry) {
    switch (entry.d_type) {
        case DT_REG:
            return 'f';
        case DT_LNK:
            return 'l';
        case DT_UNKNOWN:
            break;
        default:
            return 0;
    }
    struct stat status {};
    if (::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) return 0;
    if (S_ISREG(status.st_mode)) return 'f';
    return S_ISLNK(status.st_mode) ? 'l' : '\0';
}

}  // namespace

EntryFilter::EntryFilter(const WalkOptions& options) : options_(options), rules_(options.exclude) {}

bool EntryFilter::isNotTaken(int directory, const dirent& entry) const {
    return std::ranges::any_of(options_.notTaken, [&](const FileIdentity& file) {
        if (entry.d_ino != file.inode && entry.d_name != file.name) return false;
        struct stat status {};
        return ::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
               status.st_dev == file.device && status.st_ino == file.inode;
    });
}

std::string EntryFilter::pathBefore(const WalkedDirectory& directory) const {
    std::string path;
    if (rules_.isEmpty()) return path;
    std::vector<const WalkedDirectory*> levels;  // from the directory up, without the root
    for (const auto* level = &directory; level->parent != nullptr; level = level->parent)
        levels.push_back(level);
    for (; !levels.empty(); levels.pop_back())
        path.append(levels.back()->name).push_back(kSeparator);
    return path;
}

bool EntryFilter::isExcluded(std::string& pathBefore, std::string_view name, EntryKind kind) const {
    if (rules_.isEmpty()) return false;
    const std::size_t length = pathBefore.size();
    pathBefore += name;
    const bool isLeftOut = rules_.excludes(pathBefore, kind);
    pathBefore.resize(length);
    return isLeftOut;
}

bool EntryFilter::isReported(int directory, const dirent& entry, EntryKind kind) const {
    const std::string& types = options_.types;
    if (kind == EntryKind::kDirectory) return types.find('d') != std::string::npos;
    if (types.empty()) return true;
    const char letter = letterOf(directory, entry);
    return letter != 0 && types.find(letter) != std::string::npos;
}

bool EntryFilter::isDeepest(const WalkedDirectory& directory) const noexcept {
    return options_.maxDepth && directory.depth + 1 >= *options_.maxDepth;
}

}  // namespace zqpaths
