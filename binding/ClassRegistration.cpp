// The entries that a host calls after loading the library.

#include <string>

#include "binding/ClassName.hpp"
#include "binding/HuffmanPathsCOSClassInfo.hpp"
#include "binding/HuffmanPathsErrors.hpp"
#include "host/kobj/COSClass.hpp"
#include "host/kobj/COSNamespace.hpp"
#include "host/kobj/ObjectSystem.hpp"

#define ZQ_EXPORT __attribute__((visibility("default")))

ZQ_EXPORT kobj::COSClass* InitializeLibrary();
extern "C" ZQ_EXPORT void KVInitialize_libzqcompressedpaths();
extern "C" ZQ_EXPORT void KVTerminate_libzqcompressedpaths();

namespace {

kobj::COSNamespace* resolveNamespace() {
    kobj::COSNamespace* space = nullptr;
    for (const char* name : binding::kNamespaces)
        space =
            space == nullptr ? kobj::omGetNamespace(name) : kobj::omGetInnerNamespace(space, name);
    return space;
}

/// The class, registered if it was not there.
kobj::COSClass* registerClass(kobj::COSNamespace* space, const char* shortName) {
    const std::string fullName = space->getFullName() + "." + shortName;
    if (kobj::COSClass::getClass(fullName) == nullptr) {
        binding::addErrorTexts();
        space->addClass(new binding::HuffmanPathsCOSClassInfo, 0, 2);
    }
    return kobj::COSClass::getClass(fullName);
}

}  // namespace

/// Registers the class unless it is there, and returns it.
kobj::COSClass* InitializeLibrary() {
    return registerClass(resolveNamespace(), binding::kShortClassName);
}

/// Registers the class once in a process, or looks for it each time if the host says so.
void KVInitialize_libzqcompressedpaths() {
    if (kobj::omGetKobjUsingUSM()) {
        InitializeLibrary();
        return;
    }
    static const kobj::COSClass* const registered = InitializeLibrary();
    static_cast<void>(registered);
}

/// The class stays for the life of the process.
void KVTerminate_libzqcompressedpaths() {}
