#pragma once

#include "host/Export.hpp"

/// Gives back memory of the C allocator that the host has taken over; null is ignored.
extern "C" KORVEX_API void utFree(void* memory) noexcept;
