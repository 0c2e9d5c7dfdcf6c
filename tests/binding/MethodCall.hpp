#pragma once
// MethodCall calls a method of the class at the boundary between host and library, with nothing
// checked, converted or caught in between:
//
//     MethodCall call("getPaths", 1);
//     call.run({object.get(), numbers.get()});
//     call.outputs()[1];  // null if the method has not set it
//
// The outputs are freed with the call.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/foundation/Exceptions.hpp"
#include "host/kobj/COSClass.hpp"
#include "tests/binding/BindingTest.hpp"

namespace binding_tests {

inline kobj::COSClass& boundClass() {
    kobj::COSClass* const found = kobj::COSClass::getClass(kClassName);
    if (found == nullptr) throw std::runtime_error("the class is not registered");
    return *found;
}

inline kobj::COSInterfacePtr newObject() {
    return std::make_shared<kobj::COSInterface>(boundClass());
}

class MethodCall {
public:
    MethodCall(std::string_view method, std::int32_t outputsWanted)
        : method_(boundClass().getMethod(method)),
          outputCount_(outputsWanted),
          outputs_(std::max<std::size_t>(method_.getSignature().outputs().size(), 1)) {}
    MethodCall(const MethodCall&) = delete;
    MethodCall& operator=(const MethodCall&) = delete;
    ~MethodCall() { std::for_each(outputs_.begin(), outputs_.end(), kxDestroyArray); }

    void run(const std::vector<const kxArray*>& inputs) {
        method_.call(outputCount_, outputs_.data(), static_cast<std::int32_t>(inputs.size()),
                     inputs.data());
    }

    /// As many inputs and outputs as that, but none of them is there.
    void runOnNothing(std::int32_t inputCount) {
        method_.call(outputCount_, nullptr, inputCount, nullptr);
    }

    /// As many as wanted, or what the method has made of it.
    std::int32_t outputCount() const noexcept { return outputCount_; }
    const std::vector<kxArray*>& outputs() const noexcept { return outputs_; }

    /// Puts an array, which is taken over, where the method finds it.
    void setOutput(std::size_t index, kxArray* array) { outputs_.at(index) = array; }

private:
    kobj::COSMethodInfo& method_;
    std::int32_t outputCount_;
    std::vector<kxArray*> outputs_;
};

/// Fails the test unless `call` ends with this error at the boundary.
template <class Call>
void expectHostError(const std::string& identifier, const std::vector<std::string>& arguments,
                     Call call) {
    try {
        call();
        ADD_FAILURE() << "no error " << identifier;
    } catch (const foundation::core::except::HostError& error) {
        EXPECT_EQ(error.identifier(), identifier);
        EXPECT_EQ(error.arguments(), arguments);
    }
}

}  // namespace binding_tests
