#include "examples/FolderEntries.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <utility>

#include "tools/zqpaths/PathComponents.hpp"
#include "tools/zqpaths/PathText.hpp"

namespace examples {
namespace {

/// Neighbouring paths of one folder.
struct FolderEntry {
    std::string_view folderText;  // what they begin with
    std::size_t first;
    std::size_t end;
};

/// The entry of the batch that begins at `first` of a list, or further on in that batch.
FolderEntry entryAt(const PathList& paths, std::size_t first, std::size_t batchEnd) {
    const std::size_t length = zqpaths::folderLength(paths[first]);
    const std::string_view folderText = paths[first].substr(0, length);
    std::size_t end = first + 1;
    while (end < batchEnd && paths[end].starts_with(folderText) &&
           zqpaths::folderLength(paths[end]) == length)
        ++end;
    return {folderText, first, end};
}

std::size_t batchEnd(const PathList& paths, std::size_t first) {
    return std::min(paths.size(), first - first % kBatchPaths + kBatchPaths);
}

/// Replaces `text` by a component in UTF-16.
void replace(std::u16string& text, std::string_view component) {
    text.clear();
    zqpaths::appendUtf16(component, text);
}

struct Folder {
    std::size_t firstPath;    // that lies in it or below
    bool holdsPaths = false;  // itself, not only further down
    bool wasPath = false;     // before that
};
using Folders = std::unordered_map<std::string_view, Folder>;  // by their texts

/// The folder of a path, added with those above it if it was not there.
Folder& addFolder(Folders& folders, std::string_view folderText, std::size_t path) {
    const auto [folder, isNew] = folders.try_emplace(folderText, Folder{path});
    Folder& added = folder->second;  // stays where it is while others are added
    for (bool isAboveNew = isNew; isAboveNew && !folderText.empty();) {
        folderText = folderText.substr(0, zqpaths::folderLength(folderText));
        isAboveNew = folders.try_emplace(folderText, Folder{path}).second;
    }
    return added;
}

}  // namespace

CharacterFrequencies countCharacters(const PathList& paths) {
    std::vector<std::uint64_t> counts(std::size_t{std::numeric_limits<char16_t>::max()} + 1);
    std::u16string text;
    const auto count = [&](std::string_view component) {
        replace(text, component);
        for (const char16_t character : text) ++counts[character];
    };

    CharacterFrequencies found;
    std::vector<std::string_view> components;
    for (std::size_t first = 0; first < paths.size(); ++found.entryCount) {
        const FolderEntry entry = entryAt(paths, first, batchEnd(paths, first));
        components.clear();
        zqpaths::cutFolder(entry.folderText, components);
        for (const std::string_view component : components) count(component);
        for (; first < entry.end; ++first) count(paths[first].substr(entry.folderText.size()));
    }

    for (std::size_t character = 0; character < counts.size(); ++character) {
        if (counts[character] == 0) continue;
        found.characters.push_back(static_cast<char16_t>(character));
        found.frequencies.push_back(static_cast<double>(counts[character]));
    }
    return found;
}

void Batch::fill(const PathList& paths, std::size_t first) {
    std::vector<std::string_view> components;
    std::size_t entryIndex = 0;
    for (const std::size_t end = batchEnd(paths, first); first < end; ++entryIndex) {
        const FolderEntry entry = entryAt(paths, first, end);
        if (entryIndex == folders.size()) {
            folders.emplace_back();
            files.emplace_back();
        }
        components.clear();
        zqpaths::cutFolder(entry.folderText, components);
        std::vector<std::u16string>& folder = folders[entryIndex];
        folder.resize(components.size());
        for (std::size_t i = 0; i < folder.size(); ++i) replace(folder[i], components[i]);

        std::vector<std::u16string>& names = files[entryIndex];
        names.resize(entry.end - entry.first);
        for (std::u16string& name : names)
            replace(name, paths[first++].substr(entry.folderText.size()));
    }
    folders.resize(entryIndex);
    files.resize(entryIndex);
}

FolderCensus countFolders(const PathList& paths) {
    FolderCensus census;
    Folders folders;
    for (std::size_t first = 0; first < paths.size();) {
        const FolderEntry entry = entryAt(paths, first, paths.size());
        bool& holdsPaths = addFolder(folders, entry.folderText, first).holdsPaths;
        if (!std::exchange(holdsPaths, true)) ++census.distinctCount;
        first = entry.end;
    }

    std::string folderText;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (zqpaths::folderLength(paths[i]) == 0) continue;  // its component has no separator
        folderText.assign(paths[i]).push_back(zqpaths::kSeparator);
        const auto folder = folders.find(folderText);
        if (folder == folders.end() || folder->second.firstPath < i) continue;
        // Of equal paths, the first one becomes the folder.
        if (!std::exchange(folder->second.wasPath, true)) ++census.becameFolderCount;
    }
    return census;
}

}  // namespace examples
