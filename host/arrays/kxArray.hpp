#pragma once
// kxArray is the host's only kind of value: elements of one class in any number of dimensions, the
// first dimension running fastest (column order). Element positions count from 0.
//
//     kxArrayPtr names(kxCreateCell({2, 1}));
//     kxReplaceCell(names.get(), 0, kxCreateCharacters(u"a.txt"));  // the cell owns the row now
//     kxGetCharacters(kxGetCell(names.get(), 0));                    // u"a.txt"
//
// Who frees: what a function creates belongs to the caller, who passes it to kxDestroyArray or to a
// function that says it takes it over; what a function gets as `const kxArray*` stays where it
// was, and what it returns as `const kxArray*` belongs to the array it came from. A taken over
// array is freed even if the function throws; only an array that was to be put into itself stays
// as it is. Putting an array into one that it holds, reached by a pointer kept from before, is a
// circle that nothing looks for.
//
// No function is to be given null for an array, save where it says what null means.
//
// An array without dimensions has no elements; a cell or field in which nothing has been put reads
// as a double array of 0 by 0.
//
// Wrong use is a typed error: see ArrayErrors.hpp. Lack of memory is
// foundation::core::except::bad_alloc. An array without fields is one block of memory.
//
// Threads: an array belongs to one thread at a time; one that nobody changes can be read by many.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/Export.hpp"

struct kxArray;

enum class kxClass : std::uint8_t {
    kDouble,
    kInt8,
    kUint8,
    kInt16,
    kUint16,
    kInt32,
    kUint32,
    kInt64,
    kUint64,
    kLogical,    // one byte an element, 0 or 1
    kCharacter,  // one UTF-16 code unit an element
    kCell,       // any array an element
    kStructure,  // an array for each element and field
    kObject,     // objects, or a structure that belongs to a class
};

using kxDimensions = std::vector<std::size_t>;

/// Base of what an object array holds; arrays share it and never look into it.
class KORVEX_API kxObject {
public:
    kxObject() = default;
    kxObject(const kxObject&) = delete;
    kxObject& operator=(const kxObject&) = delete;
    virtual ~kxObject();
    virtual const std::string& className() const = 0;
};

// --- Creating and freeing. Dimensions whose product cannot be held throw tooManyElements.

/// Zeros of a numeric class or logical, or characters u'\0'. Throws wrongClass for other classes.
KORVEX_API kxArray* kxCreateNumeric(kxClass elementClass, const kxDimensions& dimensions);
/// The same, elements unset.
KORVEX_API kxArray* kxCreateUninitialized(kxClass elementClass, const kxDimensions& dimensions);
/// A character array of 1 by length.
KORVEX_API kxArray* kxCreateCharacters(std::u16string_view text);
KORVEX_API kxArray* kxCreateCell(const kxDimensions& dimensions);
/// Throws repeatedField if two fields have one name.
KORVEX_API kxArray* kxCreateStructure(const kxDimensions& dimensions,
                                      const std::vector<std::string>& fieldNames);
/// An object array of 1 by 1. Copies of it share the object. Throws noObject for null.
KORVEX_API kxArray* kxCreateObject(std::shared_ptr<kxObject> object);
/// An object array that has fields of its own, as a structure has, and no kxObject. Throws
/// repeatedField.
KORVEX_API kxArray* kxCreateObjectWithFields(std::string className, const kxDimensions& dimensions,
                                             const std::vector<std::string>& fieldNames);
/// A copy of all there is in an array, save that objects are shared.
KORVEX_API kxArray* kxDuplicateArray(const kxArray* array);
/// Frees an array with all it holds, to any depth; null is ignored.
KORVEX_API void kxDestroyArray(kxArray* array) noexcept;

struct kxDestroyer {
    void operator()(kxArray* array) const noexcept { kxDestroyArray(array); }
};
using kxArrayPtr = std::unique_ptr<kxArray, kxDestroyer>;

// --- What every array has.

