#include "zqpaths/directory/OpenDirectories.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace zqpaths {
namespace {

DirectoryStream openFrom(int parent, const WalkedDirectory& directory, bool follow) {
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (follow ? 0 : O_NOFOLLOW);
    const int descriptor = ::openat(parent, directory.name.c_str(), flags);
    if (descriptor < 0) return nullptr;
    DirectoryStream stream(::fdopendir(descriptor));
    if (!stream) {
        const int error = errno;
        ::close(descriptor);
        errno = error;
    }
    return stream;
}

}  // namespace

DirectoryStream OpenDirectories::open(const WalkedDirectory& directory) {
    if (directory.parent == nullptr) return openFrom(AT_FDCWD, directory, true);
    Shared parent = find(directory.parent);
    if (!parent) parent = reopen(*directory.parent);
    if (!parent) return nullptr;
    return openFrom(::dirfd(parent.get()), directory, follow_);
}

void OpenDirectories::keep(const WalkedDirectory& directory, DirectoryStream stream) {
    keepShared(&directory, std::move(stream));
}

void OpenDirectories::drop(const WalkedDirectory& directory) {
    Shared closedOutsideTheLock;
    const std::lock_guard lock(mutex_);
    const auto place = std::ranges::find(kept_, &directory, &Kept::directory);
    if (place == kept_.end()) return;
    closedOutsideTheLock = std::move(place->stream);
    kept_.erase(place);
}

OpenDirectories::Shared OpenDirectories::find(const WalkedDirectory* directory) {
    const std::lock_guard lock(mutex_);
    const auto place = std::ranges::find(kept_, directory, &Kept::directory);
    if (place == kept_.end()) return nullptr;
    if (directory->parent == nullptr) return place->stream;
    std::rotate(place, place + 1, kept_.end());
    return kept_.back().stream;
}

void OpenDirectories::keepShared(const WalkedDirectory* directory, Shared stream) {
    Shared closedOutsideTheLock;
    const std::lock_guard lock(mutex_);
    if (std::ranges::find(kept_, directory, &Kept::directory) != kept_.end()) return;
    if (kept_.size() == kMaxKept) {
        // The root, which is the first, is the last resort for all.
        const bool hasRoot = kept_.front().directory->parent == nullptr;
        const auto longestUnused = kept_.begin() + (hasRoot ? 1 : 0);
        closedOutsideTheLock = std::move(longestUnused->stream);
        kept_.erase(longestUnused);
    }
    const auto place = directory->parent == nullptr ? kept_.begin() : kept_.end();
    kept_.insert(place, {directory, std::move(stream)});
}

OpenDirectories::Shared OpenDirectories::reopen(const WalkedDirectory& directory) {
    Shared above;
    std::vector<const WalkedDirectory*> closed;  // from `directory` up
    for (const WalkedDirectory* level = &directory; !above && level != nullptr;
         level = level->parent) {
        above = find(level);
        if (!above) closed.push_back(level);
    }
    for (; !closed.empty(); closed.pop_back()) {
        // A root that is as it was has not been opened before.
        const Shared opened(above ? openFrom(::dirfd(above.get()), *closed.back(), follow_)
                                  : openFrom(AT_FDCWD, *closed.back(), true));
        if (!opened) return nullptr;
        // Only these are of use to what comes next; others would push one another out.
        const bool isRoot = closed.back()->parent == nullptr;
        if (isRoot || closed.size() < kMaxKept) keepShared(closed.back(), opened);
        above = opened;
    }
    return above;
}

}  // namespace zqpaths
