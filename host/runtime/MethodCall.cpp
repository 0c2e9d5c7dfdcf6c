#include "host/runtime/MethodCall.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "host/foundation/Exceptions.hpp"
#include "host/kobj/COSTypeRepository.hpp"
#include "host/kobj/ObjectErrors.hpp"
#include "host/runtime/Error.hpp"

namespace korvex {

using foundation::core::except::Exception;
using kobj::COSMethodSignature;
using kobj::COSParameter;

namespace {

using ArrayPointers = std::vector<kxArrayPtr>;

/// The output slots of a call as the method sees them, with whatever it puts there.
class OutputSlots {
public:
    OutputSlots(std::size_t count, Array first) : slots_(count) { slots_[0] = first.release(); }
    OutputSlots(const OutputSlots&) = delete;
    OutputSlots& operator=(const OutputSlots&) = delete;
    ~OutputSlots() { std::for_each(slots_.begin(), slots_.end(), kxDestroyArray); }

    kxArray** data() noexcept { return slots_.data(); }
    std::size_t size() const noexcept { return slots_.size(); }
    const kxArray* operator[](std::size_t index) const noexcept { return slots_[index]; }

    std::size_t leadingCount() const noexcept {
        const auto end = std::find(slots_.begin(), slots_.end(), nullptr);
        return static_cast<std::size_t>(end - slots_.begin());
    }

    Array take(std::size_t index) noexcept { return Array(std::exchange(slots_[index], nullptr)); }

private:
    std::vector<kxArray*> slots_;
};

std::size_t notNegative(std::int32_t count) {
    return static_cast<std::size_t>(std::max(count, std::int32_t{0}));
}

bool countsFit(const COSMethodSignature& signature, std::int32_t outputCount,
               std::size_t inputCount) {
    return outputCount >= 0 && notNegative(outputCount) <= signature.outputs().size() &&
           inputCount >= signature.requiredInputCount() && inputCount <= signature.inputs().size();
}

std::string nameOrPosition(const COSParameter& parameter, std::size_t index) {
    return parameter.name.empty() ? std::to_string(index + 1) : parameter.name;
}

/// As COSTypeRepository::convertBorrowed; what does not fit is reported as `Wrong`.
template <class Wrong>
kxArrayPtr convert(const kxArray* array, const kobj::COSMethodInfo& method,
                   const COSParameter& parameter, std::size_t index) {
    try {
        return kobj::COSTypeRepository::convertBorrowed(array, parameter.type);
    } catch (const Exception<KORVEX::kobj::cannotConvert>& error) {
        throw Exception<Wrong>(std::string(method.getMethodName()),
                               nameOrPosition(parameter, index), parameter.type,
                               error.arguments().at(1));
    }
}

/// Puts what inputs convert to in their place. The result owns it.
ArrayPointers convertInputs(const kobj::COSMethodInfo& method, Inputs& inputs) {
    const auto& declared = method.getSignature().inputs();
    ArrayPointers converted;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        kxArrayPtr array = convert<KORVEX::runtime::wrongInput>(inputs[i], method, declared[i], i);
        if (array == nullptr) continue;
        inputs[i] = array.get();
        converted.push_back(std::move(array));
    }
    return converted;
}

void requireOutputs(const kobj::COSMethodInfo& method, const OutputSlots& slots,
                    std::size_t count) {
    const auto& declared = method.getSignature().outputs();
    for (std::size_t i = 0; i < count; ++i) {
        const bool isSet = i < slots.size() && slots[i] != nullptr;
        const bool isOptional = i < declared.size() && declared[i].isOptional;
        if (isSet || isOptional) continue;
        throw Exception<KORVEX::runtime::missingOutput>(std::string(method.getMethodName()),
                                                        std::to_string(i + 1));
    }
}

void takeOutputs(const kobj::COSMethodInfo& method, OutputSlots& slots,
                 std::vector<Array>& outputs) {
    const auto& declared = method.getSignature().outputs();
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        outputs[i] = slots.take(i);
        if (!outputs[i] || i >= declared.size()) continue;
        kxArrayPtr converted =
            convert<KORVEX::runtime::wrongOutput>(outputs[i].get(), method, declared[i], i);
        if (converted != nullptr) outputs[i] = Array(std::move(converted));
    }
}

}  // namespace

std::vector<Array> callMethod(kobj::COSMethodInfo& method, std::int32_t outputCount,
                              const Inputs& inputs, Array firstOutput) {
    const COSMethodSignature& signature = method.getSignature();
    Inputs passed = inputs;
    const ArrayPointers converted = countsFit(signature, outputCount, inputs.size())
                                        ? convertInputs(method, passed)
                                        : ArrayPointers();
    OutputSlots slots(std::max(signature.outputs().size(), std::size_t{1}), std::move(firstOutput));
    // Beforehand: what the method has done must not be lost for lack of memory afterwards.
    std::vector<Array> outputs(slots.size());

    std::int32_t givenCount = outputCount;
    method.call(givenCount, slots.data(), static_cast<std::int32_t>(passed.size()), passed.data());

    requireOutputs(method, slots, notNegative(std::max(outputCount, givenCount)));
    const std::size_t announced = std::min(notNegative(givenCount), slots.size());
    outputs.resize(std::max(announced, slots.leadingCount()));
    takeOutputs(method, slots, outputs);
    return outputs;
}

}  // namespace korvex
