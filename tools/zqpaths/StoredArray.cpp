#include "tools/zqpaths/StoredArray.hpp"

#include <algorithm>
#include <bit>
#include <limits>
#include <type_traits>

namespace zqpaths {
namespace {

struct StoredClass {
    const char* name;
    kxClass elementClass;
    std::size_t elementSize;
    bool isRow;
};
constexpr StoredClass kStoredClasses[] = {
    {"char", kxClass::kCharacter, sizeof(char16_t), true},
    {"uint8", kxClass::kUint8, sizeof(std::uint8_t), false},
    {"double", kxClass::kDouble, sizeof(double), false},
};

const StoredClass* findClass(const std::string& name) noexcept {
    const auto* found =
        std::ranges::find_if(kStoredClasses, [&](const auto& one) { return one.name == name; });
    return found == std::end(kStoredClasses) ? nullptr : found;
}

/// The number whose bits are those of an element.
template <class T>
using BitsOf = std::conditional_t<sizeof(T) == 8, std::uint64_t,
                                  std::conditional_t<sizeof(T) == 2, std::uint16_t, std::uint8_t>>;

template <class T>
void store(std::span<const T> elements, std::uint8_t* out) {
    for (const T element : elements) {
        const auto bits = std::uint64_t{std::bit_cast<BitsOf<T>>(element)};
        for (std::size_t i = 0; i < sizeof(T); ++i)
            *out++ = static_cast<std::uint8_t>(bits >> (8 * i));
    }
}

template <class T>
void restore(const std::uint8_t* in, std::span<T> elements) {
    for (T& element : elements) {
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i) bits |= std::uint64_t{*in++} << (8 * i);
        element = std::bit_cast<T>(static_cast<BitsOf<T>>(bits));
    }
}

/// Calls `visit` with an element of the type that the array holds.
template <class Visit>
void withElementType(const kxArray* array, const Visit& visit) {
    switch (kxGetClass(array)) {
        case kxClass::kCharacter:
            return visit(char16_t{});
        case kxClass::kUint8:
            return visit(std::uint8_t{});
        default:
            return visit(double{});
    }
}

}  // namespace

std::uint64_t ArrayForm::byteCount() const {
    return rowCount * columnCount * findClass(className)->elementSize;
}

bool ArrayForm::isStorable(std::uint64_t mostBytes) const noexcept {
    const StoredClass* const stored = findClass(className);
    if (stored == nullptr) return false;
    if (rowCount == 0 || columnCount == 0) return true;
    const std::uint64_t across = stored->isRow ? rowCount : columnCount;
    const std::uint64_t along = stored->isRow ? columnCount : rowCount;
    return across == 1 && along <= mostBytes / stored->elementSize;
}

std::optional<ArrayForm> formOf(const kxArray* array) {
    const auto dimensions = kxGetDimensions(array);
    if (dimensions.size() != 2) return std::nullopt;
    ArrayForm form{kxGetClassName(array), dimensions[0], dimensions[1]};
    if (!form.isStorable(std::numeric_limits<std::uint64_t>::max())) return std::nullopt;
    return form;
}

korvex::Array makeArray(const ArrayForm& form) {
    return korvex::Array(kxCreateUninitialized(findClass(form.className)->elementClass,
                                               {form.rowCount, form.columnCount}));
}

std::vector<std::uint8_t> storedBytes(const kxArray* array, std::uint64_t offset,
                                      std::uint64_t count) {
    std::vector<std::uint8_t> bytes(count);
    withElementType(array, [&](auto element) {
        using T = decltype(element);
        store(kxGetData<T>(array).subspan(offset / sizeof(T), count / sizeof(T)), bytes.data());
    });
    return bytes;
}

void restoreBytes(std::span<const std::uint8_t> bytes, std::uint64_t offset, kxArray* array) {
    withElementType(array, [&](auto element) {
        using T = decltype(element);
        restore(bytes.data(),
                kxGetData<T>(array).subspan(offset / sizeof(T), bytes.size() / sizeof(T)));
    });
}

}  // namespace zqpaths
