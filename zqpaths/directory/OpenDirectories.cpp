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
    if (place != kept_.begin()) std::rotate(place, place + 1, kept_.end());
    return directory->parent == nullptr ? kept_.front().stream : kept_.back().stream;
}

void OpenDirectories::keepShared(const WalkedDirectory* directory, Shared stream) {
    Shared closedOutsideTheLock;
    const std::lock_guard lock(mutex_);
    if (std::ranges::find(kept_, directory, &Kept::directory) != kept_.end()) return;
    if (kept_.size() == kMaxKept) {
        const auto longestUnused = kept_.begin() + 1;  // the root is the last resort for all
        closedOutsideTheLock = std::move(longestUnused->stream);
        kept_.erase(longestUnused);
    }
    kept_.push_back({directory, std::move(stream)});
}

OpenDirectories::Shared OpenDirectories::reopen(const WalkedDirectory& directory) {
    Shared above;
    std::vector<const WalkedDirectory*> closed;  // from `directory` up
    for (const WalkedDirectory* level = &directory; !above; level = level->parent) {
        above = find(level);
        if (!above) closed.push_back(level);
    }
    for (; !closed.empty(); closed.pop_back()) {
        const Shared opened(openFrom(::dirfd(above.get()), *closed.back(), follow_));
        if (!opened) return nullptr;
        // Only these are of use to what comes next; others would push one another out.
        if (closed.size() < kMaxKept) keepShared(closed.back(), opened);
        above = opened;
    }
    return above;
}

}  // namespace zqpaths
