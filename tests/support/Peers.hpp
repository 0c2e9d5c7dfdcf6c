#pragma once
// What tests may see of the private state of the core's classes, one function a field. What the
// classes make when it is asked for comes by value:
//
//     EXPECT_EQ(HuffmanPathTreePeer::maxCodeBytes(set), 2U);

#include <memory>

#include "compressedpaths/BPathTree.hpp"
#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {

class BPathTreePeer {
public:
    /// The trie and its walk as linked nodes, made anew: two calls share no node, the stacks of one
    /// share those below its root.
    static auto linkedWalk(const BPathTree& tree) { return tree.linkedWalk(); }
    static std::shared_ptr<BPathTree::BNode> root(const BPathTree& tree) {
        return tree.linkedWalk().root;
    }

    // Stacks of walks by hand, which pushAllChildren and isNodeAtEndOfParent use without a stack.
    static BPathTree::NodeStack& nodeStack(BPathTree& tree) { return tree.nodeStack; }
    static BPathTree::NodeStack& parentStack(BPathTree& tree) { return tree.parentStack; }
    static bool& flag(BPathTree& tree) { return tree.flag; }
};

class HuffmanPathTreePeer {
public:
    static const auto& boolTree(const HuffmanPathTree& set) { return set.boolTree; }
    static const auto& treeString(const HuffmanPathTree& set) { return set.treeString; }
    static BPathTree& pathTree(const HuffmanPathTree& set) { return *set.pathTree; }
    static auto pathTracks(const HuffmanPathTree& set) { return set.pathTracks(); }
    static auto partitionEnds(const HuffmanPathTree& set) { return set.partitionEnds(); }
    static auto folderTracks(const HuffmanPathTree& set) { return set.folderTracks(); }
    static auto maxFolderDepth(const HuffmanPathTree& set) { return set.maxFolderDepth; }
    static auto maxTrackLength(const HuffmanPathTree& set) { return set.maxTrackLength; }
    static auto maxCodeBytes(const HuffmanPathTree& set) { return set.maxCodeBytes; }
    static auto maxTrackKey(const HuffmanPathTree& set) { return set.maxTrackKey; }
    static auto iterationPosition(const HuffmanPathTree& set) { return set.iterationPosition; }
    static auto pathCount(const HuffmanPathTree& set) { return set.pathCount; }
    static const auto& frequencies(const HuffmanPathTree& set) { return set.frequencies; }
    static auto rootIndex(const HuffmanPathTree& set) { return set.rootIndex; }
    static const auto& nodes(const HuffmanPathTree& set) { return set.nodes; }
    static const auto& codes(const HuffmanPathTree& set) { return set.codes; }
    static const auto& parents(const HuffmanPathTree& set) { return set.parents; }
    static const auto& asyncFolders(const HuffmanPathTree& set) { return set.asyncFolders; }
    static const auto& asyncFiles(const HuffmanPathTree& set) { return set.asyncFiles; }
    static const auto& asyncCodedFolders(const HuffmanPathTree& set) {
        return set.asyncCodedFolders;
    }
    static const auto& asyncCodedFiles(const HuffmanPathTree& set) { return set.asyncCodedFiles; }
};

}  // namespace compressedpaths
