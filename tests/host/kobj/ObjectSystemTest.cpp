#include "host/kobj/ObjectSystem.hpp"

#include <gtest/gtest.h>

#include "tests/host/kobj/RegistryTest.hpp"

namespace kobj {
namespace {

using ObjectSystemTest = RegistryTest;

TEST_F(ObjectSystemTest, looksForClassesOnlyOnceUnlessToldOtherwise) {
    EXPECT_FALSE(omGetKobjUsingUSM());
    omSetKobjUsingUSM(true);
    EXPECT_TRUE(omGetKobjUsingUSM());
    omSetKobjUsingUSM(false);
    EXPECT_FALSE(omGetKobjUsingUSM());
}

TEST_F(ObjectSystemTest, freesAllClassesWithTheirMethodsWhenReset) {
    ClassScript script;
    script.initialize = [](COSClass& described) {
        described.addMethod(new ScriptedMethod("draw"));
    };
    addClass(script);
    script.name = "Colour";
    addClass(script);
    EXPECT_EQ(foundation::core::liveObjects().methodSignatures, 2U);
    omReset();
    EXPECT_EQ(foundation::core::liveObjects(), foundation::core::LiveObjects{});
    EXPECT_EQ(COSClass::getClass("korvex.Shape"), nullptr);
}

TEST_F(ObjectSystemTest, takesClassesAgainAfterAReset) {
    addClass({});
    omReset();
    COSClass* again = addClass({});
    EXPECT_EQ(COSClass::getClass("korvex.Shape"), again);
}

}  // namespace
}  // namespace kobj
