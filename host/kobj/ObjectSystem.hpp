#pragma once
// What there is once in a process.

#include "host/Export.hpp"

namespace kobj {

/// Whether libraries are to look for their classes at each initialization instead of only at the
/// first; false at the start.
KORVEX_API bool omGetKobjUsingUSM() noexcept;
KORVEX_API void omSetKobjUsingUSM(bool isUsing) noexcept;

/// Forgets all namespaces and frees all classes. No object may be alive. For programs that count
/// what they leave.
KORVEX_API void omReset() noexcept;

}  // namespace kobj
