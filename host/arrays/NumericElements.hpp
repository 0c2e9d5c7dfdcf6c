#pragma once
// Looking at the elements of an array whose class is known only when the program runs.

#include "host/arrays/ArrayLayout.hpp"

namespace arrays {

/// The result of `look` for the elements of a numeric, logical or character array, as a std::span
/// of their type. Throws wrongClass.
template <class Look>
auto lookAtNumbers(const kxArray* array, Look look) {
    const auto elements = [array]<class T>(T) {
        return std::span(static_cast<const T*>(array->start()), array->elementCount);
    };
    switch (array->elementClass) {
        case kxClass::kDouble:
            return look(elements(double{}));
        case kxClass::kInt8:
            return look(elements(std::int8_t{}));
        case kxClass::kUint8:
            return look(elements(std::uint8_t{}));
        case kxClass::kInt16:
            return look(elements(std::int16_t{}));
        case kxClass::kUint16:
            return look(elements(std::uint16_t{}));
        case kxClass::kInt32:
            return look(elements(std::int32_t{}));
        case kxClass::kUint32:
            return look(elements(std::uint32_t{}));
        case kxClass::kInt64:
            return look(elements(std::int64_t{}));
        case kxClass::kUint64:
            return look(elements(std::uint64_t{}));
        case kxClass::kLogical:
            return look(elements(bool{}));
        case kxClass::kCharacter:
            return look(elements(char16_t{}));
        case kxClass::kCell:
        case kxClass::kStructure:
        case kxClass::kObject:
            break;
    }
    refuseClass("numeric", array);
}

}  // namespace arrays
