#pragma once
// COSValue is a value on its way through the host: an array, or nothing. Copies share the array.

#include <memory>
#include <utility>

#include "host/arrays/kxArray.hpp"

namespace kobj {

class COSValue {
public:
    COSValue() = default;
    explicit COSValue(kxArrayPtr array) : array_(std::move(array)) {}

    /// Null if there is nothing. It lives as long as one of the copies of this value.
    const kxArray* array() const noexcept { return array_.get(); }

private:
    std::shared_ptr<const kxArray> array_;
};

}  // namespace kobj
