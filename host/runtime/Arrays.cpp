#include "host/runtime/Arrays.hpp"

#include <algorithm>

#include "host/runtime/ErrorTranslation.hpp"

namespace korvex {
namespace {

template <class T>
Array column(kxClass elementClass, std::span<const T> values) try {
    kxArrayPtr array(kxCreateUninitialized(elementClass, {values.size(), 1}));
    std::copy(values.begin(), values.end(), kxGetData<T>(array.get()).begin());
    return Array(std::move(array));
} catch (...) {
    throw handledError();
}

}  // namespace

Array text(std::u16string_view characters) try {
    return Array(kxCreateCharacters(characters));
} catch (...) {
    throw handledError();
}

Array numbers(std::span<const double> values) {
    return column(kxClass::kDouble, values);
}

Array bytes(std::span<const std::uint8_t> values) {
    return column(kxClass::kUint8, values);
}

Array cell(std::vector<Array> elements) try {
    kxArrayPtr array(kxCreateCell({elements.size(), 1}));
    std::size_t index = 0;
    for (Array& element : elements) kxReplaceCell(array.get(), index++, element.release());
    return Array(std::move(array));
} catch (...) {
    throw handledError();
}

}  // namespace korvex
