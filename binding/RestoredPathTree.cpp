#include "binding/RestoredPathTree.hpp"

#include <string>
#include <vector>

#include "host/matrix/Matrix.hpp"

namespace binding {

void restorePathTree(const kxArray* treeString, const kxArray* pathTree,
                     compressedpaths::HuffmanPathTree& tree) {
    if (kxGetNumberOfElements(treeString) == 0) return;

    const std::u16string characters = matrix::get_ustring(treeString);
    std::vector<std::uint8_t> bytes = matrix::get_bytes(pathTree);
    tree.deserialize(bytes, true);
    tree.inflateHuffman(characters);  // needs the shape, which the bytes hold
}

}  // namespace binding
