#pragma once
// What libraries use to read host arrays, to make them and to hand them over:
//
//     const std::u16string name = matrix::get_ustring(inputs[1]);
//     outputs[0] = matrix::to_korvex(matrix::create(name));

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/Export.hpp"
#include "host/arrays/kxArray.hpp"
#include "host/kobj/COSValue.hpp"

namespace matrix {

/// The characters as UTF-8; a surrogate without its other half becomes U+FFFD. Throws wrongClass.
KORVEX_API std::string get_string(const kxArray* characters);

/// The characters as they are. Throws wrongClass. O(characters).
KORVEX_API std::u16string get_ustring(const kxArray* characters);

/// The elements of a numeric, logical or character array, in element order. Throws wrongClass.
KORVEX_API std::vector<double> get_doubles(const kxArray* numbers);

/// The elements of an array of one byte an element, in element order. Throws wrongClass.
KORVEX_API std::vector<std::uint8_t> get_bytes(const kxArray* bytes);

/// A character array of 1 by length.
KORVEX_API kxArrayPtr create(std::u16string_view text);

/// Hands an array to the host, which frees it.
KORVEX_API kxArray* to_korvex(kxArrayPtr array) noexcept;

/// The array of a value, null if there is none. It lives as long as a copy of the value.
KORVEX_API const kxArray* from_korvex(const kobj::COSValue& value) noexcept;

namespace detail {

/// A cell array of empty places.
KORVEX_API kxArrayPtr do_create_cell(std::size_t rows, std::size_t columns);

/// A numeric array whose elements are not set.
KORVEX_API kxArrayPtr do_create_uninitnumeric(std::size_t rows, std::size_t columns,
                                              kxClass elementClass);

}  // namespace detail
}  // namespace matrix
