#pragma once
// The texts of the host's own errors, which the message catalogue holds from the start.

#include <span>

namespace foundation::core::messages {

struct HostText {
    const char* component;
    const char* key;
    const char* text;
};

std::span<const HostText> hostTexts() noexcept;

}  // namespace foundation::core::messages
