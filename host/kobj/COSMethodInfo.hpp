#pragma once
// COSMethodInfo is what a library implements to offer a method.

#include <cstdint>

#include "host/Export.hpp"
#include "host/arrays/kxArray.hpp"
#include "host/kobj/COSMethodSignature.hpp"

namespace kobj {

class KORVEX_API COSMethodInfo {
public:
    COSMethodInfo();
    COSMethodInfo(const COSMethodInfo&) = delete;
    COSMethodInfo& operator=(const COSMethodInfo&) = delete;
    virtual ~COSMethodInfo();

    virtual const char* getMethodName() const = 0;
    virtual const COSMethodSignature& getSignature() const = 0;

    /// Runs the method. `outputCount` is how many outputs the caller wants; the method may change
    /// it to how many there are. `outputs` has a slot for each declared output, at least one, each
    /// null save one: a constructor finds the new object in the first. Arrays that the method puts
    /// there belong to the caller, also after an exception. `inputs` stay the caller's; of a method
    /// that is no constructor, the first is the object.
    virtual void call(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
                      const kxArray* const* inputs) = 0;
};

}  // namespace kobj
