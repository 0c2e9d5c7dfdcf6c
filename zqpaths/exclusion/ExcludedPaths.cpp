#include "zqpaths/exclusion/ExcludedPaths.hpp"

#include <algorithm>
#include <cstddef>

#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {

bool ExcludedPaths::contain(std::string_view path) {
    if (rules_.isEmpty()) return false;
    const std::string_view folder = path.substr(0, folderLength(path));
    if (folder != folder_) enter(folder);
    if (isLeftOut_) return true;

    std::string_view name = path.substr(folder.size());
    const bool isDirectory = name.ends_with(kSeparator);
    name = name.substr(0, name.find(kSeparator));
    return leavesOut(name, isDirectory ? EntryKind::kDirectory : EntryKind::kOther);
}

void ExcludedPaths::enter(std::string_view folder) {
    folder_ = folder;
    names_.clear();
    isLeftOut_ = false;
    while (!folder.empty() && !isLeftOut_) {
        const std::size_t end = folder.find(kSeparator);
        const std::string_view name = folder.substr(0, end);
        isLeftOut_ = leavesOut(name, EntryKind::kDirectory);
        if (!name.empty() && name != ".") names_.append(name).push_back(kSeparator);
        folder.remove_prefix(std::min(folder.find_first_not_of(kSeparator, end), folder.size()));
    }
}

/// Whether the rules leave out a name in the folder at hand.
bool ExcludedPaths::leavesOut(std::string_view name, EntryKind kind) {
    if (name.empty() || name == ".") return false;
    const std::size_t length = names_.size();
    names_ += name;
    const bool isLeftOut = rules_.excludes(names_, kind);
    names_.resize(length);
    return isLeftOut;
}

}  // namespace zqpaths
