#include "zqpaths/update/SetUpdate.hpp"

#include <algorithm>
#include <utility>

#include "zqpaths/directory/KnownDirectories.hpp"
#include "zqpaths/directory/ScanOptions.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {

std::string folderOfRoot(std::string_view root) {
    std::string folder(root);
    if (!folder.ends_with(kSeparator)) folder.push_back(kSeparator);
    return folder;
}

SetUpdate::SetUpdate(const PathSet& set, std::span<const std::string> roots,
                     UpdateVisitors visitors)
    : set_(set), visitors_(std::move(visitors)), roots_(roots.size()) {
    std::ranges::transform(roots, roots_.begin(), folderOfRoot);
}

EncodedScan SetUpdate::run(const std::string& root, const WalkOptions& options, const Scan* before,
                           std::int64_t began) {
    root_ = folderOfRoot(root);
    ScanWriter scan({root, began, scanOptionsOf(options)});
    std::optional<KnownDirectories> known;
    if (before != nullptr) known.emplace(lookAtDirectories(*before, options, visitors_.onStep));
    walkDirectory(
        root, options,
        {.onError = visitors_.onError,
         .onDirectory =
             [&](const MetDirectory& met) {
                 take(met);
                 scan.add(met.directory);
             },
         .onKept = [&](std::uint32_t first, std::uint32_t end) { scan.copy(*before, first, end); }},
        known ? &*known : nullptr);
    endRegion();
    return std::move(scan).finish();
}

void SetUpdate::take(const MetDirectory& met) {
    if (region_ && !met.path.starts_with(region_->folder)) endRegion();
    switch (met.directory.state) {
        case ScanState::kLeftOut:
            loseBelow(met.path);
            break;
        case ScanState::kUnreadable:
            if (region_) region_->unreadable.emplace_back(met.path);
            compare(met, false);
            break;
        case ScanState::kRead:
        case ScanState::kReadAgain:
            if (met.isUnchanged) break;
            if (!met.known && !region_) beginRegion(met.path);
            compare(met, true);
    }
}

/// Calls `visit(number, path)` for the paths of the set whose text begins with that of a folder,
/// unless they are below another root that is in it: that one knows of them.
template <class Visit>
void SetUpdate::forEachBelow(std::string_view folder, Visit visit) const {
    std::vector<std::string_view> others;
    for (const std::string& root : roots_)
        if (root != root_ && root.starts_with(folder)) others.push_back(root);
    set_.under(folder, [&](std::uint64_t number, std::string_view path) {
        const bool isOwn = path.starts_with(folder) &&
                           std::ranges::none_of(others, [path](std::string_view other) {
                               return path.starts_with(other);
                           });
        return !isOwn || visit(number, path);
    });
}

void SetUpdate::beginRegion(std::string_view folder) {
    bool isFresh = true;
    forEachBelow(folder, [&](std::uint64_t /*number*/, std::string_view /*path*/) {
        isFresh = false;
        return false;
    });
    region_.emplace(Region{std::string(folder), isFresh, {}, {}});
}

/// What the set has below it in folders that are not there any more is gone.
void SetUpdate::endRegion() {
    if (!region_) return;
    const Region region = std::move(*std::exchange(region_, std::nullopt));
    if (region.isFresh) return;
    std::string folder;  // of the path before
    bool isThere = false;
    forEachBelow(region.folder, [&](std::uint64_t number, std::string_view path) {
        const std::string_view own = path.substr(0, folderLength(path));
        if (own != folder) {
            folder = own;
            isThere = region.met.contains(folder) ||
                      std::ranges::any_of(region.unreadable, [&](const std::string& unread) {
                          return folder.starts_with(unread);
                      });
        }
        if (!isThere) lose(number, path);
        return true;
    });
}

void SetUpdate::compare(const MetDirectory& met, bool isAllRead) {
    if (region_) region_->met.emplace(met.path);
    if (!compared_.emplace(met.path).second) return;
    path_ = met.path;
    folderSize_ = path_.size();
    if (region_ && region_->isFresh)
        for (const std::string& name : met.files) add(name);
    else
        compareFiles(met, isAllRead);
    for (const std::string_view name : met.gone)
        loseBelow(std::string(met.path).append(name) + kSeparator);
}

/// Goes through the names on disk and in the set side by side.
void SetUpdate::compareFiles(const MetDirectory& met, bool isAllRead) {
    const std::vector<FileOfFolder> files = filesOfFolder(openedSetOf(set_), met.path);
    auto next = files.begin();
    const auto takeNext = [&](bool isThere) {
        const auto end = std::find_if(
            next, files.end(), [&](const FileOfFolder& file) { return file.name != next->name; });
        if (isThere || isAllRead) takeNamesakes({next, end}, isThere);
        next = end;
    };
    for (const std::string& name : met.files) {
        while (next != files.end() && next->name < name) takeNext(false);
        if (next != files.end() && next->name == name)
            takeNext(true);
        else
            add(name);
    }
    while (next != files.end()) takeNext(false);
}

/// All that the set has of one path, which is there or not.
void SetUpdate::takeNamesakes(std::span<const FileOfFolder> files, bool isThere) {
    const std::string_view path = pathOf(files.front().name);
    if (!isThere) {
        for (const FileOfFolder& file : files) lose(file.number, path);
    } else if (std::ranges::all_of(
                   files, [this](const FileOfFolder& file) { return set_.isGone(file.number); })) {
        visitors_.onChange(PathChange::kBack, files.front().number, path);
    }
}

void SetUpdate::add(std::string_view name) {
    visitors_.onChange(PathChange::kAdded, set_.size() + ++addedCount_, pathOf(name));
}

void SetUpdate::loseBelow(std::string_view folder) {
    if (!lost_.emplace(folder).second) return;
    forEachBelow(folder, [this](std::uint64_t number, std::string_view path) {
        lose(number, path);
        return true;
    });
}

void SetUpdate::lose(std::uint64_t number, std::string_view path) {
    if (!set_.isGone(number)) visitors_.onChange(PathChange::kGone, number, path);
}

std::string_view SetUpdate::pathOf(std::string_view name) {
    path_.resize(folderSize_);
    return path_.append(name);
}

}  // namespace zqpaths
