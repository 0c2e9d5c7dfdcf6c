#include "zqpaths/text/PathComponents.hpp"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "zqpaths/text/EqualPrefix.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

std::size_t separatorsAt(std::string_view text, std::size_t position) {
    return std::min(text.find_first_not_of(kSeparator, position), text.size()) - position;
}

/// The length of what `text` begins with: a name, and all separators that follow it.
std::size_t nameWithSeparators(std::string_view text) {
    const std::size_t nameEnd = text.find(kSeparator);
    assert(nameEnd != kNone);  // a folder's text ends with a separator
    return nameEnd + separatorsAt(text, nameEnd);
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
    const void* const separator = ::memrchr(path.data(), kSeparator, lastOfName);
    if (separator == nullptr) return 0;
    return static_cast<std::size_t>(static_cast<const char*>(separator) - path.data()) + 1;
}

void cutFolder(std::string_view folderText, std::vector<std::string_view>& components) {
    bool isFirst = true;
    do {
        components.push_back(takeComponent(folderText, isFirst));
        isFirst = false;
    } while (!folderText.empty());
}

std::string_view takeComponent(std::string_view& folderText, bool isFirst) {
    if (folderText.empty()) return kNoFolder;
    const std::size_t length = nameWithSeparators(folderText);
    const std::string_view component = folderText.substr(0, isFirst ? length : length - 1);
    folderText.remove_prefix(length);
    return component;
}

SharedFolder sharedFolder(std::string_view folderText, std::string_view other) {
    const std::size_t equal = equalPrefix(folderText, other);
    SharedFolder shared{0, 0};
    while (shared.length < equal) {
        const std::size_t nameEnd = folderText.find(kSeparator, shared.length);
        if (nameEnd >= equal) break;
        const std::size_t end = nameEnd + separatorsAt(folderText, nameEnd);
        if (end > equal || separatorsAt(other, end) > 0) break;  // "a/" and "a//" differ
        ++shared.components;
        shared.length = end;
    }
    return shared;
}

std::string_view pathOfComponents(std::string_view text) noexcept {
    return text.starts_with(kNoFolder) ? text.substr(kNoFolder.size()) : text;
}

void appendToFolder(std::string_view component, std::string& folderText) {
    if (component == kNoFolder) return;
    const bool isFirst = folderText.empty();
    folderText.append(component);
    if (!isFirst) folderText.push_back(kSeparator);
}

void appendName(std::string_view name, std::string& path) {
    if (!path.empty() && path.back() != kSeparator) path.push_back(kSeparator);
    path.append(name);
}

std::string plainFolder(std::string_view folder) {
    std::string path;
    if (folder.starts_with(kSeparator)) path.push_back(kSeparator);
    while (!folder.empty()) {
        const std::string_view name = folder.substr(0, folder.find(kSeparator));
        if (!name.empty()) appendName(name, path);
        folder.remove_prefix(std::min(name.size() + 1, folder.size()));
    }
    return path;
}

}  // namespace zqpaths
