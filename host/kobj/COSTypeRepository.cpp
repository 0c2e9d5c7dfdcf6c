#include "host/kobj/COSTypeRepository.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "host/arrays/NumericElements.hpp"
#include "host/foundation/Exceptions.hpp"
#include "host/kobj/ObjectErrors.hpp"

namespace kobj {

using foundation::core::except::Exception;

namespace {

constexpr std::string_view kAnyClass = "any";
constexpr std::string_view kDoubleClass = "double";
constexpr std::array<std::string_view, 10> kConvertToDouble{
    "int8", "uint8", "int16", "uint16", "int32", "uint32", "int64", "uint64", "logical", "char"};

enum class Shape { kAny, kVector, kScalar };

/// A declared type in its two parts.
struct DeclaredType {
    std::string_view className;
    Shape shape = Shape::kAny;
};

DeclaredType declaredType(std::string_view text) {
    using Suffix = std::pair<std::string_view, Shape>;
    for (const auto& [suffix, shape] :
         {Suffix{" vector", Shape::kVector}, Suffix{" scalar", Shape::kScalar}}) {
        if (text.ends_with(suffix)) return {text.substr(0, text.size() - suffix.size()), shape};
    }
    return {text};
}

bool isOfClass(std::string_view className, const DeclaredType& type) {
    return type.className == kAnyClass || type.className == className;
}

bool canBecome(std::string_view className, const DeclaredType& type) {
    if (isOfClass(className, type)) return true;
    return type.className == kDoubleClass &&
           std::find(kConvertToDouble.begin(), kConvertToDouble.end(), className) !=
               kConvertToDouble.end();
}

bool hasShape(const kxArray* array, Shape shape) {
    if (shape == Shape::kAny) return true;
    if (shape == Shape::kScalar) return kxGetNumberOfElements(array) == 1;
    const auto dimensions = kxGetDimensions(array);
    const auto ones = std::count(dimensions.begin(), dimensions.end(), std::size_t{1});
    return dimensions.size() - static_cast<std::size_t>(ones) <= 1;
}

/// As in "double of 2 by 3".
std::string classAndDimensions(const kxArray* array) {
    std::string text = kxGetClassName(array);
    std::string_view separator = " of ";
    for (const std::size_t extent : kxGetDimensions(array)) {
        text.append(separator).append(std::to_string(extent));
        separator = " by ";
    }
    return text;
}

kxArrayPtr toDouble(const kxArray* array) {
    const auto dimensions = kxGetDimensions(array);
    kxArrayPtr converted(kxCreateUninitialized(kxClass::kDouble,
                                               kxDimensions(dimensions.begin(), dimensions.end())));
    const std::span<double> numbers = kxGetData<double>(converted.get());
    arrays::lookAtNumbers(array, [numbers](auto elements) {
        std::transform(elements.begin(), elements.end(), numbers.begin(),
                       [](auto element) { return static_cast<double>(element); });
    });
    return converted;
}

}  // namespace

COSValue COSConversion::apply(const COSValue& value) const {
    if (value.array() == nullptr) return value;
    kxArrayPtr converted = COSTypeRepository::convertBorrowed(value.array(), targetType_);
    return converted == nullptr ? value : COSValue(std::move(converted));
}

COSConversion COSTypeRepository::getConversion(std::string_view sourceId,
                                               std::string_view targetType) {
    if (sourceId.empty() || canBecome(sourceId, declaredType(targetType))) {
        return COSConversion(targetType);
    }
    throw Exception<KORVEX::kobj::cannotConvert>(std::string(targetType), std::string(sourceId));
}

kxArrayPtr COSTypeRepository::convertBorrowed(const kxArray* array, std::string_view targetType) {
    const DeclaredType type = declaredType(targetType);
    const std::string className = array == nullptr ? "nothing" : kxGetClassName(array);
    if (array == nullptr || !canBecome(className, type)) {
        throw Exception<KORVEX::kobj::cannotConvert>(std::string(targetType), className);
    }
    if (!hasShape(array, type.shape)) {
        throw Exception<KORVEX::kobj::cannotConvert>(std::string(targetType),
                                                     classAndDimensions(array));
    }
    return isOfClass(className, type) ? nullptr : toDouble(array);
}

}  // namespace kobj
