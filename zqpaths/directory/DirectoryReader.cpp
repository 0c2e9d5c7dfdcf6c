#include "zqpaths/directory/DirectoryReader.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zqpaths/directory/SystemStamp.hpp"

namespace zqpaths {
namespace {

using Look = KnownDirectories::Look;

/// Appends sub-directories that are known, in their order; neighbours that the walk need not look
/// at as one.
class KnownAppender {
public:
    KnownAppender(const KnownDirectories& known, WalkedDirectory& parent,
                  std::list<WalkedDirectory>& list)
        : known_(known), parent_(parent), list_(list) {}

    void append(std::uint32_t place) {
        const ScannedDirectory& directory = known_.scan.directories[place];
        if (known_.looks[place] != Look::kNowhere) {
            list_.emplace_back(&parent_, std::string(directory.name));
            // What is below one that could not be read is not known.
            if (directory.state < ScanState::kUnreadable) list_.back().known = place;
        } else if (!list_.empty() && list_.back().keptEnd == place) {
            list_.back().keptEnd = directory.end;
        } else {
            list_.emplace_back(&parent_, place, directory.end);
        }
    }

private:
    const KnownDirectories& known_;
    WalkedDirectory& parent_;
    std::list<WalkedDirectory>& list_;
};

}  // namespace

std::list<WalkedDirectory> DirectoryReader::read(WalkedDirectory& directory) noexcept {
    std::list<WalkedDirectory> subdirectories;
    try {
        if (directory.known && known_->looks[*directory.known] != Look::kHere)
            return knownSubdirectories(directory);
        DirectoryStream stream = open_.open(directory);
        if (!stream) {
            directory.error = errno;
        } else if (isEntered(directory, ::dirfd(stream.get()))) {
            subdirectories = isAsItWas(directory) ? knownSubdirectories(directory)
                                                  : readNames(directory, stream.get());
            if (!subdirectories.empty()) open_.keep(directory, std::move(stream));
        }
    } catch (...) {
        directory.failure = std::current_exception();
    }
    return subdirectories;
}

void DirectoryReader::lead(WalkedDirectory& directory) {
    DirectoryStream stream = open_.open(directory);
    struct stat status {};
    if (!stream || ::fstat(::dirfd(stream.get()), &status) != 0) return;
    directory.stamp = stampOf(status);
    open_.keep(directory, std::move(stream));
}

bool DirectoryReader::isEntered(WalkedDirectory& directory, int descriptor) const {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        directory.error = errno;
        return false;
    }
    directory.stamp = stampOf(status);

    if (!options_.follow && !options_.oneFileSystem) return true;
    const DirectoryStamp& own = directory.stamp;
    for (const WalkedDirectory* above = directory.parent; above != nullptr; above = above->parent) {
        const DirectoryStamp& other = above->stamp;
        if (options_.follow && other.device == own.device && other.inode == own.inode)
            directory.sameAbove = above;
        // All that are walked are then on one file system.
        const bool isElsewhere = options_.oneFileSystem && other.device != own.device;
        if (directory.sameAbove != nullptr || isElsewhere) {
            directory.isLeftOut = true;
            if (directory.sameAbove == nullptr) directory.leftOut.onOtherFileSystems = 1;
            return false;
        }
    }
    return true;
}

bool DirectoryReader::isAsItWas(const WalkedDirectory& directory) const {
    if (!directory.known) return false;
    const ScannedDirectory& known = known_->scan.directories[*directory.known];
    return known.state == ScanState::kRead && known.stamp == directory.stamp;
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
    return subdirectoriesOf(directory, std::move(names));
}

std::list<WalkedDirectory> DirectoryReader::knownSubdirectories(WalkedDirectory& directory) const {
    const auto& scanned = known_->scan.directories;
    const ScannedDirectory& known = scanned[*directory.known];
    directory.stamp = known.stamp;
    directory.isUnchanged = true;
    directory.subdirectoryCount = known.subdirectoryCount;
    std::list<WalkedDirectory> subdirectories;
    KnownAppender appender(*known_, directory, subdirectories);
    for (std::uint32_t i = *directory.known + 1; i < known.end; i = scanned[i].end)
        appender.append(i);
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
    if (options_.follow && entry.d_type != DT_DIR && entry.d_type != DT_REG)
        directory.hasLinks = true;
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

/// Those of these names, ascending: what is known of them, and which that are known are not there.
std::list<WalkedDirectory> DirectoryReader::subdirectoriesOf(WalkedDirectory& directory,
                                                             std::vector<std::string> names) const {
    directory.subdirectoryCount = names.size();
    std::list<WalkedDirectory> subdirectories;
    if (!directory.known) {
        for (std::string& name : names) subdirectories.emplace_back(&directory, std::move(name));
        return subdirectories;
    }
    const auto& scanned = known_->scan.directories;
    KnownAppender appender(*known_, directory, subdirectories);
    std::uint32_t next = *directory.known + 1;
    const std::uint32_t end = scanned[*directory.known].end;
    const auto passUpTo = [&](const std::string* name) {
        for (; next < end && (name == nullptr || scanned[next].name < *name);
             next = scanned[next].end)
            directory.gone.push_back(scanned[next].name);
    };
    for (std::string& name : names) {
        passUpTo(&name);
        if (next < end && scanned[next].name == name) {
            appender.append(next);
            next = scanned[next].end;
        } else {
            subdirectories.emplace_back(&directory, std::move(name));
        }
    }
    passUpTo(nullptr);
    return subdirectories;
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
