#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

#include "host/arrays/ArrayErrors.hpp"
#include "host/arrays/ArrayLayout.hpp"
#include "host/arrays/kxArray.hpp"
#include "host/foundation/Exceptions.hpp"
#include "host/foundation/LiveObjects.hpp"

using arrays::Contents;
using arrays::Fields;
using foundation::core::LiveObjects;
using foundation::core::except::Exception;

kxObject::~kxObject() = default;

namespace {

using Dimensions = std::span<const std::size_t>;

[[noreturn]] void refuseSize(Dimensions dimensions) {
    std::string text;
    for (const std::size_t dimension : dimensions)
        text += (text.empty() ? "" : " by ") + std::to_string(dimension);
    throw Exception<KORVEX::arrays::tooManyElements>(text);
}

std::size_t countElements(Dimensions dimensions) {
    std::size_t product = dimensions.empty() ? 0 : 1;
    bool isTooLarge = false;
    for (const std::size_t dimension : dimensions) {
        // A zero makes an array empty, however large the dimensions beside it.
        if (dimension == 0) return 0;
        isTooLarge |= __builtin_mul_overflow(product, dimension, &product);
    }
    if (isTooLarge) refuseSize(dimensions);
    return product;
}

enum class Fill { kZeros, kNothing };

/// An array with `elementSize` bytes for each element; what kFields has besides is not yet alive.
kxArray* allocate(kxClass elementClass, Contents contents, Dimensions dimensions,
                  std::size_t elementSize, Fill fill) {
    const std::size_t elementCount = countElements(dimensions);
    const std::size_t headSize = sizeof(kxArray) + dimensions.size_bytes() +
                                 (contents == Contents::kFields ? sizeof(Fields) : 0);
    std::size_t byteSize = 0;
    if (__builtin_mul_overflow(elementCount, elementSize, &byteSize) ||
        __builtin_add_overflow(byteSize, headSize, &byteSize) ||
        dimensions.size() > std::numeric_limits<std::uint32_t>::max())
        refuseSize(dimensions);

    void* const block = fill == Fill::kZeros ? std::calloc(1, byteSize) : std::malloc(byteSize);
    if (block == nullptr) throw foundation::core::except::bad_alloc();
    auto* const array = new (block) kxArray{
        .elementCount = elementCount,
        .dimensionCount = static_cast<std::uint32_t>(dimensions.size()),
        .elementClass = elementClass,
        .contents = contents,
    };
    std::ranges::copy(dimensions, array->dimensions());
    foundation::core::countMade(&LiveObjects::arrays);
    return array;
}

/// Bytes of one element, 0 for classes whose elements are no numbers.
std::size_t elementSize(kxClass elementClass) {
    switch (elementClass) {
        case kxClass::kInt8:
        case kxClass::kUint8:
        case kxClass::kLogical:
            return 1;
        case kxClass::kInt16:
        case kxClass::kUint16:
        case kxClass::kCharacter:
            return 2;
        case kxClass::kInt32:
        case kxClass::kUint32:
            return 4;
        case kxClass::kDouble:
        case kxClass::kInt64:
        case kxClass::kUint64:
            return 8;
        case kxClass::kCell:
        case kxClass::kStructure:
        case kxClass::kObject:
            break;
    }
    return 0;
}

kxArray* makeElements(kxClass elementClass, Dimensions dimensions, Fill fill) {
    const std::size_t size = elementSize(elementClass);
    if (size == 0)
        throw Exception<KORVEX::arrays::wrongClass>("numeric", arrays::nameOf(elementClass));
    return allocate(elementClass, Contents::kElements, dimensions, size, fill);
}

kxArray* makeCell(Dimensions dimensions) {
    return allocate(kxClass::kCell, Contents::kPlaces, dimensions, arrays::kPlaceSize,
                    Fill::kZeros);
}

void refuseRepeatedNames(const std::vector<std::string>& names) {
    std::vector<std::string_view> sorted(names.begin(), names.end());
    std::ranges::sort(sorted);
    const auto repeated = std::ranges::adjacent_find(sorted);
    if (repeated != sorted.end()) throw Exception<KORVEX::arrays::repeatedField>(*repeated);
}

kxArray* makeFields(kxClass elementClass, std::string className, Dimensions dimensions,
                    std::vector<std::string> names) {
    kxArray* const array = allocate(elementClass, Contents::kFields, dimensions,
                                    names.size() * arrays::kPlaceSize, Fill::kZeros);
    const std::size_t placeCount = array->elementCount * names.size();
    new (array->start()) Fields{std::move(className), std::move(names), placeCount};
    return array;
}

kxArray* makeObject(std::shared_ptr<kxObject> object) {
    kxArray* const array =
        allocate(kxClass::kObject, Contents::kObject, std::array<std::size_t, 2>{1, 1},
                 sizeof(object), Fill::kNothing);
    new (array->start()) std::shared_ptr<kxObject>(std::move(object));
    return array;
}

/// A copy of an array that has nothing in its places.
kxArray* duplicateWithoutPlaces(const kxArray* array) {
    const Dimensions dimensions = kxGetDimensions(array);
    switch (array->contents) {
        case Contents::kPlaces:
            return makeCell(dimensions);
        case Contents::kFields:
            return makeFields(array->elementClass, array->fields().className, dimensions,
                              array->fields().names);
        case Contents::kObject:
            return makeObject(array->object());
        case Contents::kElements:
            break;
    }
    kxArray* const copy = makeElements(array->elementClass, dimensions, Fill::kNothing);
    std::memcpy(copy->start(), array->start(),
                array->elementCount * elementSize(array->elementClass));
    return copy;
}

/// Frees an array whose places are empty.
void freeAlone(kxArray* array) noexcept {
    if (array->contents == Contents::kFields) array->fields().~Fields();
    if (array->contents == Contents::kObject) array->object().~shared_ptr();
    std::free(array);
    foundation::core::countFreed(&LiveObjects::arrays);
}

/// Goes down into the last array that is left and comes back when it is empty. On the way down, the
/// place of the array keeps the way further up, so that any depth is freed without more memory.
void freeWithPlaces(kxArray* array) noexcept {
    kxArray* parent = nullptr;
    for (;;) {
        std::size_t& placesLeft = array->placeCount();
        if (placesLeft == 0) {
            freeAlone(array);
            if (parent == nullptr) return;
            array = parent;
            parent = array->places()[array->placeCount()];
            continue;
        }
        arrays::Place& place = array->places()[--placesLeft];
        if (place == nullptr) continue;
        if (!place->hasPlaces()) {
            freeAlone(place);
            continue;
        }
        kxArray* const child = std::exchange(place, parent);
        parent = std::exchange(array, child);
    }
}

/// The result of `make`, which may use containers of the C++ library.
template <class Make>
kxArray* withHostErrors(Make make) {
    try {
        return make();
    } catch (const std::bad_alloc&) {
        throw foundation::core::except::bad_alloc();
    }
}

}  // namespace

