#pragma once
// RegistryTest is a balanced test that leaves the registry empty.

#include "host/foundation/Exceptions.hpp"
#include "host/kobj/COSClass.hpp"
#include "host/kobj/COSNamespace.hpp"
#include "host/kobj/ObjectErrors.hpp"
#include "host/kobj/ObjectSystem.hpp"
#include "tests/host/BalancedTest.hpp"
#include "tests/host/Refusals.hpp"
#include "tests/host/kobj/ScriptedClass.hpp"

namespace kobj {

template <class MessageId>
using Exception = foundation::core::except::Exception<MessageId>;

class RegistryTest : public BalancedTest {
protected:
    void TearDown() override {
        omReset();
        BalancedTest::TearDown();
        EXPECT_EQ(ScriptedClassInfo::aliveInOwnMemory, 0);
    }

    static COSClass* addClass(const ClassScript& script) {
        return omGetNamespace("korvex")->addClass(new ScriptedClassInfo(script), 0, 2);
    }
};

}  // namespace kobj
