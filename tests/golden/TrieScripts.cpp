// Scripts of operations on numbered tries. What a record does with single nodes is done with those
// of a linked copy, which a trie makes whenever it is asked for one.

#include <algorithm>
#include <memory>

#include "compressedpaths/BPathTree.hpp"
#include "tests/golden/GoldenRecords.hpp"
#include "tests/golden/Throwing.hpp"
#include "tests/golden/TrieRows.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths::golden {
namespace {

using Node = std::shared_ptr<BPathTree::BNode>;

/// The nodes of a stack, bottom to top.
std::vector<Node> nodesOf(BPathTree::NodeStack stack) {
    std::vector<Node> nodes;
    for (; !stack.empty(); stack.pop()) nodes.push_back(stack.top());
    std::ranges::reverse(nodes);
    return nodes;
}

Texts keysOf(const BPathTree::NodeStack& stack) {
    Texts keys;
    for (const Node& node : nodesOf(stack)) keys.push_back(hexOf(node->key));
    return keys;
}

class TrieScript {
public:
    void create(Fields& step) { tries_[integerOf(step["tree"])] = std::make_unique<BPathTree>(); }
    void drop(Fields& step) {
        trie(step);
        tries_.erase(integerOf(step["tree"]));
    }
    void copy(Fields& step) {
        tries_[integerOf(step["tree"])] =
            std::make_unique<BPathTree>(*tries_.at(integerOf(step["from"])));
    }

    void addPath(Fields& step);
    void addBatch(Fields& step);
    void addKey(Fields& step);
    void find(Fields& step);
    void isLeaf(Fields& step);
    void traverse(Fields& step);
    void getPath(Fields& step);

    void reset(Fields& step) { trie(step).reset(); }
    void hasNext(Fields& step);
    void next(Fields& step);
    void iterationState(Fields& step);
    void atEnd(Fields& step);
    void pushChildren(Fields& step);

    void dump(Fields& step);
    void flatten(Fields& step);
    void rebuild(Fields& step);

private:
    BPathTree& trie(Fields& step) { return *tries_.at(integerOf(step["tree"])); }
    static Node nodeAt(const Node& root, const Json& track);
    static BPathTree::NodeStack stackOf(const Node& root, const Json& tracks);
    static void addToTrie(BPathTree& tree, const Json& track, const Bytes& key, bool isNew);

