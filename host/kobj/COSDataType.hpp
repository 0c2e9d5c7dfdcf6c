#pragma once
// COSDataType says what a value is.

#include <memory>
#include <string>

#include "host/Export.hpp"
#include "host/kobj/COSValue.hpp"

namespace kobj {

class COSDataType;
using COSDataTypePtr = std::shared_ptr<const COSDataType>;

class KORVEX_API COSDataType {
public:
    /// The type of what `value` holds.
    static COSDataTypePtr of(const COSValue& value);

    explicit COSDataType(std::string id);

    /// The name of the class of an array or object; empty for nothing.
    const std::string& getID() const noexcept { return id_; }

private:
    std::string id_;
};

}  // namespace kobj
