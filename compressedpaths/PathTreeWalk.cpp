// The walk over all paths, which keeps its place between two calls.

#include <utility>

#include "compressedpaths/BPathTree.hpp"

namespace compressedpaths {

void BPathTree::reset() {
    if (root->children.empty()) return;

    NodeStack nodes;
    pushAllChildren(root, nodes);
    NodeStack parents;
    parents.push(root);
    nodeStack = std::move(nodes);
    parentStack = std::move(parents);
    currentPath.clear();
}

bool BPathTree::hasNextPath() {
    return !root->children.empty() && !nodeStack.empty();
}

void BPathTree::getNextPath(Path& path) {
    if (!hasNextPath()) throw NoMorePathException();

    while (!nodeStack.empty()) {
        const std::shared_ptr<BNode> node = nodeStack.top();
        nodeStack.pop();
        bool isLast = isNodeAtEndOfParent(node);
        if (!isLeaf(node)) {
            currentPath.push_back(node->key);
            pushAllChildren(node);
            parentStack.push(node);
            continue;
        }

        path.assign(currentPath.begin(), currentPath.end());
        path.push_back(node->key);
        while (isLast && !parentStack.empty()) {
            const std::shared_ptr<BNode> finished = parentStack.top();
            parentStack.pop();
            if (!currentPath.empty()) currentPath.pop_back();
            isLast = isNodeAtEndOfParent(finished);
        }
        return;
    }
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

}  // namespace compressedpaths
