#pragma once
// HostStorage is the base of objects that the host frees: memory of the C allocator, filled with
// zeros, that goes back through utFree.

#include <cstddef>
#include <cstdlib>

#include "host/foundation/Exceptions.hpp"
#include "host/foundation/Memory.hpp"

namespace binding {

class HostStorage {
public:
    static void* operator new(std::size_t size) {
        void* const memory = std::calloc(1, size);
        if (memory == nullptr) throw foundation::core::except::bad_alloc();
        return memory;
    }
    static void operator delete(void* memory) noexcept { utFree(memory); }

protected:
    ~HostStorage() = default;
};

}  // namespace binding
