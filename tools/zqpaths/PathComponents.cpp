#include "tools/zqpaths/PathComponents.hpp"

#include <algorithm>
#include <cassert>

namespace zqpaths {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

/// The length of what `text` begins with: a name, and all separators that follow it.
std::size_t nameWithSeparators(std::string_view text) {
    const std::size_t nameEnd = text.find(kSeparator);
    assert(nameEnd != kNone);  // a folder's text ends with a separator
    return std::min(text.find_first_not_of(kSeparator, nameEnd), text.size());
}

}  // namespace

CutPath cutPath(std::string_view path) {
    assert(!path.empty());
    const std::size_t length = folderLength(path);
    CutPath cut{{}, path.substr(length)};
    cutFolder(path.substr(0, length), cut.folder);
    return cut;
}

std::string joinPath(const std::vector<std::string_view>& folder, std::string_view fileName) {
    std::string path;
    for (const std::string_view component : folder) appendToFolder(component, path);
    return path.append(fileName);
}

std::size_t folderLength(std::string_view path) noexcept {
    const std::size_t lastOfName = path.find_last_not_of(kSeparator);
    if (lastOfName == kNone) return 0;
    const std::size_t separator = path.rfind(kSeparator, lastOfName);
    return separator == kNone ? 0 : separator + 1;
}

void cutFolder(std::string_view folderText, std::vector<std::string_view>& components) {
    if (folderText.empty()) return components.push_back(kNoFolder);

    const std::size_t first = nameWithSeparators(folderText);
    components.push_back(folderText.substr(0, first));
    folderText.remove_prefix(first);
    while (!folderText.empty()) {
        const std::size_t length = nameWithSeparators(folderText);
        components.push_back(folderText.substr(0, length - 1));
        folderText.remove_prefix(length);
    }
}

void appendToFolder(std::string_view component, std::string& folderText) {
    if (component == kNoFolder) return;
    const bool isFirst = folderText.empty();
    folderText.append(component);
    if (!isFirst) folderText.push_back(kSeparator);
}

}  // namespace zqpaths
