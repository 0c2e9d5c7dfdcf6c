#include "binding/HuffmanPaths_HasNextPath.hpp"

#include "binding/InstanceAccess.hpp"
#include "host/matrix/Matrix.hpp"
#include "host/matrix/MatrixErrors.hpp"

namespace binding {
namespace {

constexpr int kInvalidOutputCount = 3;  // the host's number of that error

kxArrayPtr logicalScalar(bool value) {
    kxArrayPtr scalar = matrix::detail::do_create_uninitnumeric(1, 1, kxClass::kLogical);
    kxGetData<bool>(scalar.get())[0] = value;
    return scalar;
}

}  // namespace

HuffmanPaths_HasNextPath::HuffmanPaths_HasNextPath()
    : HuffmanPathsMethodInfo({object()}, {{"logical scalar", ""}}) {}

void HuffmanPaths_HasNextPath::run(std::int32_t& outputCount, kxArray** outputs,
                                   std::int32_t /*inputCount*/, const kxArray* const* inputs) {
    if (outputCount < 0) matrix::detail::error_message(kInvalidOutputCount);
    outputCount = 1;  // the answer is delivered to callers that do not ask for it, too

    const bool hasNext = pathTreeOf(inputs[0]).hasNextPathFromBTree();
    outputs[0] = matrix::to_korvex(logicalScalar(hasNext));
}

}  // namespace binding
