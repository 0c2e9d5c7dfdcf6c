// The trie as two parallel lists in pre-order: a structure byte and a key for each node below the
// root. docs/format.md draws them.

#include <algorithm>
#include <utility>

#include "compressedpaths/BPathTree.hpp"
#include "compressedpaths/SavedForm.hpp"
#include "compressedpaths/store/TrieBuilder.hpp"
#include "compressedpaths/store/TrieOrder.hpp"

namespace compressedpaths {

std::size_t BPathTree::serialize(Bytes& structure, std::vector<Bytes>& codes) {
    Bytes types;
    std::vector<Bytes> keys;
    std::size_t maxFanOut = arena_->childCount(PathArena::kRoot);
    forEachNode(*arena_,
                [&](const PathArena::Cursor& child, std::uint32_t childCount, bool isLast) {
                    types.push_back(structureByte(childCount, isLast));
                    keys.push_back(keyOf(arena_->nameOf(child)));
                    maxFanOut = std::max<std::size_t>(maxFanOut, childCount);
                });
    structure.reserve(structure.size() + types.size());
    codes.reserve(codes.size() + keys.size());
    structure.insert(structure.end(), types.begin(), types.end());
    std::move(keys.begin(), keys.end(), std::back_inserter(codes));
    return maxFanOut;
}

std::size_t BPathTree::deserialize(Bytes& structure, std::vector<Bytes>& codes) {
    TrieBuilder builder(structure, codes.size());
    auto arena = builder.build(TrieBuilder::Keys(codes));
    BPathTree built(std::move(arena));
    arena_.swap(built.arena_);
    frames_.clear();
    parents_.clear();
    current_.clear();
    itemsOf_.clear();
    for (std::size_t node = 0; node < builder.nodeCount(); ++node) Bytes().swap(codes[node]);
    if (builder.error() != TrieBuilder::Error::kNone) TrieBuilder::raise(builder.error());
    return builder.leafCount();
}

}  // namespace compressedpaths
