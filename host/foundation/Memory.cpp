#include "host/foundation/Memory.hpp"

#include <cstdlib>

void utFree(void* memory) noexcept {
    std::free(memory);
}
