#include "host/foundation/LiveObjects.hpp"

#include <atomic>

namespace foundation::core {
namespace {

// Counts order nothing, so they need no more than to be whole.
constexpr std::memory_order kOrder = std::memory_order_relaxed;

constinit LiveObjects alive;

std::size_t count(std::size_t LiveObjects::*kind) noexcept {
    return std::atomic_ref<std::size_t>(alive.*kind).load(kOrder);
}

}  // namespace

LiveObjects liveObjects() noexcept {
    return {.arrays = count(&LiveObjects::arrays),
            .interfaces = count(&LiveObjects::interfaces),
            .instances = count(&LiveObjects::instances),
            .classInfos = count(&LiveObjects::classInfos),
            .methodInfos = count(&LiveObjects::methodInfos),
            .methodSignatures = count(&LiveObjects::methodSignatures)};
}

void countMade(std::size_t LiveObjects::*kind) noexcept {
    std::atomic_ref<std::size_t>(alive.*kind).fetch_add(1, kOrder);
}

void countFreed(std::size_t LiveObjects::*kind) noexcept {
    std::atomic_ref<std::size_t>(alive.*kind).fetch_sub(1, kOrder);
}

}  // namespace foundation::core
