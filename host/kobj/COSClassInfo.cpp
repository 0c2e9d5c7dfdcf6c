#include "host/kobj/COSClassInfo.hpp"

#include "host/foundation/LiveObjects.hpp"

namespace kobj {

using foundation::core::LiveObjects;

COSClassInfo::COSClassInfo() {
    foundation::core::countMade(&LiveObjects::classInfos);
}

COSClassInfo::~COSClassInfo() {
    foundation::core::countFreed(&LiveObjects::classInfos);
}

bool COSClassInfo::isPropertyNameReservedByThisClass(const char* /*propertyName*/) const {
    return false;
}

bool COSClassInfo::canOtherClassContainThisClass(const COSClass* /*otherClass*/) const {
    return true;
}

bool COSClassInfo::canThisClassContainOtherClass(const COSClass* /*otherClass*/) const {
    return true;
}

int COSClassInfo::getPassingMode() const {
    return 0;
}

bool COSClassInfo::canBePassedByReference() const {
    const int mode = getPassingMode();
    return mode == 0 || mode == 2;
}

void COSClassInfo::instanceLoaded(COSInterfacePtr& /*object*/) {}

bool COSClassInfo::customSave(COSInterfacePtr& /*object*/, COSValue& /*saved*/) {
    return false;
}

// Classes that load by themselves may keep both, so they are passed by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void COSClassInfo::customLoad(COSInterfacePtr& /*object*/, COSValue /*saved*/,
                              // NOLINTNEXTLINE(performance-unnecessary-value-param)
                              COSDataTypePtr /*savedType*/) {}

}  // namespace kobj
