// Any structure bytes and keys: a trie that can be rebuilt flattens to what it was rebuilt from,
// gives as many paths as it has leaves, and takes more paths at the places where a search through
// linked nodes would put them.

#include "compressedpaths/BPathTree.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "tests/support/Peers.hpp"

using namespace compressedpaths;
using fuzzing::InputScript;
using fuzzing::require;

namespace {

/// Paths that are walked at most: a deep trie has long paths, all of them together too long.
constexpr std::size_t kMaxWalked = 200;
constexpr std::size_t kMaxAdded = 20;

void requireEveryPath(BPathTree& tree, std::size_t leafCount) {
    tree.reset();
    Path path;
    std::size_t walked = 0;
    for (; walked < kMaxWalked && tree.hasNextPath(); ++walked) {
        tree.getNextPath(path);
        require(!path.empty(), "a path has components");
    }
    require(walked == std::min(leafCount, kMaxWalked), "the walk gives every path once");
}

void requireSameFlatForm(BPathTree& tree, const Bytes& structure, const std::vector<Bytes>& keys) {
    Bytes flatStructure;
    std::vector<Bytes> flatKeys;
    tree.serialize(flatStructure, flatKeys);
    require(flatStructure.size() == flatKeys.size(), "a key for each structure byte");
    require(flatStructure.size() <= structure.size() && flatKeys.size() <= keys.size() &&
                std::equal(flatStructure.begin(), flatStructure.end(), structure.begin()) &&
                std::equal(flatKeys.begin(), flatKeys.end(), keys.begin()),
            "a trie flattens to what it was rebuilt from");
}

/// The positions of the leading components that are there.
std::vector<std::size_t> positionsOf(const BPathTree& tree, const Path& path) {
    std::vector<std::size_t> positions;
    auto node = BPathTreePeer::root(tree);
    for (const Bytes& key : path) {
        const std::size_t position = tree.findNode(key, node->children);
        if (position >= node->children.size()) break;
        positions.push_back(position);
        node = node->children[position];
    }
    return positions;
}

/// Adds paths of keys that the trie has, so that files become folders and equal keys are met.
void requireAddsWhereASearchLeads(BPathTree& tree, const std::vector<Bytes>& keys,
                                  InputScript choices) {
    for (std::size_t added = 0; added < kMaxAdded && !choices.isAtEnd(); ++added) {
        Path path(1 + choices.byte() % 4);
        for (Bytes& key : path) key = keys[choices.byte() % keys.size()];
        const std::vector<std::size_t> expected = positionsOf(tree, path);
        Path given = path;
        std::vector<std::size_t> existing;
        const bool existed = tree.addPath(given, existing);
        require(existing == expected, "a path is added where a search leads");
        require(existed == (expected.size() == path.size()), "a path is there or it is not");
        require(positionsOf(tree, path).size() == path.size(), "what was added is there");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    Bytes structure = script.bytes(script.integer(2));
    std::vector<Bytes> keys;
    while (!script.isAtEnd()) keys.push_back(script.bytes(script.byte()));

    const Bytes givenStructure = structure;
    const std::vector<Bytes> givenKeys = keys;
    BPathTree tree;
    std::size_t leafCount = 0;
    if (!fuzzing::succeeds<UnknownNodeTypeException, IncompleteTrieException>(
            [&] { leafCount = tree.deserialize(structure, keys); }))
        return 0;

    requireSameFlatForm(tree, givenStructure, givenKeys);
    requireEveryPath(tree, leafCount);
    BPathTree copy(tree);
    requireEveryPath(copy, leafCount);
    if (!givenKeys.empty()) requireAddsWhereASearchLeads(copy, givenKeys, InputScript(data, size));
    return 0;
}
