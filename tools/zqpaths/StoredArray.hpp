#pragma once
// Host arrays as bytes of a file: character rows, columns of uint8 and columns of double, each
// element with its lowest byte first.
//
//     const ArrayForm form = formOf(array);
//     std::vector<std::uint8_t> bytes = storedBytes(array, 0, form.byteCount());
//     korvex::Array copy = makeArray(form);
//     restoreBytes(bytes, 0, copy.get());

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/runtime/Arrays.hpp"

namespace zqpaths {

struct ArrayForm {
    std::string className;  // "char", "uint8" or "double"
    std::uint64_t rowCount = 0;
    std::uint64_t columnCount = 0;

    /// Of all elements. Requires isStorable().
    std::uint64_t byteCount() const;

    /// It is a row or a column as above, or has no elements, and so many bytes at most.
    bool isStorable(std::uint64_t mostBytes) const noexcept;
};

/// The form of an array; nothing if it is not one of those that are stored.
std::optional<ArrayForm> formOf(const kxArray* array);

/// An array of a storable form, its elements unset.
korvex::Array makeArray(const ArrayForm& form);

/// Bytes `offset` to `offset + count` of an array of a storable form, both multiples of 8 or the
/// array's end.
std::vector<std::uint8_t> storedBytes(const kxArray* array, std::uint64_t offset,
                                      std::uint64_t count);

/// Sets the elements whose bytes begin at `offset`, a multiple of 8.
void restoreBytes(std::span<const std::uint8_t> bytes, std::uint64_t offset, kxArray* array);

}  // namespace zqpaths
