#include "host/kobj/COSInterface.hpp"

#include "host/arrays/ArrayErrors.hpp"
#include "host/foundation/Exceptions.hpp"
#include "host/foundation/LiveObjects.hpp"
#include "host/kobj/COSClass.hpp"
#include "host/kobj/ObjectErrors.hpp"

namespace kobj {

using foundation::core::countFreed;
using foundation::core::countMade;
using foundation::core::LiveObjects;
using foundation::core::except::Exception;

COSInterface::COSInterface(COSClass& ofClass)
    : class_(ofClass), instance_(ofClass.getClassInfo().allocateInstance(this)) {
    countMade(&LiveObjects::interfaces);
    if (instance_ != nullptr) countMade(&LiveObjects::instances);
}

COSInterface::~COSInterface() {
    freeInstance();
    countFreed(&LiveObjects::interfaces);
}

const std::string& COSInterface::className() const {
    return class_.getFullName();
}

void* COSInterface::getInstanceData(std::string_view fullClassName) const {
    requireClass(fullClassName);
    return instance_;
}

void COSInterface::setInstanceData(std::string_view fullClassName, void* instance) {
    requireClass(fullClassName);
    if (instance == instance_) return;
    freeInstance();
    instance_ = instance;
    if (instance_ != nullptr) countMade(&LiveObjects::instances);
}

void COSInterface::requireClass(std::string_view fullClassName) const {
    if (fullClassName == className()) return;
    throw Exception<KORVEX::kobj::wrongObjectClass>(std::string(fullClassName), className());
}

void COSInterface::freeInstance() noexcept {
    if (instance_ == nullptr) return;
    class_.getClassInfo().deallocateInstance(this, instance_);
    countFreed(&LiveObjects::instances);
}

COSInterfacePtr omGetArrayElement(const kxArray* objects, std::size_t index) {
    COSInterfacePtr object;
    try {
        object = std::dynamic_pointer_cast<COSInterface>(kxGetObject(objects, index));
    } catch (const Exception<KORVEX::arrays::wrongClass>&) {
        // An array without objects is refused in the same way as one with objects of other hosts.
        object = nullptr;
    }
    if (object == nullptr) throw Exception<KORVEX::kobj::notAnObject>(kxGetClassName(objects));
    return object;
}

}  // namespace kobj
