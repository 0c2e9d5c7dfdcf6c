// Any structure bytes and keys: a trie that can be rebuilt flattens to what it was rebuilt from and
// gives as many paths as it has leaves.

#include "compressedpaths/BPathTree.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"

using namespace compressedpaths;
using fuzzing::InputScript;
using fuzzing::require;

namespace {

/// Paths that are walked at most: a deep trie has long paths, all of them together too long.
constexpr std::size_t kMaxWalked = 200;

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
    return 0;
}
