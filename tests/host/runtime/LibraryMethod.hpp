#pragma once
// LibraryMethod is a method of a library of the tests: a name, a signature and a function that does
// the work once the counts of inputs and outputs are right.

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/arrays/kxArray.hpp"
#include "host/kobj/COSMethodInfo.hpp"
#include "host/kobj/COSMethodSignature.hpp"

namespace counters {

/// What a method is called with.
struct Call {
    std::int32_t& outputCount;
    kxArray** outputs;
    std::int32_t inputCount;
    const kxArray* const* inputs;
};

class LibraryMethod : public kobj::COSMethodInfo {
public:
    using Body = void (*)(Call call);
    using Parameters = std::vector<kobj::COSParameter>;

    LibraryMethod(std::string name, Parameters inputs, Parameters outputs, Body body)
        : name_(std::move(name)),
          signature_(kobj::COSMethodSignature::createMethodSignature(std::move(inputs),
                                                                     std::move(outputs))),
          body_(body) {}

    const char* getMethodName() const override { return name_.c_str(); }
    const kobj::COSMethodSignature& getSignature() const override { return *signature_; }
    void call(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
              const kxArray* const* inputs) override;

private:
    std::string name_;
    std::unique_ptr<kobj::COSMethodSignature> signature_;
    Body body_;
};

}  // namespace counters
