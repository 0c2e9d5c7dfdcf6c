#pragma once
// LetterClassInfo offers the class korvex.tests.Letter, a text that saves itself.

#include "host/kobj/COSClassInfo.hpp"

namespace counters {

class LetterClassInfo : public kobj::COSClassInfo {
public:
    const char* getClassName() const override { return "Letter"; }
    void initializeClass(kobj::COSClass* newClass, const kobj::COSClient* client) override;
    void* allocateInstance(kobj::COSInterface* object) override;
    void deallocateInstance(kobj::COSInterface* object, void* instance) override;
    /// A letter without text saves nothing.
    bool customSave(kobj::COSInterfacePtr& object, kobj::COSValue& saved) override;
    void customLoad(kobj::COSInterfacePtr& object, kobj::COSValue saved,
                    kobj::COSDataTypePtr savedType) override;
};

}  // namespace counters