KORVEX_API kxClass kxGetClass(const kxArray* array) noexcept;
/// "double", "int8" … "uint64", "logical", "char", "cell", "struct", or the class of an object.
KORVEX_API std::string kxGetClassName(const kxArray* array);
KORVEX_API std::span<const std::size_t> kxGetDimensions(const kxArray* array) noexcept;
KORVEX_API std::size_t kxGetNumberOfElements(const kxArray* array) noexcept;

// --- Elements of numbers, logical values and characters.

/// The elements as they lie in memory. Throws wrongClass unless T is the type of the array's
/// elements: double, std::int8_t … std::uint64_t, bool for logical, char16_t.
template <class T>
std::span<const T> kxGetData(const kxArray* array);
template <class T>
std::span<T> kxGetData(kxArray* array);

/// All elements of a character array in element order. Throws wrongClass.
KORVEX_API std::u16string_view kxGetCharacters(const kxArray* array);

/// One element of a numeric, logical or character array. Throws wrongClass and indexOutOfRange.
/// Integers of 64 bits are rounded where a double cannot hold them.
KORVEX_API double kxGetNumber(const kxArray* array, std::size_t index);

// --- Cells. They throw wrongClass and indexOutOfRange.

KORVEX_API const kxArray* kxGetCell(const kxArray* cell, std::size_t index);
/// Takes `value` over and frees what was there; null empties the place. Throws arrayWithinItself.
KORVEX_API void kxReplaceCell(kxArray* cell, std::size_t index, kxArray* value);

// --- Fields of structures and of objects with fields. A structure's fields have the positions in
// --- which they were named.

/// The position of a field, or -1 if there is none or the array cannot have any.
KORVEX_API int kxGetFieldNumber(const kxArray* structure, std::string_view fieldName);
KORVEX_API std::span<const std::string> kxGetFieldNames(const kxArray* structure);
/// Throws wrongClass, noSuchField and indexOutOfRange.
KORVEX_API const kxArray* kxGetField(const kxArray* structure, std::size_t index,
                                     std::string_view fieldName);
/// Takes `value` over and frees what was there; null empties the place. Throws what kxGetField
/// throws and arrayWithinItself.
KORVEX_API void kxReplaceField(kxArray* structure, std::size_t index, std::string_view fieldName,
                               kxArray* value);

// --- Objects.

/// Throws wrongClass, also for an object with fields, and indexOutOfRange.
KORVEX_API const std::shared_ptr<kxObject>& kxGetObject(const kxArray* array, std::size_t index);

// --- How the templates above find their elements.

namespace arrays::detail {

KORVEX_API const void* elements(const kxArray* array, kxClass elementClass);
KORVEX_API void* elements(kxArray* array, kxClass elementClass);

template <class T>
extern const kxClass kClassOf;
template <>
inline constexpr kxClass kClassOf<double> = kxClass::kDouble;
template <>
inline constexpr kxClass kClassOf<std::int8_t> = kxClass::kInt8;
template <>
inline constexpr kxClass kClassOf<std::uint8_t> = kxClass::kUint8;
template <>
inline constexpr kxClass kClassOf<std::int16_t> = kxClass::kInt16;
template <>
inline constexpr kxClass kClassOf<std::uint16_t> = kxClass::kUint16;
template <>
inline constexpr kxClass kClassOf<std::int32_t> = kxClass::kInt32;
template <>
inline constexpr kxClass kClassOf<std::uint32_t> = kxClass::kUint32;
template <>
inline constexpr kxClass kClassOf<std::int64_t> = kxClass::kInt64;
template <>
inline constexpr kxClass kClassOf<std::uint64_t> = kxClass::kUint64;
template <>
inline constexpr kxClass kClassOf<bool> = kxClass::kLogical;
template <>
inline constexpr kxClass kClassOf<char16_t> = kxClass::kCharacter;

}  // namespace arrays::detail

template <class T>
std::span<const T> kxGetData(const kxArray* array) {
    const void* data = arrays::detail::elements(array, arrays::detail::kClassOf<T>);
    return {static_cast<const T*>(data), kxGetNumberOfElements(array)};
}

template <class T>
std::span<T> kxGetData(kxArray* array) {
    void* data = arrays::detail::elements(array, arrays::detail::kClassOf<T>);
    return {static_cast<T*>(data), kxGetNumberOfElements(array)};
}
