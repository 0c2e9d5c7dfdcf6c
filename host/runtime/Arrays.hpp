#pragma once
// Array owns a host array; the functions make the arrays that host programs need.

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "host/Export.hpp"
#include "host/arrays/kxArray.hpp"

namespace korvex {

class Array {
public:
    Array() = default;
    explicit Array(kxArrayPtr array) noexcept : array_(std::move(array)) {}
    explicit Array(kxArray* owned) noexcept : array_(owned) {}

    const kxArray* get() const noexcept { return array_.get(); }
    kxArray* get() noexcept { return array_.get(); }
    kxArray* release() noexcept { return array_.release(); }
    explicit operator bool() const noexcept { return array_ != nullptr; }

private:
    kxArrayPtr array_;
};

KORVEX_API Array text(std::u16string_view characters);         // a row
KORVEX_API Array numbers(std::span<const double> values);      // a column
KORVEX_API Array bytes(std::span<const std::uint8_t> values);  // a column
KORVEX_API Array cell(std::vector<Array> elements);            // a column, which owns them

}  // namespace korvex
