#pragma once
// HuffmanPathsCOSClassInfo describes the class to the host. Each object owns one path set.

#include "binding/ClassName.hpp"
#include "binding/HostStorage.hpp"
#include "host/kobj/COSClassInfo.hpp"

namespace binding {

class HuffmanPathsCOSClassInfo : public kobj::COSClassInfo, public HostStorage {
public:
    const char* getClassName() const override { return kShortClassName; }
    void initializeClass(kobj::COSClass* newClass, const kobj::COSClient* client) override;

    void* allocateInstance(kobj::COSInterface* object) override;
    void deallocateInstance(kobj::COSInterface* object, void* instance) override;

    /// Fills the object from a structure, or object with fields, of the fields "StringTree" and
    /// "PathTree"; other values leave it empty. Never throws: a stored object that cannot be
    /// restored must not keep the host from loading what is stored beside it, so the failure is
    /// told on standard output.
    void customLoad(kobj::COSInterfacePtr& object, kobj::COSValue saved,
                    kobj::COSDataTypePtr savedType) override;
};

}  // namespace binding
