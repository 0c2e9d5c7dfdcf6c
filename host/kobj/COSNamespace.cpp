#include "host/kobj/COSNamespace.hpp"

#include <memory>
#include <utility>

#include "host/foundation/Exceptions.hpp"
#include "host/kobj/COSClass.hpp"
#include "host/kobj/COSClassInfo.hpp"
#include "host/kobj/ClassRegistry.hpp"
#include "host/kobj/ObjectErrors.hpp"

namespace kobj {

using foundation::core::except::Exception;

COSNamespace::COSNamespace(const COSNamespace* outer, std::string_view name)
    : fullName_(outer == nullptr ? std::string(name)
                                 : outer->getFullName() + "." + std::string(name)) {}

COSClass* COSNamespace::addClass(COSClassInfo* info, int access, int origin) {
    std::unique_ptr<COSClassInfo> owned(info);
    const std::string fullName = fullName_ + "." + owned->getClassName();
    if (COSClass* present = COSClass::getClass(fullName)) return present;
    if (!owned->canBePassedByReference()) {
        throw Exception<KORVEX::kobj::notPassedByReference>(fullName);
    }
    auto newClass = std::make_unique<COSClass>(fullName, std::move(owned), access, origin);
    // Libraries may look for classes while they describe one, so nothing is locked here. Others
    // that describe the same class meanwhile lose against whoever is done first.
    const COSClient client;
    newClass->getClassInfo().initializeClass(newClass.get(), &client);
    return ClassRegistry::instance().addClass(std::move(newClass));
}

COSNamespace* omGetNamespace(std::string_view name) {
    return ClassRegistry::instance().getNamespace(nullptr, name);
}

COSNamespace* omGetInnerNamespace(COSNamespace* outer, std::string_view name) {
    return ClassRegistry::instance().getNamespace(outer, name);
}

}  // namespace kobj
