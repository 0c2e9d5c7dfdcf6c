#pragma once
// COSTypeRepository knows the types that methods and properties declare, and how values get there:
//
//     COSDataTypePtr type = COSDataType::of(value);
//     COSValue number = COSTypeRepository::getConversion(type->getID(), "double").apply(value);
//
// A type is "any" or the name of a class: "double", "int8" … "uint64", "logical", "char", "cell",
// "struct", or the full name of a class of objects. " vector" after it asks for at most one
// dimension other than 1, " scalar" for one element. Numbers, logical values and characters convert
// to "double"; otherwise a type takes only its own class. Values that need no change are shared,
// whatever their size.
//
// Threads: safe for concurrent use.

#include <string>
#include <string_view>

#include "host/Export.hpp"
#include "host/kobj/COSValue.hpp"

namespace kobj {

class KORVEX_API COSConversion {
public:
    explicit COSConversion(std::string_view targetType) : targetType_(targetType) {}

    /// Throws cannotConvert if class or shape of the value do not fit. Nothing stays nothing.
    COSValue apply(const COSValue& value) const;

private:
    std::string targetType_;
};

class KORVEX_API COSTypeRepository {
public:
    /// From the type with this id to a declared type. Throws cannotConvert.
    static COSConversion getConversion(std::string_view sourceId, std::string_view targetType);

    /// What an array converts to that stays where it is: null if it is of the declared type
    /// already. Throws cannotConvert, also for null. O(1) unless elements have to change.
    static kxArrayPtr convertBorrowed(const kxArray* array, std::string_view targetType);
};

}  // namespace kobj