kxArray* kxCreateNumeric(kxClass elementClass, const kxDimensions& dimensions) {
    return makeElements(elementClass, dimensions, Fill::kZeros);
}

kxArray* kxCreateUninitialized(kxClass elementClass, const kxDimensions& dimensions) {
    return makeElements(elementClass, dimensions, Fill::kNothing);
}

kxArray* kxCreateCharacters(std::u16string_view text) {
    kxArray* const row = makeElements(kxClass::kCharacter,
                                      std::array<std::size_t, 2>{1, text.size()}, Fill::kNothing);
    if (!text.empty()) std::memcpy(row->start(), text.data(), text.size() * sizeof(char16_t));
    return row;
}

kxArray* kxCreateCell(const kxDimensions& dimensions) {
    return makeCell(dimensions);
}

kxArray* kxCreateStructure(const kxDimensions& dimensions,
                           const std::vector<std::string>& fieldNames) {
    return withHostErrors([&] {
        refuseRepeatedNames(fieldNames);
        return makeFields(kxClass::kStructure, arrays::nameOf(kxClass::kStructure), dimensions,
                          fieldNames);
    });
}

kxArray* kxCreateObject(std::shared_ptr<kxObject> object) {
    if (object == nullptr) throw Exception<KORVEX::arrays::noObject>();
    return makeObject(std::move(object));
}

kxArray* kxCreateObjectWithFields(std::string className, const kxDimensions& dimensions,
                                  const std::vector<std::string>& fieldNames) {
    return withHostErrors([&] {
        refuseRepeatedNames(fieldNames);
        return makeFields(kxClass::kObject, std::move(className), dimensions, fieldNames);
    });
}

kxArray* kxDuplicateArray(const kxArray* array) {
    struct Copied {
        const kxArray* original;
        kxArray* copy;
    };
    return withHostErrors([array] {
        kxArrayPtr whole(duplicateWithoutPlaces(array));
        std::vector<Copied> unfilled;
        if (array->hasPlaces()) unfilled.push_back({array, whole.get()});
        while (!unfilled.empty()) {
            const auto [original, copy] = unfilled.back();
            unfilled.pop_back();
            for (std::size_t i = 0; i < copy->placeCount(); ++i) {
                const kxArray* const child = original->places()[i];
                if (child == nullptr) continue;
                copy->places()[i] = duplicateWithoutPlaces(child);
                if (child->hasPlaces()) unfilled.push_back({child, copy->places()[i]});
            }
        }
        return whole.release();
    });
}

void kxDestroyArray(kxArray* array) noexcept {
    if (array == nullptr) return;
    if (array->hasPlaces()) {
        freeWithPlaces(array);
    } else {
        freeAlone(array);
    }
}
