#pragma once
// Every short sequence of folder entries over the names a and b, in which files become folders and
// folders are met again in all ways there are.
//
//     forAllHistories(limits, [](const TextEntries& entries) { ... });

#include <string>
#include <vector>

#include "tests/support/PathSets.hpp"

namespace compressedpaths {

/// Entries of the longest histories. Under the address sanitizer, where a history takes seven times
/// as long, two have to do.
#ifdef __SANITIZE_ADDRESS__
inline constexpr std::size_t kMostHistoryEntries = 2;
#else
inline constexpr std::size_t kMostHistoryEntries = 3;
#endif

/// How many histories there are of 1 to kMostHistoryEntries out of so many entries.
constexpr std::size_t historyCount(std::size_t entries) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < kMostHistoryEntries; ++i) count = (count + 1) * entries;
    return count;
}

struct HistoryLimits {
    std::size_t entries = 1;
    std::size_t depth = 1;  // of a folder; none is without components
    std::size_t files = 1;  // of an entry
    std::size_t leastFiles = 0;
};

/// All lists of `least` to `most` of the names a and b, the shorter ones first.
inline std::vector<Names> nameLists(std::size_t least, std::size_t most) {
    std::vector<Names> lists{{}};
    for (std::size_t i = 0; i < lists.size(); ++i) {
        if (lists[i].size() == most) break;
        for (const char16_t* name : {u"a", u"b"}) {
            lists.push_back(lists[i]);
            lists.back().emplace_back(name);
        }
    }
    std::erase_if(lists, [&](const Names& list) { return list.size() < least; });
    return lists;
}

/// Calls `visit` with each sequence of at least one entry and returns how many there were.
template <class Visit>
std::size_t forAllHistories(const HistoryLimits& limits, Visit visit) {
    TextEntries entries;
    for (const Names& folder : nameLists(1, limits.depth)) {
        for (const Names& files : nameLists(limits.leastFiles, limits.files))
            entries.push_back({folder, files});
    }

    std::size_t count = 0;
    std::vector<std::size_t> choice{0};
    while (!choice.empty()) {
        if (choice.back() == entries.size()) {
            choice.pop_back();
            if (!choice.empty()) ++choice.back();
            continue;
        }
        TextEntries history;
        for (const std::size_t entry : choice) history.push_back(entries[entry]);
        visit(history);
        ++count;
        if (choice.size() < limits.entries) {
            choice.push_back(0);
        } else {
            ++choice.back();
        }
    }
    return count;
}

/// Adds entries without the parallel coder, which costs more than a short history itself.
inline void addCoded(HuffmanPathTree& set, const TextEntries& entries) {
    makeCode(set, u"abcd");
    for (const TextEntry& entry : entries) {
        Path folder;
        std::vector<Bytes> files;
        for (const std::u16string& name : entry.folder) folder.push_back(set.generateCodeFor(name));
        for (const std::u16string& name : entry.files) files.push_back(set.generateCodeFor(name));
        set.addPathToBTree(folder, files);
    }
}

/// `a/b: c d; a: e` for a message.
inline std::string describe(const TextEntries& entries) {
    std::string text;
    const auto append = [&](const std::u16string& name) {
        for (const char16_t unit : name) text.push_back(static_cast<char>(unit));
    };
    for (const TextEntry& entry : entries) {
        for (const std::u16string& component : entry.folder) {
            append(component);
            text += '/';
        }
        text += ':';
        for (const std::u16string& file : entry.files) {
            text += ' ';
            append(file);
        }
        text += "; ";
    }
    return text;
}

}  // namespace compressedpaths
