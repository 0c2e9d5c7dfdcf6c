// The walk over all paths, which keeps its place between two calls.
//
// It visits a folder's children by position, as many as there were when the folder was entered. The
// folders that are open above, and those whose names stand in front of the next path, are kept
// beside that: what is added during a walk can make a folder stay open, and then the three tell
// different things. All three only grow within a step, so that a step that fails is undone by
// cutting them.

#include <algorithm>
#include <utility>

#include "compressedpaths/BPathTree.hpp"

namespace compressedpaths {

void BPathTree::reset() {
    const std::uint32_t count = arena_->childCount(PathArena::kRoot);
    if (count == 0) return;

    std::vector<Frame> frames{{arena_->firstChild(PathArena::kRoot), count}};
    std::vector<PathArena::Id> parents{PathArena::kRoot};
    frames_ = std::move(frames);
    parents_ = std::move(parents);
    current_.clear();
}

bool BPathTree::hasNextPath() {
    dropFinishedFrames();
    return !frames_.empty() && arena_->hasChildren(PathArena::kRoot);
}

void BPathTree::dropFinishedFrames() noexcept {
    while (!frames_.empty() && frames_.back().left == 0) frames_.pop_back();
}

void BPathTree::getNextPath(Path& path) {
    visitNextPath([&](std::span<const PathArena::Id> folders, const NameView& name) {
        path = keysOf(folders, name);
    });
}

Path BPathTree::keysOf(std::span<const PathArena::Id> folders, const NameView& name) const {
    Path keys(folders.size() + 1);
    for (std::size_t i = 0; i < folders.size(); ++i) keys[i] = keyOf(arena_->nameOf(folders[i]));
    keys.back() = keyOf(name);
    return keys;
}

void BPathTree::visitNextPath(const PathVisitor& visit) {
    if (!hasNextPath()) throw NoMorePathException();

    const Frame top = frames_.back();
    const std::size_t frameCount = frames_.size();
    const std::size_t parentCount = parents_.size();
    const std::size_t currentCount = current_.size();
    try {
        visitNext(visit);
    } catch (...) {
        frames_.resize(frameCount, top);
        frames_.back() = top;
        parents_.resize(parentCount);
        current_.resize(currentCount);
        throw;
    }
}

void BPathTree::visitNext(const PathVisitor& visit) {
    while (true) {
        const PathArena::Cursor child = frames_.back().next;
        // With more children to visit it cannot be the last one, which takes longer to find out.
        const bool isMoreToVisit = --frames_.back().left > 0;
        const bool isLast = !isMoreToVisit && isLastOfParent({child.folder, child.position});
        if (isMoreToVisit) arena_->advance(frames_.back().next);

        const PathArena::Id folder = arena_->folderAt(child);
        const std::uint32_t count = folder == PathArena::kNone ? 0 : arena_->childCount(folder);
        if (count == 0) {
            visit(current_, arena_->nameOf(child));
            if (isLast) closeFinished();
            return;
        }
        current_.push_back(folder);
        frames_.push_back({arena_->firstChild(folder), count});
        parents_.push_back(folder);
    }
}

/// Closes the folders whose last child has been visited.
void BPathTree::closeFinished() {
    bool isLast = true;
    while (isLast && !parents_.empty()) {
        const PathArena::Id finished = parents_.back();
        parents_.pop_back();
        if (!current_.empty()) current_.pop_back();
        isLast = finished != PathArena::kRoot &&
                 isLastOfParent({arena_->parentOf(finished), arena_->positionOf(finished)});
    }
}

/// True if a child is the last one, now, of the folder that is open above.
bool BPathTree::isLastOfParent(const Visited& child) const {
    return !parents_.empty() && parents_.back() == child.folder &&
           child.position + 1 == arena_->childCount(child.folder);
}

void BPathTree::pushAllChildren(const std::shared_ptr<BNode>& node) {
    pushAllChildren(node, nodeStack);
}

void BPathTree::pushAllChildren(const std::shared_ptr<BNode>& node, NodeStack& stack) const {
    for (auto child = node->children.rbegin(); child != node->children.rend(); ++child)
        stack.push(*child);
}

bool BPathTree::isNodeAtEndOfParent(const std::shared_ptr<BNode>& node) const {
    return isNodeAtEndOfParent(node, parentStack);
}

bool BPathTree::isNodeAtEndOfParent(const std::shared_ptr<BNode>& node,
                                    const NodeStack& stack) const {
    if (stack.empty()) return false;
    const auto& siblings = stack.top()->children;
    return !siblings.empty() && siblings.back() == node;
}

BPathTree::LinkedWalk BPathTree::linkedWalk() const {
    // By folder, its node; a child that is no folder is only found in its parent's list.
    std::unordered_map<PathArena::Id, std::shared_ptr<BNode>> nodeOf;
    LinkedWalk walk;
    walk.root = std::make_shared<BNode>();
    nodeOf[PathArena::kRoot] = walk.root;
    std::vector<PathArena::Id> open{PathArena::kRoot};
    while (!open.empty()) {
        const PathArena::Id folder = open.back();
        open.pop_back();
        std::uint32_t left = arena_->childCount(folder);
        if (left == 0) continue;
        for (PathArena::Cursor child = arena_->firstChild(folder);; arena_->advance(child)) {
            auto node = std::make_shared<BNode>();
            node->key = keyOf(arena_->nameOf(child.place()));
            nodeOf.at(folder)->children.push_back(node);
            const PathArena::Id inside = arena_->folderAt(child);
            if (inside != PathArena::kNone) {
                nodeOf[inside] = node;
                open.push_back(inside);
            }
            if (--left == 0) break;
        }
    }
    for (const Frame& frame : frames_)
        for (std::uint32_t left = frame.left; left > 0; --left)
            walk.nodeStack.push(
                nodeOf.at(frame.next.folder)->children.at(frame.next.position + left - 1));
    for (const PathArena::Id folder : parents_) walk.parentStack.push(nodeOf.at(folder));
    for (const PathArena::Id folder : current_)
        walk.currentPath.push_back(keyOf(arena_->nameOf(folder)));
    return walk;
}

}  // namespace compressedpaths
