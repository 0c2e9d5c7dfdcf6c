// A library that cannot be initialized.

#include <stdexcept>

#include "host/Export.hpp"

extern "C" KORVEX_API void KVInitialize_libfailing() {
    throw std::runtime_error("no licence for the tests");
}

extern "C" KORVEX_API void KVTerminate_libfailing() {}
