#include "host/matrix/Matrix.hpp"

#include <utf8/unchecked.h>

#include <iterator>

#include "host/arrays/NumericElements.hpp"

namespace matrix {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool isLead(char16_t unit) noexcept {
    return (unit & 0xFC00U) == 0xD800U;
}
constexpr bool isTrail(char16_t unit) noexcept {
    return (unit & 0xFC00U) == 0xDC00U;
}

/// The code point that starts `units`, which is not empty, and how many units it takes.
struct CodePoint {
    char32_t value;
    std::size_t unitCount;
};
CodePoint firstOf(std::u16string_view units) noexcept {
    const char16_t first = units[0];
    if (isLead(first) && units.size() > 1 && isTrail(units[1]))
        return {0x10000U + ((first & 0x3FFU) << 10U) + (units[1] & 0x3FFU), 2};
    return {isLead(first) || isTrail(first) ? kReplacement : first, 1};
}

}  // namespace

std::string get_string(const kxArray* characters) {
    std::u16string_view units = kxGetCharacters(characters);
    std::string bytes;
    bytes.reserve(units.size());
    while (!units.empty()) {
        const CodePoint first = firstOf(units);
        utf8::unchecked::append(first.value, std::back_inserter(bytes));
        units.remove_prefix(first.unitCount);
    }
    return bytes;
}

std::u16string get_ustring(const kxArray* characters) {
    return std::u16string(kxGetCharacters(characters));
}

std::vector<double> get_doubles(const kxArray* numbers) {
    return arrays::lookAtNumbers(numbers, [](auto elements) {
        return std::vector<double>(elements.begin(), elements.end());
    });
}

std::vector<std::uint8_t> get_bytes(const kxArray* bytes) {
    const auto copied = [](auto elements) {
        return std::vector<std::uint8_t>(elements.begin(), elements.end());
    };
    switch (kxGetClass(bytes)) {
        case kxClass::kInt8:
            return copied(kxGetData<std::int8_t>(bytes));
        case kxClass::kLogical:
            return copied(kxGetData<bool>(bytes));
        default:
            return copied(kxGetData<std::uint8_t>(bytes));
    }
}

kxArrayPtr create(std::u16string_view text) {
    return kxArrayPtr(kxCreateCharacters(text));
}

kxArray* to_korvex(kxArrayPtr array) noexcept {
    return array.release();
}

const kxArray* from_korvex(const kobj::COSValue& value) noexcept {
    return value.array();
}

namespace detail {

kxArrayPtr do_create_cell(std::size_t rows, std::size_t columns) {
    return kxArrayPtr(kxCreateCell({rows, columns}));
}

kxArrayPtr do_create_uninitnumeric(std::size_t rows, std::size_t columns, kxClass elementClass) {
    return kxArrayPtr(kxCreateUninitialized(elementClass, {rows, columns}));
}

}  // namespace detail
}  // namespace matrix
