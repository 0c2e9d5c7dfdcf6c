#include "host/kobj/ClassRegistry.hpp"

#include <utility>

namespace kobj {

ClassRegistry& ClassRegistry::instance() {
    static ClassRegistry& registry = *new ClassRegistry;
    return registry;
}

COSNamespace* ClassRegistry::getNamespace(const COSNamespace* outer, std::string_view name) {
    auto wanted = std::make_unique<COSNamespace>(outer, name);
    const std::string fullName = wanted->getFullName();
    const std::lock_guard lock(mutex_);
    return namespaces_.try_emplace(fullName, std::move(wanted)).first->second.get();
}

COSClass* ClassRegistry::findClass(std::string_view fullName) const {
    const std::lock_guard lock(mutex_);
    const auto place = classes_.find(fullName);
    return place == classes_.end() ? nullptr : place->second.get();
}

COSClass* ClassRegistry::addClass(std::unique_ptr<COSClass> newClass) {
    const std::string fullName = newClass->getFullName();
    // A class that comes too late is freed with the parameter, when the lock is gone.
    const std::lock_guard lock(mutex_);
    return classes_.try_emplace(fullName, std::move(newClass)).first->second.get();
}

void ClassRegistry::clear() noexcept {
    decltype(classes_) classes;
    decltype(namespaces_) namespaces;
    const std::lock_guard lock(mutex_);
    classes.swap(classes_);
    namespaces.swap(namespaces_);
}

}  // namespace kobj
