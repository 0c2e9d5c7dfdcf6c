#include "host/foundation/Exceptions.hpp"

namespace foundation::core::except {

HostError::~HostError() = default;

bad_alloc::~bad_alloc() = default;

const char* bad_alloc::what() const noexcept {
    return "out of memory";
}

}  // namespace foundation::core::except
