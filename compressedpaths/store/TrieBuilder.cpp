#include "compressedpaths/store/TrieBuilder.hpp"

#include <algorithm>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "compressedpaths/SavedForm.hpp"

namespace compressedpaths {

TrieBuilder::TrieBuilder(std::span<const std::uint8_t> structure, std::size_t keyCount) {
    branches_.push({0, 0, PathArena::kRoot});
    if (structure.empty()) return;
    const std::size_t count = readShape(structure, keyCount);
    listChildren(structure.first(count));
}

void TrieBuilder::raise(Error error) {
    if (error == Error::kUnknownNodeType) throw UnknownNodeTypeException();
    throw IncompleteTrieException();
}

/// Counts the children of each node. Returns the number of nodes.
std::size_t TrieBuilder::readShape(std::span<const std::uint8_t> structure, std::size_t keyCount) {
    const std::size_t most = std::min(structure.size(), keyCount);
    if (most >= kNoNode) throw SetTooLargeException();
    branchOf_.reserveFor(most);
    FlatArray<std::uint32_t> open;  // branches
    open.push(0);
    while (!open.isEmpty()) {
        const std::size_t node = branchOf_.size();
        if (node == most) {
            error_ = Error::kIncomplete;
            break;
        }
        const std::uint8_t type = structure[node];
        ++branches_.at(*(open.end() - 1)).childCount;
        if (type > kLargestNodeType) {
            error_ = Error::kUnknownNodeType;
            branchOf_.append(kLeaf);
            break;
        }
        if ((type & kHasNextSibling) == 0) open.truncate(open.size() - 1);
        if ((type & kHasChildren) == 0) {
            branchOf_.append(kLeaf);
            ++leafCount_;
            continue;
        }
        branchOf_.append(static_cast<std::uint32_t>(branches_.size()));
        open.push(static_cast<std::uint32_t>(branches_.size()));
        branches_.push({0, 0, PathArena::kNone});
    }
    return branchOf_.size();
}

/// Lists the children of each node, those of one folder side by side. The way through the shape is
/// the same as when they were counted.
void TrieBuilder::listChildren(std::span<const std::uint8_t> structure) {
    std::uint32_t end = 0;
    for (std::size_t i = 0; i < branches_.size(); ++i) {
        branches_.at(i).firstChild = end;
        end += branches_[i].childCount;
    }
    children_.assign(structure.size(), 0);
    marks_.assign(structure.size() + 1, 0);
    FlatArray<std::uint32_t> listed;
    listed.assign(branches_.size(), 0);
    FlatArray<std::uint32_t> open;  // branches
    open.push(0);
    for (std::size_t node = 0; node < structure.size(); ++node) {
        const std::uint32_t parent = *(open.end() - 1);
        children_.at(branches_[parent].firstChild + listed.at(parent)++) = static_cast<Node>(node);
        if ((structure[node] & kHasNextSibling) == 0) open.truncate(open.size() - 1);
        if (branchOf_[node] != kLeaf) open.push(branchOf_[node]);
    }
}

std::uint32_t TrieBuilder::childCount(Node node) const noexcept {
    const std::uint32_t branch = branchOf(node);
    return branch == kLeaf ? 0 : branches_[branch].childCount;
}

TrieBuilder::Node TrieBuilder::childOf(Node node, std::size_t position) const noexcept {
    return children_[branches_[branchOf(node)].firstChild + position];
}

TrieBuilder::Node TrieBuilder::nodeAt(std::span<const std::size_t> track) const noexcept {
    Node node = kRootNode;
    for (const std::size_t position : track) {
        if (position >= childCount(node)) return kNoNode;
        node = childOf(node, position);
    }
    return node;
}

void TrieBuilder::markFiles(Node folder, std::uint64_t first, std::uint64_t count) noexcept {
    const std::uint32_t available = childCount(folder);
    if (first >= available || count == 0) return;
    const std::size_t begin =
        branches_[branchOf(folder)].firstChild + static_cast<std::size_t>(first);
    const std::size_t end = begin + static_cast<std::size_t>(std::min(count, available - first));
    ++marks_.at(begin);
    --marks_.at(end);
}

void TrieBuilder::markFolder(Node node) {
    if (branchOf(node) != kLeaf) return;
    branches_.push({static_cast<std::uint32_t>(children_.size()), 0, PathArena::kNone});
    branchOf_.at(node) = static_cast<std::uint32_t>(branches_.size() - 1);
}

bool TrieBuilder::isFile(std::size_t child) const noexcept {
    return marks_[child] > 0 || branchOf_[children_[child]] == kLeaf;
}

/// Writes the run of files that begins with a child of a folder.
void TrieBuilder::buildRun(const Keys& keys, const Branch& branch, std::uint32_t begin) {
    const std::uint32_t endOfFolder = branch.firstChild + branch.childCount;
    std::uint32_t end = begin;
    std::size_t size = 0;
    for (; end < endOfFolder && isFile(end); ++end) size += storedSize(keys[children_[end]]);
    const PathArena::Link run =
        arena_->beginRun(branch.folder, begin - branch.firstChild, end - begin, size);
    std::uint8_t* name = arena_->arrays_.names.extend(size);
    for (std::uint32_t child = begin; child < end; ++child) {
        name = writeStoredName(keys[children_[child]], name);
        items_.at(child) = run;
    }
    arena_->finishRun(run);
    arena_->appendItem(branch.folder, run);
}

/// Makes the folder that a child is: an item of its own, or a file of a run that became one.
PathArena::Id TrieBuilder::buildFolder(const Keys& keys, PathArena::Id parent,
                                       std::uint32_t position, std::uint32_t child) {
    FlatArray<std::uint8_t> name;
    appendStoredName(keys[children_[child]], name);
    const auto id = static_cast<PathArena::Id>(arena_->folderCount());
    arena_->writeFolder(parent, position, name.values());
    if (isFile(child)) {
        arena_->makeFormerFile(id, items_[child]);
    } else {
        items_.at(child) = PathArena::kFolderLink | id;
        arena_->appendItem(parent, items_[child]);
    }
    return id;
}

std::shared_ptr<PathArena> TrieBuilder::build(const Keys& keys) {
    for (std::size_t child = 1; child < marks_.size(); ++child)
        marks_.at(child) += marks_[child - 1];
    items_.assign(children_.size(), PathArena::kNone);
    arena_ = std::make_shared<PathArena>();

    struct Level {
        std::uint32_t branch;
        std::uint32_t next;  // position of the child that comes next
    };
    FlatArray<Level> open;
    open.push({0, 0});
    while (!open.isEmpty()) {
        const Level level = open[open.size() - 1];
        const Branch branch = branches_[level.branch];
        if (level.next == branch.childCount) {
            open.truncate(open.size() - 1);
            continue;
        }
        ++open.at(open.size() - 1).next;
        const std::uint32_t child = branch.firstChild + level.next;
        if (isFile(child) && items_[child] == PathArena::kNone) buildRun(keys, branch, child);
        const std::uint32_t inner = branchOf_[children_[child]];
        if (inner == kLeaf) continue;
        branches_.at(inner).folder = buildFolder(keys, branch.folder, level.next, child);
        open.push({inner, 0});
    }
    arena_->finishLoading();
    return arena_;
}

PathArena::Id TrieBuilder::folderOf(Node node) const noexcept {
    return branches_[branchOf(node)].folder;
}

PathArena::Place TrieBuilder::placeOf(Node folder, std::size_t position) const {
    const Branch& branch = branches_[branchOf(folder)];
    const PathArena::Link item = items_[branch.firstChild + position];
    if ((item & PathArena::kFolderLink) != 0) return {item, 0};
    return {item, static_cast<std::uint32_t>(position - arena_->runAt(item).first)};
}

}  // namespace compressedpaths
