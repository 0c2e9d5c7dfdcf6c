#include "binding/HuffmanPaths_Serialize.hpp"

#include <algorithm>
#include <utility>

#include "binding/InstanceAccess.hpp"
#include "host/matrix/Matrix.hpp"

namespace binding {
namespace {

kxArrayPtr toByteColumn(const std::vector<std::uint8_t>& bytes) {
    kxArrayPtr column = matrix::detail::do_create_uninitnumeric(bytes.size(), 1, kxClass::kUint8);
    std::ranges::copy(bytes, kxGetData<std::uint8_t>(column.get()).begin());
    return column;
}

}  // namespace

HuffmanPaths_Serialize::HuffmanPaths_Serialize()
    : HuffmanPathsMethodInfo({object()}, {{"char", "uniqueChars"}, {"any", "PathTree", true}}) {}

void HuffmanPaths_Serialize::run(std::int32_t& outputCount, kxArray** outputs,
                                 std::int32_t /*inputCount*/, const kxArray* const* inputs) {
    compressedpaths::HuffmanPathTree& tree = pathTreeOf(inputs[0]);
    kxArrayPtr treeString = matrix::create(tree.getTreeString());
    if (outputCount == 2) {
        std::vector<std::uint8_t> bytes;
        tree.serialize(bytes, true);
        outputs[1] = matrix::to_korvex(toByteColumn(bytes));
    }
    outputs[0] = matrix::to_korvex(std::move(treeString));
}

}  // namespace binding
