#pragma once
// COSMethodSignature declares the types and names of a method's inputs and outputs.

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "host/Export.hpp"

namespace kobj {

/// One declared input or output. COSTypeRepository.hpp lists the types.
struct COSParameter {
    std::string type;
    std::string name;  // may be empty
    bool isOptional = false;
};

class KORVEX_API COSMethodSignature {
public:
    /// Optional parameters stand after the others.
    static std::unique_ptr<COSMethodSignature> createMethodSignature(
        std::vector<COSParameter> inputs, std::vector<COSParameter> outputs);

    COSMethodSignature(const COSMethodSignature&) = delete;
    COSMethodSignature& operator=(const COSMethodSignature&) = delete;
    ~COSMethodSignature();

    const std::vector<COSParameter>& inputs() const noexcept { return inputs_; }
    const std::vector<COSParameter>& outputs() const noexcept { return outputs_; }
    /// Inputs that are not optional.
    std::size_t requiredInputCount() const noexcept;

private:
    COSMethodSignature(std::vector<COSParameter> inputs, std::vector<COSParameter> outputs);

    std::vector<COSParameter> inputs_;
    std::vector<COSParameter> outputs_;
};

}  // namespace kobj
