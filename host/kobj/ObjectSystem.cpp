#include "host/kobj/ObjectSystem.hpp"

#include <atomic>

#include "host/kobj/ClassRegistry.hpp"

namespace kobj {
namespace {

std::atomic<bool> isUsingUSM{false};

}  // namespace

bool omGetKobjUsingUSM() noexcept {
    return isUsingUSM;
}

void omSetKobjUsingUSM(bool isUsing) noexcept {
    isUsingUSM = isUsing;
}

void omReset() noexcept {
    ClassRegistry::instance().clear();
}

}  // namespace kobj
