#pragma once
// HuffmanPathsMethodInfo is what the methods of the class have in common: a signature, and that the
// numbers of outputs and inputs are checked against it before anything else.

#include <cstdint>
#include <memory>
#include <vector>

#include "binding/HostStorage.hpp"
#include "host/kobj/COSMethodInfo.hpp"

namespace binding {

class HuffmanPathsMethodInfo : public kobj::COSMethodInfo, public HostStorage {
public:
    const kobj::COSMethodSignature& getSignature() const final { return *signature_; }

    /// Throws tooManyOutputs, tooManyInputs or notEnoughInputs, in this order of checks, then what
    /// the method throws; a refused call has changed nothing.
    void call(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
              const kxArray* const* inputs) final;

protected:
    HuffmanPathsMethodInfo(std::vector<kobj::COSParameter> inputs,
                           std::vector<kobj::COSParameter> outputs);

    /// The declaration of the object that a method is called on.
    static kobj::COSParameter object();

private:
    virtual void run(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
                     const kxArray* const* inputs) = 0;

    std::unique_ptr<kobj::COSMethodSignature> signature_;
};

}  // namespace binding
