#pragma once
// A law that a fuzz target checks: where it does not hold, the process ends as in any other crash.

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace fuzzing {

inline void require(bool holds, const char* law) {
    if (holds) return;
    static_cast<void>(std::fprintf(stderr, "broken law: %s\n", law));
    std::abort();
}

/// True if `step` ends without throwing one of `Refusals`; any other exception ends the process.
template <class... Refusals, class Step>
bool succeeds(Step step) {
    try {
        step();
        return true;
    } catch (const std::exception& error) {
        if ((... || (dynamic_cast<const Refusals*>(&error) != nullptr))) return false;
        throw;
    }
}

}  // namespace fuzzing
