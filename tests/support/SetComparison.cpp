#include "tests/support/SetComparison.hpp"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <unordered_map>
#include <vector>

#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

using Peer = HuffmanPathTreePeer;
using Kind = PlainPathSet::Fetched::Kind;
using Node = BPathTree::BNode;
using NumberRange = HuffmanPathTree::NumberRange;

std::string differs(const std::string& what, std::size_t number) {
    return what + " " + std::to_string(number) + " differs";
}

// --- The trie and the walk.

/// Each node of the one trie with the node at its place in the other; false if they differ.
bool pairNodes(const Node& node, const PlainNode& plain,
               std::unordered_map<const Node*, const PlainNode*>& pairs) {
    pairs[&node] = &plain;
    if (node.key != plain.key || node.children.size() != plain.children.size()) return false;
    for (std::size_t i = 0; i < node.children.size(); ++i)
        if (!pairNodes(*node.children[i], *plain.children[i], pairs)) return false;
    return true;
}

bool isSameStack(BPathTree::NodeStack stack, const PlainNodes& plain,
                 const std::unordered_map<const Node*, const PlainNode*>& pairs) {
    if (stack.size() != plain.size()) return false;
    for (auto node = plain.rbegin(); node != plain.rend(); ++node, stack.pop()) {
        const auto pair = pairs.find(stack.top().get());
        if (pair == pairs.end() || pair->second != node->get()) return false;
    }
    return true;
}

std::string differenceInWalk(const HuffmanPathTree& set, const PlainPathSet& plain) {
    const auto walk = BPathTreePeer::linkedWalk(Peer::pathTree(set));
    std::unordered_map<const Node*, const PlainNode*> pairs;
    if (!pairNodes(*walk.root, *plain.trie().root, pairs)) return "the trie differs";
    if (!isSameStack(walk.nodeStack, plain.trie().nodeStack, pairs)) return "nodeStack differs";
    if (!isSameStack(walk.parentStack, plain.trie().parentStack, pairs))
        return "parentStack differs";
    if (walk.currentPath != plain.trie().currentPath) return "currentPath differs";
    if (Peer::iterationPosition(set) != plain.iterationPosition())
        return "iterationPosition differs";
    return "";
}

// --- The index.

std::string differenceInIndex(const HuffmanPathTree& set, const PlainPathSet& plain) {
    const std::vector<std::size_t> ends = Peer::partitionEnds(set);
    const std::vector<PlainTrack> tracks = Peer::folderTracks(set);
    if (ends.size() != plain.entries().size()) return "the number of totals differs";
    if (tracks.size() != plain.entries().size()) return "the number of tracks differs";
    for (std::size_t i = 0; i < ends.size(); ++i) {
        if (ends[i] != plain.entries()[i].numbersEnd) return differs("total", i);
        if (tracks[i] != plain.entries()[i].track) return differs("track", i);
    }
    if (Peer::pathTracks(set) != plain.pathTracks()) return "pathTracks differs";
    if (Peer::pathCount(set) != plain.pathCount()) return "pathCount differs";
    if (Peer::maxFolderDepth(set) != plain.maxFolderDepth()) return "maxFolderDepth differs";
    if (Peer::maxTrackLength(set) != plain.maxTrackLength()) return "maxTrackLength differs";
    if (Peer::maxTrackKey(set) != plain.maxTrackKey()) return "maxTrackKey differs";
    return "";
}

// --- Names by number.

/// What one request for the number gives: no group, or one of a folder and a file.
std::string differenceInName(HuffmanPathTree& set, const PlainPathSet& plain, std::size_t number) {
    const PlainPathSet::Fetched expected = plain.fetch(number);
    std::vector<Path> folders;
    std::vector<Path> files;
    bool isRefused = false;
    try {
        set.getPath(folders, files, {static_cast<double>(number)});
    } catch (const InvalidFileNumberException&) {
        isRefused = true;
    }
    bool isSame = true;
    switch (expected.kind) {
        case Kind::kPath:
            isSame = !isRefused && folders == std::vector<Path>{expected.entry->components} &&
                     files == std::vector<Path>{{expected.file->key}};
            break;
        case Kind::kSinglePath:
            isSame = !isRefused && folders.empty() && files.empty();
            break;
        case Kind::kNoFile:
            isSame = isRefused && folders.empty() && files.empty();
            break;
        case Kind::kUncertain:
            break;
    }
    return isSame ? "" : differs("the path with number", number);
}

