#include "host/kobj/COSClass.hpp"

#include <algorithm>
#include <utility>

#include "host/foundation/Exceptions.hpp"
#include "host/kobj/ClassRegistry.hpp"
#include "host/kobj/ObjectErrors.hpp"

namespace kobj {

using foundation::core::except::Exception;

COSClass* COSClass::getClass(std::string_view fullName) {
    return ClassRegistry::instance().findClass(fullName);
}

COSClass::COSClass(std::string fullName, std::unique_ptr<COSClassInfo> info, int access, int origin)
    : fullName_(std::move(fullName)), info_(std::move(info)), access_(access), origin_(origin) {}

COSClass::~COSClass() = default;

void COSClass::addMethod(COSMethodInfo* method) {
    std::unique_ptr<COSMethodInfo> owned(method);
    requireFreeName(owned->getMethodName());
    methods_.push_back(std::move(owned));
}

void COSClass::addProperty(std::string_view name, std::string_view type,
                           kxArray* (*get)(const COSInterfacePtr&),
                           void (*set)(const COSInterfacePtr&, const kxArray*),
                           void (*release)(kxArray*), int getAccess, int setAccess, int flags,
                           int origin) {
    COSProperty property{std::string(name), std::string(type), get,   set,   release,
                         getAccess,         setAccess,         flags, origin};
    requireFreeName(property.name);
    if (info_->isPropertyNameReservedByThisClass(property.name.c_str())) {
        throw Exception<KORVEX::kobj::nameIsTaken>(fullName_, property.name);
    }
    properties_.push_back(std::move(property));
}

COSMethodInfo& COSClass::getMethod(std::string_view name) const {
    if (COSMethodInfo* method = findMethod(name)) return *method;
    throw Exception<KORVEX::kobj::noSuchMethod>(fullName_, std::string(name));
}

const COSProperty& COSClass::getProperty(std::string_view name) const {
    if (const COSProperty* property = findProperty(name)) return *property;
    throw Exception<KORVEX::kobj::noSuchProperty>(fullName_, std::string(name));
}

COSMethodInfo* COSClass::findMethod(std::string_view name) const noexcept {
    const auto place = std::find_if(methods_.begin(), methods_.end(), [name](const auto& method) {
        return name == method->getMethodName();
    });
    return place == methods_.end() ? nullptr : place->get();
}

const COSProperty* COSClass::findProperty(std::string_view name) const noexcept {
    const auto place =
        std::find_if(properties_.begin(), properties_.end(),
                     [name](const COSProperty& property) { return name == property.name; });
    return place == properties_.end() ? nullptr : &*place;
}

void COSClass::requireFreeName(std::string_view name) const {
    if (findMethod(name) == nullptr && findProperty(name) == nullptr) return;
    throw Exception<KORVEX::kobj::nameIsTaken>(fullName_, std::string(name));
}

}  // namespace kobj
