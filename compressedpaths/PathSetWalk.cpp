// The walk over all paths of a set: that of its trie, with the paths that were added again at their
// numbers.

#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {

/// Takes the next step of the walk: `step` gets the path that was added again at its number, or
/// null. A step that fails is none; past the end, where no path added again has its place, it
/// counts.
template <class Step>
void HuffmanPathTree::stepWalk(Step step) {
    ++iterationPosition;
    try {
        step(repeatedPathAt(iterationPosition));
    } catch (const NoMorePathException&) {
        throw;
    } catch (...) {
        --iterationPosition;
        throw;
    }
}

void HuffmanPathTree::getNextPathFromBTree(Path& out) {
    stepWalk([&](const RepeatedPath* repeated) {
        if (repeated == nullptr) return pathTree->getNextPath(out);
        Path keys;
        arena().appendKeysOf(repeated->place, keys);
        out.reserve(out.size() + keys.size());
        out.insert(out.end(), std::make_move_iterator(keys.begin()),
                   std::make_move_iterator(keys.end()));
    });
}

void HuffmanPathTree::visitNextPathFromBTree(const std::function<void(const Path& path)>& visit) {
    stepWalk([&](const RepeatedPath* repeated) {
        if (repeated == nullptr) {
            pathTree->visitNextPath([&](std::span<const Id> folders, const NameView& name) {
                visit(pathTree->keysOf(folders, name));
            });
        } else {
            Path keys;
            arena().appendKeysOf(repeated->place, keys);
            visit(keys);
        }
    });
}

void HuffmanPathTree::getNextTextFromBTree(std::string_view separator, std::string& text) {
    const auto take = [&](std::span<const Id> folders, const NameView& name) {
        setFolders(walkText_, folders, separator);
        const std::size_t folderSize = walkText_.text.size();
        codeTables_.appendText(name, walkText_.text);
        text = walkText_.text;
        walkText_.text.resize(folderSize);
    };
    stepWalk([&](const RepeatedPath* repeated) {
        if (repeated == nullptr) return pathTree->visitNextPath(take);
        std::vector<Id> folders;
        arena().chainTo(arena().folderOf(repeated->place), folders);
        take(folders, arena().nameOf(repeated->place));
    });
}

bool HuffmanPathTree::hasNextPathFromBTree() {
    return repeatedPathAt(iterationPosition + 1) != nullptr || pathTree->hasNextPath();
}

void HuffmanPathTree::resetPathsToBTree() {
    pathTree->reset();
    walkText_ = {};
    iterationPosition = 0;
    clearThreadResources();
}

}  // namespace compressedpaths
