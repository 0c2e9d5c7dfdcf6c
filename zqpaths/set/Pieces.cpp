#include "zqpaths/set/Pieces.hpp"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/store/Hashing.hpp"
#include "zqpaths/set/CollectedPaths.hpp"
#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/set/Segment.hpp"
#include "zqpaths/set/SetBuilding.hpp"
#include "zqpaths/set/TreeStringBytes.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

using compressedpaths::HuffmanPathTree;

/// Calls `take(paths)` for all paths of a set, as many at a time as a collection holds.
template <class Take>
void collectAll(const PathSet& set, Take take) {
    CollectedPaths paths;
    set.forEach([&](std::uint64_t, std::string_view path) {
        if (!paths.hasRoomFor(path)) {
            take(std::as_const(paths));
            paths.clear();
        }
        paths.append(path);
    });
    if (!paths.isEmpty()) take(std::as_const(paths));
}

/// Calls `work()`. What the core throws in it is a damage of the piece.
template <class Work>
void readPiece(const std::string& name, Work work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const Error&) {
        throw;
    } catch (const std::exception& damage) {
        throw Error(ErrorKind::kDamaged, name, damage.what());
    }
}

std::u16string charactersOf(const SavedPieces& pieces) {
    const std::size_t size = pieces.treeString.size();
    if (size == 0) throw Error(ErrorKind::kDamaged, pieces.treeStringName, "is empty");
    if (size % 2 != 0)
        throw Error(ErrorKind::kDamaged, pieces.treeStringName,
                    "half a character at byte " + std::to_string(size - 1));
    return treeStringOf(pieces.treeString);
}

/// A code tells its characters apart, each in its place, and no more of them.
void requireAllPlaces(const HuffmanPathTree& set, const std::u16string& characters,
                      const std::string& name) {
    const std::vector<bool> shape = set.getBoolTree();
    const auto places = static_cast<std::size_t>(std::ranges::count(shape, true));
    if (characters.size() <= places) return;
    const std::size_t excess = characters.size() - places;
    throw Error(ErrorKind::kDamaged, name,
                "has " + std::to_string(excess) +
                    (excess == 1 ? " character too many" : " characters too many"));
}

/// Calls `visit(path)` for all paths that have numbers, in their order.
template <class Visit>
void forEachPath(const HuffmanPathTree& set, Visit visit) {
    set.forEachText(1, set.size(), Segment::kSeparatorText,
                    [&](std::size_t, std::string_view text) { visit(pathOfComponents(text)); });
}

/// Reads all paths of a saved set in both ways, by number and by the walk, and refuses a set in
/// which these are not the same. It is known by hashes of 64 bits: two paths of one hash pass for
/// one. Every name is read through the code and coded again, which gives the same bits unless one
/// of the two pieces is damaged.
class PathCheck {
public:
    PathCheck(HuffmanPathTree& set, const std::string& name) : set_(set), name_(name) {}

    void requireWhole() {
        forEachPath(set_, [this](std::string_view path) { addNumbered(path); });
        for (std::size_t number = 1; number <= set_.size(); ++number)
            if (set_.hasDuplicate(number)) ++ownCount_;
        ownCount_ = std::max(ownCount_, set_.size() - numbered_.size());
        std::ranges::sort(numbered_);
        walk();
        readNames();
        if (ownCount_ > 0)
            refuse(std::to_string(ownCount_) + " paths were added on their own, without a number");
    }

private:
    void addNumbered(std::string_view path) {
        numbered_.push_back(hashOf(path));
        if (path.empty() || path.find('\0') != std::string_view::npos)
            refuse("path " + std::to_string(numbered_.size()) + " is empty or has a NUL");
    }

    void walk() {
        std::string text;
        std::size_t strangeCount = 0;
        for (set_.resetPathsToBTree(); set_.hasNextPathFromBTree();) {
            set_.getNextTextFromBTree(Segment::kSeparatorText, text);
            if (!std::ranges::binary_search(numbered_, hashOf(pathOfComponents(text))))
                ++strangeCount;
        }
        ownCount_ = std::max(ownCount_, strangeCount);
    }

    void readNames() {
        compressedpaths::Path before;
        compressedpaths::Path path;
        for (set_.resetPathsToBTree(); set_.hasNextPathFromBTree();) {
            path.clear();
            set_.getNextPathFromBTree(path);
            // The folders that a path has in common with the one before have been read.
            const auto [own, ended] = std::ranges::mismatch(path, before);
            for (auto name = own; name != path.end(); ++name) requireSameCode(*name);
            std::swap(path, before);
        }
    }

    void requireSameCode(const compressedpaths::Bytes& code) {
        const std::u16string name = set_.generatePathFrom(code);
        if (set_.generateCodeFor(name) == code) return;
        std::string text;
        appendBytes(name, text);
        refuse("the name " + text + " is not coded as its characters are");
    }

    static std::uint64_t hashOf(std::string_view path) noexcept {
        return compressedpaths::hashOf(path.data(), path.size(), compressedpaths::processSeed());
    }

    [[noreturn]] void refuse(const std::string& reason) const {
        throw Error(ErrorKind::kDamaged, name_, reason);
    }

    HuffmanPathTree& set_;
    const std::string& name_;
    std::vector<std::uint64_t> numbered_;  // hashes
    std::size_t ownCount_ = 0;
};

}  // namespace

SavedPieces exportPieces(const PathSet& set) {
    return exportPieces(set, WorkWatcher());
}

SavedPieces exportPieces(const PathSet& set, const WorkWatcher& watch) {
    const unsigned threads = threadCount();
    CharacterCounts counts;
    collectAll(set, [&](const CollectedPaths& paths) {
        countCharacters(paths, threads, counts);
        if (watch) watch(WorkStep::kReading, paths.size());
    });
    HuffmanPathTree whole;
    makeCode(counts, whole);
    SavedPieces pieces;
    try {
        collectAll(set,
                   [&](const CollectedPaths& paths) { addPaths(paths, threads, whole, watch); });
    } catch (const compressedpaths::SetTooLargeException& error) {
        throw Error(ErrorKind::kWrongUse, set.file(), error.what());
    }
    if (watch) watch(WorkStep::kPacking, 0);
    appendTreeString(whole.getTreeString(), pieces.treeString);
    whole.serialize(pieces.pathTree, true);
    return pieces;
}

void importPieces(SavedPieces pieces, PathSetWriter& writer) {
    const std::u16string characters = charactersOf(pieces);
    HuffmanPathTree set;
    readPiece(pieces.pathTreeName, [&] { set.deserialize(pieces.pathTree, true); });
    pieces.pathTree = {};
    readPiece(pieces.treeStringName, [&] {
        set.inflateHuffman(characters);
        requireAllPlaces(set, characters, pieces.treeStringName);
    });
    readPiece(pieces.pathTreeName, [&] {
        PathCheck(set, pieces.pathTreeName).requireWhole();
        forEachPath(set, [&writer](std::string_view path) { writer.add(path); });
    });
}

}  // namespace zqpaths
