#pragma once
// How an array lies in memory: one block of the C allocator that holds
//
//     kxArray                     16 bytes
//     dimensions                  8 bytes each
//     what it is made of          elements, places, fields with places, or a shared object
//
// A place is a pointer to an array that belongs to this one, null if nothing was put there. Only
// the names that belong to fields lie elsewhere.
//
// Blocks are made and freed in ArrayCreation.cpp alone.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/arrays/kxArray.hpp"

namespace arrays {

using Place = kxArray*;
inline constexpr std::size_t kPlaceSize = sizeof(void*);

enum class Contents : std::uint8_t {
    kElements,  // of numbers, logical values or characters
    kPlaces,    // one an element
    kFields,    // Fields, then the places of element 0 in the order of the names, of element 1, ...
    kObject,    // std::shared_ptr<kxObject>
};

struct Fields {
    std::string className;  // "struct" for structures
    std::vector<std::string> names;
    std::size_t placeCount;
};

}  // namespace arrays

struct kxArray {
    std::size_t elementCount;
    std::uint32_t dimensionCount;
    kxClass elementClass;
    arrays::Contents contents;

    std::size_t* dimensions() noexcept { return reinterpret_cast<std::size_t*>(this + 1); }
    const std::size_t* dimensions() const noexcept {
        return const_cast<kxArray*>(this)->dimensions();
    }
    void* start() noexcept { return dimensions() + dimensionCount; }
    const void* start() const noexcept { return const_cast<kxArray*>(this)->start(); }

    // Only for arrays of these contents.
    arrays::Fields& fields() noexcept { return *static_cast<arrays::Fields*>(start()); }
    const arrays::Fields& fields() const noexcept {
        return *static_cast<const arrays::Fields*>(start());
    }
    std::shared_ptr<kxObject>& object() noexcept {
        return *static_cast<std::shared_ptr<kxObject>*>(start());
    }
    const std::shared_ptr<kxObject>& object() const noexcept {
        return *static_cast<const std::shared_ptr<kxObject>*>(start());
    }

    /// Of cells and arrays with fields.
    arrays::Place* places() noexcept {
        void* const first = contents == arrays::Contents::kFields ? &fields() + 1 : start();
        return static_cast<arrays::Place*>(first);
    }
    const arrays::Place* places() const noexcept { return const_cast<kxArray*>(this)->places(); }
    std::size_t& placeCount() noexcept {
        return contents == arrays::Contents::kFields ? fields().placeCount : elementCount;
    }

    bool hasPlaces() const noexcept {
        return contents == arrays::Contents::kPlaces || contents == arrays::Contents::kFields;
    }
};

static_assert(sizeof(kxArray) == 16);
static_assert(alignof(arrays::Fields) <= alignof(std::size_t) &&
                  alignof(std::shared_ptr<kxObject>) <= alignof(std::size_t),
              "what follows the dimensions is aligned as they are");

namespace arrays {

/// The name of a class, "object" for all classes of objects.
const char* nameOf(kxClass elementClass) noexcept;

[[noreturn]] void refuseClass(const char* needed, const kxArray* array);

}  // namespace arrays