/// All paths in one request, first ascending, then descending.
std::string differenceInGroups(HuffmanPathTree& set, const PlainPathSet& plain) {
    std::vector<double> ascending;
    std::vector<Path> foldersUp;
    std::vector<Path> filesUp;
    const PlainPathSet::Entry* last = nullptr;
    for (std::size_t number = 1; number <= plain.pathCount(); ++number) {
        const PlainPathSet::Fetched expected = plain.fetch(number);
        if (expected.kind == Kind::kNoFile || expected.kind == Kind::kUncertain) continue;
        ascending.push_back(static_cast<double>(number));
        if (expected.kind != Kind::kPath) continue;
        if (expected.entry != last) {
            foldersUp.push_back(expected.entry->components);
            filesUp.emplace_back();
        }
        filesUp.back().push_back(expected.file->key);
        last = expected.entry;
    }
    std::vector<Path> folders;
    std::vector<Path> files;
    set.getPath(folders, files, ascending);
    if (folders != foldersUp || files != filesUp) return "a request for all paths differs";
    set.getPath(folders, files, {ascending.rbegin(), ascending.rend()});
    std::size_t group = folders.size();
    for (std::size_t up = 0; up < foldersUp.size(); ++up) {
        for (const Bytes& file : filesUp[up]) {
            --group;
            if (folders.at(group) != foldersUp[up] || files.at(group) != Path{file})
                return "a request for all paths in reverse differs";
        }
    }
    return group == foldersUp.size() ? "" : "a request for all paths in reverse differs";
}

std::string differenceInNames(HuffmanPathTree& set, const PlainPathSet& plain) {
    for (std::size_t number = 1; number <= plain.pathCount(); ++number) {
        const std::string difference = differenceInName(set, plain, number);
        if (!difference.empty()) return difference;
        if (set.hasDuplicate(number) != plain.pathTracks().contains(number))
            return differs("hasDuplicate of", number);
    }
    return differenceInGroups(set, plain);
}

// --- Texts.

std::u16string textOf(const HuffmanPathTree& set, const Path& folder, const Bytes& file,
                      const std::u16string& separator) {
    std::u16string text;
    Path components = folder;
    components.push_back(file);
    for (std::size_t i = 0; i < components.size(); ++i) {
        if (i > 1) text += separator;
        text += set.generatePathFrom(components[i]);
    }
    return text;
}

/// Of characters below 0x80, which are one byte each.
std::string narrow(const std::u16string& text) {
    return {text.begin(), text.end()};
}

// --- Finding.

using FolderPath = std::vector<std::u16string>;

std::vector<std::size_t> numbersIn(const std::vector<NumberRange>& ranges) {
    std::vector<std::size_t> numbers;
    for (const NumberRange& range : ranges)
        for (std::size_t number = range.first; number <= range.last; ++number)
            numbers.push_back(number);
    return numbers;
}

class FindingCheck {
public:
    FindingCheck(const HuffmanPathTree& set, const PlainPathSet& plain) : set_(set), plain_(plain) {
        for (std::size_t number = 1; number <= plain.pathCount(); ++number) {
            const PlainPathSet::Fetched fetched = plain.fetch(number);
            if (fetched.kind == Kind::kPath)
                numbersOf_[fetched.entry->folder.get()][fetched.file->key].push_back(number);
        }
    }

    std::string run() {
        const auto root = set_.folderOf({});
        if (!root) return "the root is not found";
        if (!set_.nameOf(*root).empty() || set_.parentOf(*root) != *root)
            return "the root is not the root";
        checkFolder(*root, *plain_.trie().root, {});
        checkNames();
        return difference_;
    }

private:
    void refuse(const std::string& what, const FolderPath& path) {
        if (!difference_.empty()) return;
        difference_ = what + " of the folder";
        for (const std::u16string& name : path) difference_ += " " + narrow(name);
    }

    void checkFolder(FolderId id, const PlainNode& node, const FolderPath& path) {
        if (plain_.hasOwnNumbers() && plain_.isCertain()) checkNumbers(id, node, path);

        const std::vector<FolderId> inside = set_.foldersIn(id);
        std::map<std::u16string, FolderId> byName;
        for (const FolderId folder : inside) {
            if (set_.parentOf(folder) != id) refuse("a parent in folders", path);
            if (!byName.emplace(set_.nameOf(folder), folder).second)
                refuse("two equal folders", path);
        }
        std::set<Bytes> seen;
        std::vector<FolderId>
            neverFiles;  // in the order of their positions, in which they were made
        std::size_t known = 0;
        for (const auto& child : node.children) {
            const bool isFirst = seen.insert(child->key).second;
            const std::u16string name = set_.generatePathFrom(child->key);
            const auto folder = byName.find(name);
            if (!isFirst) continue;
            FolderPath below = path;
            below.push_back(name);
            const auto found = set_.folderOf(below);
            if (found.has_value() != (folder != byName.end()) ||
                (found && *found != folder->second))
                refuse("folderOf and foldersIn", below);
            if (folder == byName.end()) {
                if (!child->children.empty()) refuse("what is in", below);
                continue;
            }
            ++known;
            if (!child->wasFile) neverFiles.push_back(folder->second);
            checkFolder(folder->second, *child, below);
        }
        if (known != inside.size()) refuse("folders of no child", path);
        auto next = inside.begin();
        for (const FolderId folder : neverFiles) {
            next = std::find(next, inside.end(), folder);
            if (next == inside.end()) return refuse("the order of folders", path);
        }
        FolderPath nobody = path;
        nobody.emplace_back(u"nobody");
        if (set_.folderOf(nobody)) refuse("a folder that is not there", path);
    }

