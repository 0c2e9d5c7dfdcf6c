#include "zqpaths/directory/DirectoryReader.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqpaths {

std::list<WalkedDirectory> DirectoryReader::read(WalkedDirectory& directory) noexcept {
    std::list<WalkedDirectory> subdirectories;
    try {
        DirectoryStream stream = open_.open(directory);
        if (!stream) {
            directory.error = errno;
        } else if (isEntered(directory, ::dirfd(stream.get()))) {
            subdirectories = readNames(directory, stream.get());
            if (!subdirectories.empty()) open_.keep(directory, std::move(stream));
        }
    } catch (...) {
        directory.failure = std::current_exception();
    }
    return subdirectories;
}

bool DirectoryReader::isEntered(WalkedDirectory& directory, int descriptor) const {
    if (!options_.follow && !options_.oneFileSystem) return true;
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        directory.error = errno;
        return false;
    }
    directory.device = status.st_dev;
    directory.inode = status.st_ino;

    const WalkedDirectory* above = directory.parent;
    if (above == nullptr) return true;
    for (; above != nullptr; above = above->parent) {
        const bool isSame = above->device == directory.device && above->inode == directory.inode;
        if (options_.follow && isSame) {
            directory.sameAbove = above;
            return false;
        }
        // All that are walked are then on one file system.
        if (options_.oneFileSystem && above->device != directory.device) {
            directory.leftOut.onOtherFileSystems = 1;
            return false;
        }
    }
    return true;
}

std::list<WalkedDirectory> DirectoryReader::readNames(WalkedDirectory& directory,
                                                      DIR* stream) const {
    std::vector<std::string> names;  // of sub-directories
    std::string pathBefore = filter_.pathBefore(directory);
    while (true) {
        errno = 0;
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream belongs to this thread alone
        const dirent* const entry = ::readdir(stream);
        if (entry == nullptr) break;
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..") continue;
        sortIn(directory, pathBefore, ::dirfd(stream), *entry, names);
    }
    directory.error = errno;
    std::ranges::sort(directory.files);
    std::ranges::sort(names);

    std::list<WalkedDirectory> subdirectories;
    for (std::string& name : names) subdirectories.emplace_back(&directory, std::move(name));
    return subdirectories;
}

void DirectoryReader::sortIn(WalkedDirectory& directory, std::string& pathBefore, int descriptor,
                             const dirent& entry, std::vector<std::string>& subdirectories) const {
    const std::string_view name = entry.d_name;
    if (filter_.isNotTaken(descriptor, entry)) return;
    if (options_.skipHidden && name.front() == '.') {
        ++directory.leftOut.hidden;
        return;
    }
    const EntryKind kind = isWalked(descriptor, entry) ? EntryKind::kDirectory : EntryKind::kOther;
    if (filter_.isExcluded(pathBefore, name, kind)) {
        ++directory.leftOut.excluded;
        return;
    }
    if (filter_.isReported(descriptor, entry, kind))
        directory.files.emplace_back(name);
    else if (kind == EntryKind::kOther)
        ++directory.leftOut.ofOtherTypes;
    if (kind == EntryKind::kOther) return;
    if (filter_.isDeepest(directory))
        ++directory.leftOut.tooDeep;
    else
        subdirectories.emplace_back(name);
}

bool DirectoryReader::isWalked(int directory, const dirent& entry) const {
    if (entry.d_type == DT_DIR) return true;
    const bool mayBe = entry.d_type == DT_UNKNOWN ||  // some file systems do not say
                       (entry.d_type == DT_LNK && options_.follow);
    if (!mayBe) return false;
    struct stat status {};
    const int flags = options_.follow ? 0 : AT_SYMLINK_NOFOLLOW;
    return ::fstatat(directory, entry.d_name, &status, flags) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace zqpaths
