#include "host/kobj/COSClass.hpp"

#include <gtest/gtest.h>

#include "tests/host/kobj/RegistryTest.hpp"

namespace kobj {
namespace {

kxArray* getNothing(const COSInterfacePtr&) {
    return nullptr;
}
void setNothing(const COSInterfacePtr&, const kxArray*) {}
void releaseNothing(kxArray*) {}

void addProperty(COSClass& described, std::string_view name) {
    described.addProperty(name, "double", getNothing, setNothing, releaseNothing, 0, 2, 0x840, 1);
}

using COSClassTest = RegistryTest;

TEST_F(COSClassTest, findsMethodsByName) {
    COSClass& shape = *addClass({});
    auto* draw = new ScriptedMethod("draw");
    shape.addMethod(draw);
    shape.addMethod(new ScriptedMethod("erase"));
    EXPECT_EQ(&shape.getMethod("draw"), draw);
    EXPECT_STREQ(shape.getMethod("erase").getMethodName(), "erase");
}

TEST_F(COSClassTest, listsMethodsAndPropertiesInTheOrderOfAdding) {
    COSClass& shape = *addClass({});
    shape.addMethod(new ScriptedMethod("draw"));
    shape.addMethod(new ScriptedMethod("bend"));
    addProperty(shape, "Width");
    addProperty(shape, "Height");
    ASSERT_EQ(shape.getMethods().size(), 2U);
    EXPECT_STREQ(shape.getMethods()[0]->getMethodName(), "draw");
    EXPECT_STREQ(shape.getMethods()[1]->getMethodName(), "bend");
    ASSERT_EQ(shape.getProperties().size(), 2U);
    EXPECT_EQ(shape.getProperties()[0].name, "Width");
    EXPECT_EQ(shape.getProperties()[1].name, "Height");
}

TEST_F(COSClassTest, keepsAllThatIsSaidOfAProperty) {
    COSClass& shape = *addClass({});
    addProperty(shape, "Width");
    const COSProperty& width = shape.getProperty("Width");
    EXPECT_EQ(width.name, "Width");
    EXPECT_EQ(width.type, "double");
    EXPECT_EQ(width.get, getNothing);
    EXPECT_EQ(width.set, setNothing);
    EXPECT_EQ(width.release, releaseNothing);
    EXPECT_EQ(width.getAccess, 0);
    EXPECT_EQ(width.setAccess, 2);
    EXPECT_EQ(width.flags, 0x840);
    EXPECT_EQ(width.origin, 1);
}

TEST_F(COSClassTest, tellsWhichMethodItDoesNotHave) {
    COSClass& shape = *addClass({});
    shape.addMethod(new ScriptedMethod("draw"));
    EXPECT_EQ(refusal<KORVEX::kobj::noSuchMethod>([&] { shape.getMethod("Draw"); }),
              (Arguments{"korvex.Shape", "Draw"}));
}

TEST_F(COSClassTest, tellsWhichPropertyItDoesNotHave) {
    COSClass& shape = *addClass({});
    EXPECT_EQ(refusal<KORVEX::kobj::noSuchProperty>([&] { shape.getProperty("Width"); }),
              (Arguments{"korvex.Shape", "Width"}));
}

TEST_F(COSClassTest, refusesAndFreesASecondMethodOfAName) {
    COSClass& shape = *addClass({});
    auto* draw = new ScriptedMethod("draw");
    shape.addMethod(draw);
    EXPECT_EQ(
        refusal<KORVEX::kobj::nameIsTaken>([&] { shape.addMethod(new ScriptedMethod("draw")); }),
        (Arguments{"korvex.Shape", "draw"}));
    EXPECT_EQ(foundation::core::liveObjects().methodInfos, 1U);
    EXPECT_EQ(&shape.getMethod("draw"), draw);
}

TEST_F(COSClassTest, refusesASecondPropertyOfAName) {
    COSClass& shape = *addClass({});
    addProperty(shape, "Width");
    EXPECT_EQ(refusal<KORVEX::kobj::nameIsTaken>([&] { addProperty(shape, "Width"); }),
              (Arguments{"korvex.Shape", "Width"}));
    EXPECT_EQ(shape.getProperties().size(), 1U);
}

TEST_F(COSClassTest, hasNoMethodAndPropertyOfOneName) {
    COSClass& shape = *addClass({});
    addProperty(shape, "width");
    EXPECT_THROW(shape.addMethod(new ScriptedMethod("width")),
                 Exception<KORVEX::kobj::nameIsTaken>);
    shape.addMethod(new ScriptedMethod("height"));
    EXPECT_THROW(addProperty(shape, "height"), Exception<KORVEX::kobj::nameIsTaken>);
}

TEST_F(COSClassTest, refusesAPropertyWhoseNameItKeepsForItself) {
    ClassScript script;
    script.reservedProperty = "Handle";
    COSClass& shape = *addClass(script);
    EXPECT_EQ(refusal<KORVEX::kobj::nameIsTaken>([&] { addProperty(shape, "Handle"); }),
              (Arguments{"korvex.Shape", "Handle"}));
    addProperty(shape, "Width");
    EXPECT_EQ(shape.getProperties().size(), 1U);
}

}  // namespace
}  // namespace kobj
