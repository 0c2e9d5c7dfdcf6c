// A library that notes its end after those that the process has noted, in ZQ_ENDED. It is built
// under two names, ZQ_INITIALIZE and ZQ_TERMINATE being its entries.

#include <cstdlib>
#include <string>

#include "host/Export.hpp"

extern "C" KORVEX_API void ZQ_INITIALIZE() {}

extern "C" KORVEX_API void ZQ_TERMINATE() {
    // Sessions end on one thread. NOLINTBEGIN(concurrency-mt-unsafe)
    const char* const before = std::getenv("ZQ_ENDED");
    const std::string ended = std::string(before == nullptr ? "" : before) + ZQ_NAME ";";
    ::setenv("ZQ_ENDED", ended.c_str(), 1);
    // NOLINTEND(concurrency-mt-unsafe)
}
