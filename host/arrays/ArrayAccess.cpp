#include <algorithm>
#include <array>
#include <utility>

#include "host/arrays/ArrayErrors.hpp"
#include "host/arrays/ArrayLayout.hpp"
#include "host/arrays/NumericElements.hpp"
#include "host/arrays/kxArray.hpp"
#include "host/foundation/Exceptions.hpp"

using arrays::Contents;
using foundation::core::except::Exception;

namespace arrays {

const char* nameOf(kxClass elementClass) noexcept {
    switch (elementClass) {
        case kxClass::kDouble:
            return "double";
        case kxClass::kInt8:
            return "int8";
        case kxClass::kUint8:
            return "uint8";
        case kxClass::kInt16:
            return "int16";
        case kxClass::kUint16:
            return "uint16";
        case kxClass::kInt32:
            return "int32";
        case kxClass::kUint32:
            return "uint32";
        case kxClass::kInt64:
            return "int64";
        case kxClass::kUint64:
            return "uint64";
        case kxClass::kLogical:
            return "logical";
        case kxClass::kCharacter:
            return "char";
        case kxClass::kCell:
            return "cell";
        case kxClass::kStructure:
            return "struct";
        case kxClass::kObject:
            return "object";
    }
    return "unknown";
}

void refuseClass(const char* needed, const kxArray* array) {
    throw Exception<KORVEX::arrays::wrongClass>(needed, kxGetClassName(array));
}

}  // namespace arrays

namespace {

/// What is read where nothing was put. It belongs to no one and is never freed.
struct EmptyArray {
    kxArray head;
    std::array<std::size_t, 2> dimensions;
};
constexpr EmptyArray kEmpty{
    .head = {.elementCount = 0,
             .dimensionCount = 2,
             .elementClass = kxClass::kDouble,
             .contents = Contents::kElements},
    .dimensions = {0, 0},
};

const kxArray* orEmpty(const kxArray* inPlace) {
    return inPlace != nullptr ? inPlace : &kEmpty.head;
}

[[noreturn]] void refuseIndex(const kxArray* array, std::size_t index) {
    throw Exception<KORVEX::arrays::indexOutOfRange>(std::to_string(index + 1),
                                                     std::to_string(array->elementCount));
}

void requireIndex(const kxArray* array, std::size_t index) {
    if (index >= array->elementCount) refuseIndex(array, index);
}

void requireClass(const kxArray* array, kxClass elementClass) {
    if (array->elementClass != elementClass)
        arrays::refuseClass(arrays::nameOf(elementClass), array);
}

template <class Array>
auto& placeOfCell(Array* cell, std::size_t index) {
    requireClass(cell, kxClass::kCell);
    requireIndex(cell, index);
    return cell->places()[index];
}

template <class Array>
auto& placeOfField(Array* structure, std::size_t index, std::string_view fieldName) {
    if (structure->contents != Contents::kFields)
        arrays::refuseClass(arrays::nameOf(kxClass::kStructure), structure);
    const std::vector<std::string>& names = structure->fields().names;
    const auto found = std::ranges::find(names, fieldName);
    if (found == names.end()) throw Exception<KORVEX::arrays::noSuchField>(fieldName);
    requireIndex(structure, index);
    const auto field = static_cast<std::size_t>(found - names.begin());
    return structure->places()[index * names.size() + field];
}

/// Owns what is put into `container`. The container itself is refused before it is owned here, so
/// that the refusal does not free it.
kxArrayPtr takeOver(kxArray* value, const kxArray* container) {
    if (value == container) throw Exception<KORVEX::arrays::arrayWithinItself>();
    return kxArrayPtr(value);
}

}  // namespace

const void* arrays::detail::elements(const kxArray* array, kxClass elementClass) {
    requireClass(array, elementClass);
    return array->start();
}

void* arrays::detail::elements(kxArray* array, kxClass elementClass) {
    requireClass(array, elementClass);
    return array->start();
}

kxClass kxGetClass(const kxArray* array) noexcept {
    return array->elementClass;
}

std::string kxGetClassName(const kxArray* array) {
    switch (array->contents) {
        case Contents::kFields:
            return array->fields().className;
        case Contents::kObject:
            return array->object()->className();
        case Contents::kElements:
        case Contents::kPlaces:
            break;
    }
    return arrays::nameOf(array->elementClass);
}

std::span<const std::size_t> kxGetDimensions(const kxArray* array) noexcept {
    return {array->dimensions(), array->dimensionCount};
}

std::size_t kxGetNumberOfElements(const kxArray* array) noexcept {
    return array->elementCount;
}

std::u16string_view kxGetCharacters(const kxArray* array) {
    requireClass(array, kxClass::kCharacter);
    return {static_cast<const char16_t*>(array->start()), array->elementCount};
}

double kxGetNumber(const kxArray* array, std::size_t index) {
    return arrays::lookAtNumbers(array, [array, index](auto elements) {
        requireIndex(array, index);
        return static_cast<double>(elements[index]);
    });
}

const kxArray* kxGetCell(const kxArray* cell, std::size_t index) {
    return orEmpty(placeOfCell(cell, index));
}

void kxReplaceCell(kxArray* cell, std::size_t index, kxArray* value) {
    kxArrayPtr taken = takeOver(value, cell);
    arrays::Place& place = placeOfCell(cell, index);
    kxDestroyArray(std::exchange(place, taken.release()));
}

int kxGetFieldNumber(const kxArray* structure, std::string_view fieldName) {
    const std::span<const std::string> names = kxGetFieldNames(structure);
    const auto found = std::ranges::find(names, fieldName);
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

std::span<const std::string> kxGetFieldNames(const kxArray* structure) {
    if (structure->contents != Contents::kFields) return {};
    return structure->fields().names;
}

const kxArray* kxGetField(const kxArray* structure, std::size_t index, std::string_view fieldName) {
    return orEmpty(placeOfField(structure, index, fieldName));
}

void kxReplaceField(kxArray* structure, std::size_t index, std::string_view fieldName,
                    kxArray* value) {
    kxArrayPtr taken = takeOver(value, structure);
    arrays::Place& place = placeOfField(structure, index, fieldName);
    kxDestroyArray(std::exchange(place, taken.release()));
}

const std::shared_ptr<kxObject>& kxGetObject(const kxArray* array, std::size_t index) {
    if (array->contents != Contents::kObject)
        arrays::refuseClass(arrays::nameOf(kxClass::kObject), array);
    requireIndex(array, index);
    return array->object();
}