    void checkNumbers(FolderId id, const PlainNode& node, const FolderPath& path) {
        std::vector<std::size_t> expected;
        for (const auto& [key, numbers] : numbersOf_[&node]) {
            expected.insert(expected.end(), numbers.begin(), numbers.end());
            if (set_.numberOf(id, set_.generatePathFrom(key)) != numbers.front())
                refuse("the number of a file", path);
        }
        std::sort(expected.begin(), expected.end());
        if (numbersIn(set_.entriesOf(id)) != expected) refuse("the entries", path);
        for (const auto& child : node.children)
            if (!numbersOf_[&node].contains(child->key) &&
                set_.numberOf(id, set_.generatePathFrom(child->key)))
                refuse("a number of no file", path);
        if (set_.numberOf(id, u"nobody")) refuse("the number of nobody", path);
    }

    /// Each name's beginning, middle and all of it, looked for in all numbers.
    void checkNames() {
        if (!plain_.hasOwnNumbers() || !plain_.isCertain() || plain_.entries().empty()) return;
        const std::size_t last = plain_.entries().back().numbersEnd;
        if (last == 0) return;
        std::vector<std::u16string> names(last);
        std::set<std::u16string> texts{u"nobody"};
        for (std::size_t number = 1; number <= last; ++number) {
            std::u16string& name = names[number - 1];
            name = set_.generatePathFrom(plain_.fetch(number).file->key);
            texts.insert({name.substr(0, 1), name.substr(name.size() / 2), name});
        }
        const NumberRange range{1 + last / 4, last};
        for (const std::u16string& text : texts) {
            std::vector<std::size_t> expected;
            for (std::size_t number = range.first; number <= range.last; ++number)
                if (names[number - 1].find(text) != std::u16string::npos)
                    expected.push_back(number);
            std::vector<std::size_t> found;
            set_.forEachNameWith(text, range, [&](std::size_t number) { found.push_back(number); });
            if (found != expected && difference_.empty())
                difference_ = "the names with " + narrow(text) + " differ";
        }
    }

    const HuffmanPathTree& set_;
    const PlainPathSet& plain_;
    std::map<const PlainNode*, std::map<Bytes, std::vector<std::size_t>>> numbersOf_;
    std::string difference_;
};

}  // namespace

std::string differenceOf(HuffmanPathTree& set, const PlainPathSet& plain) {
    for (const std::string& difference :
         {differenceInIndex(set, plain), differenceInWalk(set, plain),
          differenceInNames(set, plain)})
        if (!difference.empty()) return difference;
    Bytes saved;
    set.serialize(saved, false);
    return saved == plain.saved(set.getBoolTree()) ? "" : "the saved bytes differ";
}

std::string differenceInTexts(const HuffmanPathTree& set, const PlainPathSet& plain) {
    std::map<std::size_t, std::string> all;
    std::size_t readable = 0;  // the numbers up to here can all be read
    for (std::size_t number = 1; number <= plain.pathCount(); ++number) {
        const PlainPathSet::Fetched expected = plain.fetch(number);
        if (expected.kind == Kind::kUncertain) continue;
        std::string bytes = "-";
        std::u16string units = u"-";
        std::u16string expectedText = u"-";
        try {
            set.appendText(number, std::string_view("/"), bytes);
            set.appendText(number, std::u16string_view(u"/"), units);
            if (expected.kind != Kind::kPath) return differs("the text of no path, number", number);
            expectedText += textOf(set, expected.entry->components, expected.file->key, u"/");
            all[number] = narrow(expectedText.substr(1));
        } catch (const InvalidPathNumberException&) {
            if (expected.kind != Kind::kSinglePath) return differs("the refusal of", number);
        } catch (const InvalidFileNumberException&) {
            if (expected.kind != Kind::kNoFile) return differs("the refusal of", number);
        }
        if (units != expectedText || bytes != narrow(expectedText))
            return differs("the text of number", number);
        if (expected.kind != Kind::kNoFile && readable + 1 == number) readable = number;
    }

    std::map<std::size_t, std::string> visited;
    const auto end = all.upper_bound(readable);
    set.forEachText(1, readable, "/", [&](std::size_t number, std::string_view text) {
        visited.emplace_hint(visited.end(), number, text);
    });
    if (visited != decltype(all)(all.begin(), end)) return "the texts of all numbers differ";

    std::vector<std::size_t> numbers;  // downwards, then upwards
    for (const auto& [number, text] : all) numbers.push_back(number);
    numbers.insert(numbers.begin(), numbers.rbegin(), numbers.rend());
    std::size_t next = 0;
    bool isSame = true;
    set.forEachText(numbers, "/", [&](std::size_t number, std::string_view text) {
        isSame = isSame && number == numbers[next++] && text == all.at(number);
    });
    return isSame && next == numbers.size() ? "" : "the texts of scattered numbers differ";
}

std::string differenceInFinding(const HuffmanPathTree& set, const PlainPathSet& plain) {
    return FindingCheck(set, plain).run();
}

}  // namespace compressedpaths
