#include "host/kobj/COSMethodInfo.hpp"

#include "host/foundation/LiveObjects.hpp"

namespace kobj {

using foundation::core::LiveObjects;

COSMethodInfo::COSMethodInfo() {
    foundation::core::countMade(&LiveObjects::methodInfos);
}

COSMethodInfo::~COSMethodInfo() {
    foundation::core::countFreed(&LiveObjects::methodInfos);
}

}  // namespace kobj
