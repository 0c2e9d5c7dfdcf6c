#include "binding/HuffmanPathsMethodInfo.hpp"

#include <utility>

#include "binding/ClassName.hpp"
#include "host/matrix/MatrixErrors.hpp"

namespace binding {

HuffmanPathsMethodInfo::HuffmanPathsMethodInfo(std::vector<kobj::COSParameter> inputs,
                                               std::vector<kobj::COSParameter> outputs)
    : signature_(
          kobj::COSMethodSignature::createMethodSignature(std::move(inputs), std::move(outputs))) {}

kobj::COSParameter HuffmanPathsMethodInfo::object() {
    return {kFullClassName, "object"};
}

void HuffmanPathsMethodInfo::call(std::int32_t& outputCount, kxArray** outputs,
                                  std::int32_t inputCount, const kxArray* const* inputs) {
    if (std::cmp_greater(outputCount, signature_->outputs().size())) matrix::detail::error_maxlhs();
    if (std::cmp_greater(inputCount, signature_->inputs().size())) matrix::detail::error_maxrhs();
    if (std::cmp_less(inputCount, signature_->requiredInputCount())) matrix::detail::error_minrhs();

    run(outputCount, outputs, inputCount, inputs);
}

}  // namespace binding
