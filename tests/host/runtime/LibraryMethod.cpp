#include "tests/host/runtime/LibraryMethod.hpp"

#include "host/matrix/MatrixErrors.hpp"

namespace counters {

void LibraryMethod::call(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
                         const kxArray* const* inputs) {
    const auto count = static_cast<std::size_t>(inputCount);
    if (outputCount < 0) matrix::detail::error_message(3);
    if (static_cast<std::size_t>(outputCount) > signature_->outputs().size()) {
        matrix::detail::error_maxlhs();
    }
    if (count > signature_->inputs().size()) matrix::detail::error_maxrhs();
    if (count < signature_->requiredInputCount()) matrix::detail::error_minrhs();
    body_({outputCount, outputs, inputCount, inputs});
}

}  // namespace counters
