#include "host/kobj/COSMethodSignature.hpp"

#include <algorithm>
#include <cassert>
#include <utility>

#include "host/foundation/LiveObjects.hpp"

namespace kobj {

using foundation::core::LiveObjects;

namespace {

bool isRequired(const COSParameter& parameter) noexcept {
    return !parameter.isOptional;
}

}  // namespace

std::unique_ptr<COSMethodSignature> COSMethodSignature::createMethodSignature(
    std::vector<COSParameter> inputs, std::vector<COSParameter> outputs) {
    assert(std::is_partitioned(inputs.begin(), inputs.end(), isRequired));
    assert(std::is_partitioned(outputs.begin(), outputs.end(), isRequired));
    return std::unique_ptr<COSMethodSignature>(
        new COSMethodSignature(std::move(inputs), std::move(outputs)));
}

COSMethodSignature::~COSMethodSignature() {
    foundation::core::countFreed(&LiveObjects::methodSignatures);
}

std::size_t COSMethodSignature::requiredInputCount() const noexcept {
    return static_cast<std::size_t>(std::count_if(inputs_.begin(), inputs_.end(), isRequired));
}

COSMethodSignature::COSMethodSignature(std::vector<COSParameter> inputs,
                                       std::vector<COSParameter> outputs)
    : inputs_(std::move(inputs)), outputs_(std::move(outputs)) {
    foundation::core::countMade(&LiveObjects::methodSignatures);
}

}  // namespace kobj
