#pragma once

#include "compressedpaths/HuffmanPathTree.hpp"
#include "host/arrays/kxArray.hpp"

namespace binding {

/// Fills a newly constructed path set from what "serialize" returned. Without a tree string,
/// nothing is read and the set stays empty. Throws the host's wrongClass and what loading and
/// inflating throw; what was read up to there then stays.
void restorePathTree(const kxArray* treeString, const kxArray* pathTree,
                     compressedpaths::HuffmanPathTree& tree);

}  // namespace binding
