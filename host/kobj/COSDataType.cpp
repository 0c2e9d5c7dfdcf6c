#include "host/kobj/COSDataType.hpp"

#include <utility>

namespace kobj {

COSDataTypePtr COSDataType::of(const COSValue& value) {
    return std::make_shared<const COSDataType>(
        value.array() == nullptr ? std::string() : kxGetClassName(value.array()));
}

COSDataType::COSDataType(std::string id) : id_(std::move(id)) {}

}  // namespace kobj