    std::map<std::uint64_t, std::unique_ptr<BPathTree>> tries_;
};

Node TrieScript::nodeAt(const Node& root, const Json& track) {
    Node node = root;
    for (const std::size_t position : trackOf(track)) node = node->children.at(position);
    return node;
}

BPathTree::NodeStack TrieScript::stackOf(const Node& root, const Json& tracks) {
    if (!tracks.IsArray()) throw UnreadableRecord("not a stack");
    BPathTree::NodeStack stack;
    for (const Json& track : tracks.GetArray()) stack.push(nodeAt(root, track));
    return stack;
}

void TrieScript::addPath(Fields& step) {
    Path components = pathOf(step["components"]);
    Track existing = step.orEmpty("existing_before", trackOf);
    EXPECT_EQ(trie(step).addPath(components, existing), flagOf(step["result"]));
    EXPECT_EQ(existing, trackOf(step["existing"]));
    EXPECT_EQ(hexOf(components), textsOf(step["components_after"]));
}

void TrieScript::addBatch(Fields& step) {
    Path folder = pathOf(step["folder"]);
    std::vector<Bytes> files = pathOf(step["files"]);
    Track indices = step.orEmpty("indices_before", trackOf);
    std::size_t prior = 0;
    EXPECT_EQ(trie(step).addPath(folder, files, indices, prior), flagOf(step["result"]));
    EXPECT_EQ(indices, trackOf(step["indices"]));
    EXPECT_EQ(prior, positionOf(step["prior"]));
    EXPECT_EQ(hexOf(folder), textsOf(step["folder_after"]));
    EXPECT_EQ(hexOf(files), textsOf(step["files_after"]));
}

void TrieScript::addKey(Fields& step) {
    BPathTree& tree = trie(step);
    const Node root = BPathTreePeer::root(tree);
    const Bytes given = bytesOf(step["key"]);
    Bytes key = given;
    const bool recordedExisted = flagOf(step["existed"]);
    bool existed = !recordedExisted;
    EXPECT_EQ(tree.addIfExistsAndFind(nodeAt(root, step["at"])->children, key, existed),
              integerOf(step["position"]));
    EXPECT_EQ(existed, recordedExisted);
    EXPECT_EQ(hexOf(key), textOf(step["key_after"]));
    addToTrie(tree, step["at"], given, !existed);
}

/// Adds a key below the node at a track to the trie itself, for the steps that follow.
void TrieScript::addToTrie(BPathTree& tree, const Json& track, const Bytes& key, bool isNew) {
    Path components;
    Track above = trackOf(track);
    if (!above.empty()) tree.traversePath(above, components);
    components.push_back(key);
    Track existing;
    EXPECT_NE(tree.addPath(components, existing), isNew);
    existing.resize(above.size());
    EXPECT_EQ(existing, above);
}

void TrieScript::find(Fields& step) {
    const BPathTree& tree = trie(step);
    const Node root = BPathTreePeer::root(tree);
    EXPECT_EQ(tree.findNode(bytesOf(step["key"]), nodeAt(root, step["at"])->children),
              positionOf(step["position"]));
}

void TrieScript::isLeaf(Fields& step) {
    const BPathTree& tree = trie(step);
    const Node root = BPathTreePeer::root(tree);
    EXPECT_EQ(tree.isLeaf(nodeAt(root, step["at"])), flagOf(step["result"]));
}

void TrieScript::traverse(Fields& step) {
    Path components = step.orEmpty("before", pathOf);
    const Track track = trackOf(step["track"]);
    BPathTree& tree = trie(step);
    EXPECT_EQ(thrownBy([&] { tree.traversePath(track, components); }), recordedThrow(step));
    EXPECT_EQ(hexOf(components), textsOf(step["after"]));
}

void TrieScript::getPath(Fields& step) {
    std::vector<Path> folders = step.orEmpty("folders_before", pathsOf);
    std::vector<Path> files = step.orEmpty("files_before", pathsOf);
    trie(step).getPath(folders, files, trackOf(step["entries"]), tracksOf(step["folder_tracks"]),
                       tracksOf(step["file_numbers"]));
    EXPECT_EQ(hexOf(folders), textListsOf(step["folders"]));
    EXPECT_EQ(hexOf(files), textListsOf(step["files"]));
}

void TrieScript::hasNext(Fields& step) {
    BPathTree& tree = trie(step);
    // Nodes that a step before pushed by hand are a walk of their own.
    const bool isByHand = !BPathTreePeer::nodeStack(tree).empty();
    EXPECT_EQ(isByHand || tree.hasNextPath(), flagOf(step["result"]));
}

void TrieScript::next(Fields& step) {
    Path path = step.orEmpty("before", pathOf);
    BPathTree& tree = trie(step);
    EXPECT_EQ(thrownBy([&] { tree.getNextPath(path); }), recordedThrow(step));
    EXPECT_EQ(hexOf(path), textsOf(step["path"]));
}

void TrieScript::iterationState(Fields& step) {
    const auto walk = BPathTreePeer::linkedWalk(trie(step));
    EXPECT_EQ(keysOf(walk.nodeStack), textsOf(step["node_stack"]));
    EXPECT_EQ(keysOf(walk.parentStack), textsOf(step["parent_stack"]));
    EXPECT_EQ(hexOf(walk.currentPath), textsOf(step["current_path"]));
}

void TrieScript::atEnd(Fields& step) {
    BPathTree& tree = trie(step);
    const auto walk = BPathTreePeer::linkedWalk(tree);
    const Node node = nodeAt(walk.root, step["node"]);
    const bool result = flagOf(step["result"]);
    const Json& stack = step["stack"];
    if (stack.IsNull()) {
        BPathTreePeer::parentStack(tree) = walk.parentStack;
        EXPECT_EQ(tree.isNodeAtEndOfParent(node), result);
    } else {
        EXPECT_EQ(tree.isNodeAtEndOfParent(node, stackOf(walk.root, stack)), result);
    }
}

void TrieScript::pushChildren(Fields& step) {
    BPathTree& tree = trie(step);
    const Node root = BPathTreePeer::root(tree);
    const Node node = nodeAt(root, step["node"]);
    const Json& tracks = step["stack"];
    const Json& tracksAfter = step["stack_after"];
    if (tracks.IsNull()) {
        tree.pushAllChildren(node);
        EXPECT_TRUE(tracksAfter.IsNull());
        EXPECT_EQ(keysOf(BPathTreePeer::nodeStack(tree)), textsOf(step["keys_after"]));
    } else {
        BPathTree::NodeStack stack = stackOf(root, tracks);
        tree.pushAllChildren(node, stack);
        EXPECT_EQ(nodesOf(stack), nodesOf(stackOf(root, tracksAfter)));  // the very same nodes
        EXPECT_EQ(keysOf(stack), textsOf(step["keys_after"]));
    }
}

void TrieScript::dump(Fields& step) {
    EXPECT_EQ(rowsOf(trie(step)), recordedRows(step["rows"]));
}

void TrieScript::flatten(Fields& step) {
    Bytes structure = step.orEmpty("structure_before", bytesOf);
    std::vector<Bytes> codes = step.orEmpty("codes_before", pathOf);
    EXPECT_EQ(trie(step).serialize(structure, codes), integerOf(step["max_fan_out"]));
    EXPECT_EQ(hexOf(structure), textOf(step["structure"]));
    EXPECT_EQ(hexOf(codes), textsOf(step["codes"]));
}

void TrieScript::rebuild(Fields& step) {
    Bytes structure = bytesOf(step["structure"]);
    std::vector<Bytes> codes = pathOf(step["codes"]);
    BPathTree& tree = trie(step);
    const auto expected = recordedThrow(step);
    std::size_t leaves = 0;
    EXPECT_EQ(thrownBy([&] { leaves = tree.deserialize(structure, codes); }), expected);
    if (!expected) {
        EXPECT_EQ(leaves, integerOf(step["leaves"]));
    }
    EXPECT_EQ(hexOf(codes), textsOf(step["codes_after"]));
}

void runTrieScript(Fields& record) {
    runSteps<TrieScript>(record["ops"], {{"new", &TrieScript::create},
                                         {"drop", &TrieScript::drop},
                                         {"copy", &TrieScript::copy},
                                         {"add_path", &TrieScript::addPath},
                                         {"add_batch", &TrieScript::addBatch},
                                         {"add_key", &TrieScript::addKey},
                                         {"find", &TrieScript::find},
                                         {"is_leaf", &TrieScript::isLeaf},
                                         {"traverse", &TrieScript::traverse},
                                         {"get_path", &TrieScript::getPath},
                                         {"reset", &TrieScript::reset},
                                         {"has_next", &TrieScript::hasNext},
                                         {"next", &TrieScript::next},
                                         {"iteration_state", &TrieScript::iterationState},
                                         {"at_end", &TrieScript::atEnd},
                                         {"push_children", &TrieScript::pushChildren},
                                         {"dump", &TrieScript::dump},
                                         {"flatten", &TrieScript::flatten},
                                         {"rebuild", &TrieScript::rebuild}});
}

}  // namespace

RecordKinds trieKinds() {
    return {{"trie_ops", runTrieScript},
            {"trie_serialize", runTrieScript},
            {"trie_deserialize", runTrieScript}};
}

}  // namespace compressedpaths::golden
