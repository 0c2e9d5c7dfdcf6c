#include "tools/zqpaths/tree/FolderTree.hpp"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths::program {
namespace {

std::string joined(std::string path, std::string_view name) {
    appendName(name, path);
    return path;
}

/// Keeps the first `most` names of those that it is given.
void keepFirst(std::vector<std::string>& names, std::string_view name, std::size_t most) {
    if (names.size() == most && name >= names.front()) return;
    names.emplace_back(name);
    std::ranges::push_heap(names);  // the last one by name is at the front
    if (names.size() <= most) return;
    std::ranges::pop_heap(names);
    names.pop_back();
}

}  // namespace

struct FolderTree::Folder {
    Place place;
    std::string name;
    std::string path;
    std::uint64_t level = 0;
};

/// What is shown of a folder, on the way through it.
struct FolderTree::Inside {
    std::vector<Folder> folders;
    const std::vector<std::string>* files;
    TreeLine rest;
    std::size_t next = 0;

    std::size_t shownCount() const { return folders.size() + files->size(); }
    /// Where nothing is shown, the line of the folder says all.
    bool hasRest() const { return shownCount() > 0 && rest.totals.filesBelow > 0; }
    std::size_t size() const { return shownCount() + (hasRest() ? 1U : 0U); }
};

FolderTree::FolderTree(const FolderTotals& totals, Place top, const TreeOptions& options)
    : totals_(totals), top_(top), options_(options) {
    if (options_.most == 0) options_.most = totals.of(FolderTotals::kTop).filesBelow;
}

/// A folder with those that share its line.
FolderTree::Folder FolderTree::folderAt(Place place, const std::string& pathAbove) const {
    Folder folder{place, totals_.nameOf(place), joined(pathAbove, totals_.nameOf(place))};
    while (totals_.of(folder.place).filesIn == 0 && totals_.of(folder.place).foldersIn == 1) {
        folder.place = totals_.foldersIn(folder.place).front();
        const std::string name = totals_.nameOf(folder.place);
        folder.name = joined(folder.name, name);
        folder.path = joined(folder.path, name);
    }
    return folder;
}

std::vector<FolderTree::Folder> FolderTree::foldersIn(Place place, const std::string& path) const {
    struct Named {
        std::uint64_t count;
        std::string name;
        Place place;
    };
    std::vector<Named> all;
    for (const Place inside : totals_.foldersIn(place))
        all.push_back({totals_.of(inside).filesBelow, totals_.nameOf(inside), inside});
    const bool isByCount = options_.order == TreeOptions::Order::kCount;
    const auto shown = std::min<std::uint64_t>(options_.most, all.size());
    const auto end = all.begin() + static_cast<std::ptrdiff_t>(shown);
    std::ranges::partial_sort(all, end, [isByCount](const Named& a, const Named& b) {
        if (isByCount && a.count != b.count) return a.count > b.count;
        return a.name < b.name;
    });
    std::vector<Folder> folders;
    for (auto named = all.begin(); named != end; ++named)
        folders.push_back(folderAt(named->place, path));
    return folders;
}

FolderTree::Inside FolderTree::insideOf(const Folder& folder) const {
    static const std::vector<std::string> kNoFiles;
    const auto files = files_.find(folder.path);
    Inside inside{foldersIn(folder.place, folder.path),
                  files == files_.end() ? &kNoFiles : &files->second,
                  {TreeLine::Kind::kRest, folder.level + 1, true, "", folder.path}};
    for (Folder& shown : inside.folders) shown.level = folder.level + 1;
    FolderTotals::Totals& rest = inside.rest.totals;
    const FolderTotals::Totals& all = totals_.of(folder.place);
    rest.filesIn = all.filesIn - std::min<std::uint64_t>(all.filesIn, inside.files->size());
    rest.filesBelow = all.filesBelow - (all.filesIn - rest.filesIn);
    rest.foldersIn = all.foldersIn - inside.folders.size();
    for (const Folder& shown : inside.folders)
        rest.filesBelow -= totals_.of(shown.place).filesBelow;
    return inside;
}

void FolderTree::visit(const std::function<void(const TreeLine& line)>& visitor) const {
    std::vector<Inside> open;
    const auto show = [&](const Folder& folder, bool isLast) {
        visitor({TreeLine::Kind::kFolder, folder.level, isLast, folder.name, folder.path,
                 totals_.of(folder.place)});
        if (folder.level < options_.depth) open.push_back(insideOf(folder));
    };
    Folder top = folderAt(top_, totals_.pathOf(totals_.parentOf(top_)));
    top.name = top.path;
    show(top, true);
    while (!open.empty()) {
        Inside& inside = open.back();
        const std::size_t next = inside.next++;
        const bool isLast = inside.next == inside.size();
        if (next >= inside.size()) {
            open.pop_back();
        } else if (next < inside.folders.size()) {
            const Folder folder = inside.folders[next];  // opening it moves those that are open
            show(folder, isLast);
        } else if (const std::size_t file = next - inside.folders.size();
                   file < inside.files->size()) {
            const std::string& name = (*inside.files)[file];
            visitor({TreeLine::Kind::kFile, inside.rest.level, isLast, name,
                     joined(inside.rest.path, name)});
        } else {
            visitor(inside.rest);
        }
    }
}

void FolderTree::findFiles(const PathSet& set, const std::function<void()>& step) {
    files_.clear();
    std::unordered_map<std::string, std::vector<std::string>> found;
    visit([&](const TreeLine& line) {
        if (line.kind == TreeLine::Kind::kFolder && line.level < options_.depth)
            found.try_emplace(line.path);
    });
    std::optional<std::string> folderText;  // of the path before
    std::vector<std::string>* names = nullptr;
    set.under(totals_.pathOf(top_), [&](std::uint64_t number, std::string_view path) {
        step();
        if (set.isGone(number)) return;
        const std::string_view folder = path.substr(0, folderLength(path));
        if (folderText != folder) {
            folderText = folder;
            const auto place = found.find(plainFolder(folder));
            names = place == found.end() ? nullptr : &place->second;
        }
        if (names != nullptr) keepFirst(*names, path.substr(folder.size()), options_.most);
    });
    for (auto& [folder, files] : found) std::ranges::sort_heap(files);
    files_ = std::move(found);
}

}  // namespace zqpaths::program
