#include "tools/zqpaths/MemoryShortage.hpp"

#include <atomic>
#include <new>

namespace zqpaths {
namespace {

std::atomic<bool> hasRunOut{false};

}  // namespace

void watchMemory() noexcept {
    // Called by operator new, of whatever library.
    std::set_new_handler([] {
        hasRunOut = true;
        throw std::bad_alloc();
    });
}

bool hasMemoryRunOut() noexcept {
    return hasRunOut;
}

}  // namespace zqpaths
