#include "binding/HuffmanPaths_GetNextPath.hpp"

#include "binding/InstanceAccess.hpp"
#include "binding/NameCells.hpp"
#include "host/matrix/Matrix.hpp"

namespace binding {

HuffmanPaths_GetNextPath::HuffmanPaths_GetNextPath()
    : HuffmanPathsMethodInfo({object()}, {{"cell", "path"}}) {}

void HuffmanPaths_GetNextPath::run(std::int32_t& /*outputCount*/, kxArray** outputs,
                                   std::int32_t /*inputCount*/, const kxArray* const* inputs) {
    compressedpaths::HuffmanPathTree& tree = pathTreeOf(inputs[0]);
    tree.visitNextPathFromBTree([&](const compressedpaths::Path& codedPath) {
        outputs[0] = matrix::to_korvex(toNameColumn(codedPath, tree));
    });
}

}  // namespace binding
