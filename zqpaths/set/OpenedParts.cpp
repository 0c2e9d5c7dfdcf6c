#include "zqpaths/set/OpenedParts.hpp"

#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace zqpaths {
namespace {

/// Half of the files that the process may have open are left to others.
std::size_t mostOpenParts() noexcept {
    struct rlimit limit {};
    static_cast<void>(::getrlimit(RLIMIT_NOFILE, &limit));  // fails for no limit that there is
    return std::clamp<std::size_t>(limit.rlim_cur / 2, 1, OpenedParts::kMostParts);
}

/// The folder that a manifest is in, as people know it unless a link leads to it.
std::string folderOf(const std::string& manifest) {
    struct stat status {};
    const bool isLink = ::lstat(manifest.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
    return directoryOf(isLink ? withoutLinks(manifest) : manifest);
}

/// A file that a manifest in a folder names.
std::string fileIn(const std::string& folder, const std::string& path) {
    return path.front() == '/' ? path : folder + path;
}

}  // namespace

OpenedParts::OpenedParts(std::string name, std::vector<ManifestFile> files, const SetParts& parts)
    : name_(std::move(name)),
      folder_(directoryOf(withoutLinks(name_))),
      shownFolder_(folderOf(name_)),
      files_(std::move(files)),
      parts_(parts),
      mostParts_(mostOpenParts()) {}

PinnedPart OpenedParts::pin(std::size_t part) const {
    const std::shared_ptr<Opened> opened = keep(part);
    const std::shared_ptr<const OpenedPart>& there = opened->get([&] { return open(part); });
    naming([&] { there->file().requireWhole(); });
    return PinnedPart(there);
}

std::shared_ptr<const OpenedPart> OpenedParts::open(std::size_t part) const {
    auto opened = naming([&] {
        return std::make_shared<const OpenedPart>(mapped(parts_[part].row.file), parts_[part]);
    });
    const std::uint64_t goneThere = opened->goneBelow(parts_[part].lastNumber() + 1);
    const std::uint64_t goneCount = parts_[part].row.goneCount;
    if (goneThere != goneCount)
        throw Error(ErrorKind::kDamaged, name_,
                    opened->file().path() + ": has " + std::to_string(goneThere) +
                        " gone paths there, the set wants " + std::to_string(goneCount));
    return opened;
}

/// What stands for a part, which is the one needed last from now on.
std::shared_ptr<OpenedParts::Opened> OpenedParts::keep(std::size_t part) const {
    std::list<Kept> dropped;  // closed when nobody waits any more
    const std::lock_guard lock(mutex_);
    if (const auto place = places_.find(part); place != places_.end()) {
        kept_.splice(kept_.begin(), kept_, place->second);
        return kept_.front().opened;
    }
    kept_.push_front({part, std::make_shared<Opened>()});
    try {
        places_.emplace(part, kept_.begin());
    } catch (...) {
        kept_.pop_front();
        throw;
    }
    if (kept_.size() > mostParts_) {
        places_.erase(kept_.back().part);
        dropped.splice(dropped.begin(), kept_, std::prev(kept_.end()));
    }
    return kept_.front().opened;
}

std::string OpenedParts::nameOf(std::size_t file) const {
    return fileIn(shownFolder_, files_[file].path);
}

std::shared_ptr<const SetFile> OpenedParts::file(std::size_t file) const {
    return naming([&] { return mapped(file); });
}

/// A file that is mapped already, or is now.
std::shared_ptr<const SetFile> OpenedParts::mapped(std::size_t file) const {
    {
        const std::lock_guard lock(mutex_);
        const auto place = mapped_.find(file);
        if (place != mapped_.end())
            if (auto there = place->second.lock()) return there;
    }
    auto opened = SetFile::open(fileIn(folder_, files_[file].path), nameOf(file));
    if (opened->state().superblock.directorySum != files_[file].sum)
        throw Error(ErrorKind::kDamaged, opened->path(),
                    "was changed since the set was made of it");
    const std::lock_guard lock(mutex_);
    if (mapped_.size() > 2 * mostParts_)
        std::erase_if(mapped_, [](const auto& entry) { return entry.second.expired(); });
    mapped_[file] = opened;
    return opened;
}

}  // namespace zqpaths
