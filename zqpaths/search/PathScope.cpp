#include "zqpaths/search/PathScope.hpp"

#include <algorithm>
#include <cstddef>

#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

void skipSeparators(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kSeparator), text.size()));
}

std::string_view takeName(std::string_view& text) {
    const std::string_view name = text.substr(0, text.find(kSeparator));
    text.remove_prefix(name.size());
    return name;
}

/// What follows the names of `folder` in `path`, if it begins with them.
std::optional<std::string_view> after(std::string_view folder, std::string_view path) {
    if (folder.empty()) return path;
    if (folder.starts_with(kSeparator) != path.starts_with(kSeparator)) return std::nullopt;
    while (true) {
        skipSeparators(folder);
        skipSeparators(path);
        if (folder.empty()) return path;
        if (takeName(folder) != takeName(path)) return std::nullopt;
    }
}

bool hasMoreNames(std::string_view path, std::uint64_t count) {
    for (;; --count) {
        skipSeparators(path);
        if (path.empty()) return false;
        if (count == 0) return true;
        takeName(path);
    }
}

}  // namespace

bool PathScope::contains(std::string_view path) const {
    const std::optional<std::string_view> rest = after(folder_, path);
    return rest && (!depth_ || !hasMoreNames(*rest, *depth_));
}

}  // namespace zqpaths
