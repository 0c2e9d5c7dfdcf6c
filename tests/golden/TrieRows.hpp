#pragma once
// A whole trie in pre-order, as records write it: a row of level and key for each node below the
// root; the root's children are at level 1.

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "compressedpaths/BPathTree.hpp"
#include "tests/golden/RecordFields.hpp"

namespace compressedpaths::golden {

using TrieRows = std::vector<std::pair<std::size_t, std::string>>;  // level, key

TrieRows rowsOf(const BPathTree& tree);
TrieRows recordedRows(const Json& rows);

}  // namespace compressedpaths::golden
