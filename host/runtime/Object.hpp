#pragma once
// Object is an object of a class of some library, to be called by the names of its methods and
// properties. Session.hpp shows it in use.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/Export.hpp"
#include "host/kobj/COSInterface.hpp"
#include "host/runtime/Arrays.hpp"

namespace korvex {

using Inputs = std::vector<const kxArray*>;

/// An object of a class; copies are the same object.
class KORVEX_API Object {
public:
    explicit Object(kobj::COSInterfacePtr object);

    /// Calls a method for `outputCount` outputs; the result has as many as the method says that
    /// there are, which can be more than were wanted. An optional output that the method leaves out
    /// is an empty Array.
    template <class... Arrays>
    std::vector<Array> call(std::string_view method, std::int32_t outputCount,
                            const Arrays&... inputs) {
        return callWith(method, outputCount, Inputs{inputs.get()...});
    }
    std::vector<Array> callWith(std::string_view method, std::int32_t outputCount,
                                const Inputs& inputs);

    /// A copy of the property's value.
    Array get(std::string_view property) const;
    void set(std::string_view property, const Array& value);

    /// What is to be stored for the object: what its class saves by itself, else a structure of the
    /// outputs of its method "serialize" under these names.
    Array save(const std::vector<std::string>& fieldNames);

    /// An object array of 1 by 1, to pass this object on.
    Array toArray() const;

private:
    kobj::COSInterfacePtr object_;
};

}  // namespace korvex
