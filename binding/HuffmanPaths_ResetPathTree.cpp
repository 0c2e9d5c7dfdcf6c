#include "binding/HuffmanPaths_ResetPathTree.hpp"

#include "binding/InstanceAccess.hpp"

namespace binding {

HuffmanPaths_ResetPathTree::HuffmanPaths_ResetPathTree() : HuffmanPathsMethodInfo({object()}, {}) {}

void HuffmanPaths_ResetPathTree::run(std::int32_t& /*outputCount*/, kxArray** /*outputs*/,
                                     std::int32_t /*inputCount*/, const kxArray* const* inputs) {
    pathTreeOf(inputs[0]).resetPathsToBTree();
}

}  // namespace binding
