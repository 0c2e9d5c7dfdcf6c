#pragma once
// CounterClassInfo offers the class korvex.tests.Counter, a total with a unit. Its methods also do
// all that can go wrong in a call.

#include "host/kobj/COSClassInfo.hpp"

namespace KORVEX::tests {

/// Argument: the total.
struct negativeTotal {
    static constexpr const char* kComponent = "KORVEX:tests";
    static constexpr const char* kKey = "negativeTotal";
};

}  // namespace KORVEX::tests

namespace counters {

class CounterClassInfo : public kobj::COSClassInfo {
public:
    const char* getClassName() const override { return "Counter"; }
    void initializeClass(kobj::COSClass* newClass, const kobj::COSClient* client) override;
    void* allocateInstance(kobj::COSInterface* object) override;
    void deallocateInstance(kobj::COSInterface* object, void* instance) override;
    void instanceLoaded(kobj::COSInterfacePtr& object) override;
    /// Fills the total and the unit from the fields of these names. Of anything but a structure the
    /// unit becomes the type.
    void customLoad(kobj::COSInterfacePtr& object, kobj::COSValue saved,
                    kobj::COSDataTypePtr savedType) override;
};

/// How often KVTerminate has run in this process.
int terminationCount();

}  // namespace counters
