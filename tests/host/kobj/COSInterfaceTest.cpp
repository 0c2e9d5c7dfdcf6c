#include "host/kobj/COSInterface.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

#include "host/arrays/ArrayErrors.hpp"
#include "tests/host/kobj/RegistryTest.hpp"

namespace kobj {
namespace {

/// Objects of the class korvex.Shape.
class COSInterfaceTest : public RegistryTest {
protected:
    COSInterfaceTest() { ScriptedClassInfo::deallocations = 0; }

    static COSInterfacePtr makeShape(const ClassScript& script = {}) {
        return std::make_shared<COSInterface>(*addClass(script));
    }
    static std::size_t instances() { return foundation::core::liveObjects().instances; }
};

/// An object of something that is no class of the object system.
class StrangeObject : public kxObject {
public:
    const std::string& className() const override { return name_; }

private:
    std::string name_ = "strange.Object";
};

TEST_F(COSInterfaceTest, knowsItsClass) {
    const COSInterfacePtr shape = makeShape();
    EXPECT_EQ(&shape->getClass(), COSClass::getClass("korvex.Shape"));
    EXPECT_EQ(shape->className(), "korvex.Shape");
}

TEST_F(COSInterfaceTest, hasAnInstanceAsLongAsItLives) {
    int* instance = new int(7);
    ClassScript script;
    script.allocate = [&] { return instance; };
    COSInterfacePtr shape = makeShape(script);
    EXPECT_EQ(shape->getInstanceData("korvex.Shape"), instance);
    EXPECT_EQ(instances(), 1U);
    EXPECT_EQ(foundation::core::liveObjects().interfaces, 1U);
    shape.reset();
    EXPECT_EQ(instances(), 0U);
    EXPECT_EQ(ScriptedClassInfo::deallocations, 1);
}

TEST_F(COSInterfaceTest, mayHaveNoInstance) {
    ClassScript script;
    script.allocate = [] { return nullptr; };
    COSInterfacePtr shape = makeShape(script);
    EXPECT_EQ(shape->getInstanceData("korvex.Shape"), nullptr);
    EXPECT_EQ(instances(), 0U);
    shape.reset();
    EXPECT_EQ(ScriptedClassInfo::deallocations, 0);
}

TEST_F(COSInterfaceTest, doesNotComeAboutWithoutItsInstance) {
    ClassScript script;
    script.allocate = []() -> int* { throw std::runtime_error("no room"); };
    EXPECT_THROW(makeShape(script), std::runtime_error);
    EXPECT_EQ(foundation::core::liveObjects().interfaces, 0U);
    EXPECT_EQ(instances(), 0U);
    EXPECT_EQ(ScriptedClassInfo::deallocations, 0);
}

TEST_F(COSInterfaceTest, freesItsInstanceForAnother) {
    const COSInterfacePtr shape = makeShape();
    int* other = new int(8);
    shape->setInstanceData("korvex.Shape", other);
    EXPECT_EQ(shape->getInstanceData("korvex.Shape"), other);
    EXPECT_EQ(ScriptedClassInfo::deallocations, 1);
    EXPECT_EQ(instances(), 1U);
}

TEST_F(COSInterfaceTest, keepsAnInstanceThatIsSetOnceMore) {
    const COSInterfacePtr shape = makeShape();
    shape->setInstanceData("korvex.Shape", shape->getInstanceData("korvex.Shape"));
    EXPECT_EQ(ScriptedClassInfo::deallocations, 0);
    EXPECT_EQ(instances(), 1U);
}

TEST_F(COSInterfaceTest, countsAnInstanceThatComesLater) {
    ClassScript script;
    script.allocate = [] { return nullptr; };
    const COSInterfacePtr shape = makeShape(script);
    shape->setInstanceData("korvex.Shape", new int(9));
    EXPECT_EQ(instances(), 1U);
    shape->setInstanceData("korvex.Shape", nullptr);
    EXPECT_EQ(instances(), 0U);
    EXPECT_EQ(ScriptedClassInfo::deallocations, 1);
}

TEST_F(COSInterfaceTest, showsItsInstanceToItsClassAlone) {
    const COSInterfacePtr shape = makeShape();
    EXPECT_EQ(
        refusal<KORVEX::kobj::wrongObjectClass>([&] { shape->getInstanceData("korvex.Colour"); }),
        (Arguments{"korvex.Colour", "korvex.Shape"}));
    EXPECT_THROW(shape->setInstanceData("Shape", nullptr),
                 Exception<KORVEX::kobj::wrongObjectClass>);
    EXPECT_NE(shape->getInstanceData("korvex.Shape"), nullptr);
}

TEST_F(COSInterfaceTest, isSharedByAllArraysThatHoldIt) {
    kxArrayPtr first;
    {
        const COSInterfacePtr shape = makeShape();
        first.reset(kxCreateObject(shape));
        EXPECT_EQ(omGetArrayElement(first.get(), 0), shape);
    }
    kxArrayPtr second(kxDuplicateArray(first.get()));
    EXPECT_EQ(omGetArrayElement(second.get(), 0), omGetArrayElement(first.get(), 0));
    first.reset();
    EXPECT_EQ(instances(), 1U);
    second.reset();
    EXPECT_EQ(instances(), 0U);
}

TEST_F(COSInterfaceTest, isNotFoundInArraysOfOtherThings) {
    const kxArrayPtr number(kxCreateNumeric(kxClass::kDouble, {1, 1}));
    const kxArrayPtr fields(kxCreateObjectWithFields("korvex.Shape", {1, 1}, {"Width"}));
    const kxArrayPtr strange(kxCreateObject(std::make_shared<StrangeObject>()));
    using KORVEX::kobj::notAnObject;
    EXPECT_EQ(refusal<notAnObject>([&] { omGetArrayElement(number.get(), 0); }),
              Arguments{"double"});
    EXPECT_EQ(refusal<notAnObject>([&] { omGetArrayElement(fields.get(), 0); }),
              Arguments{"korvex.Shape"});
    EXPECT_EQ(refusal<notAnObject>([&] { omGetArrayElement(strange.get(), 0); }),
              Arguments{"strange.Object"});
}

TEST_F(COSInterfaceTest, isNotFoundBehindTheLastElement) {
    const kxArrayPtr shapes(kxCreateObject(makeShape()));
    EXPECT_THROW(omGetArrayElement(shapes.get(), 1), Exception<KORVEX::arrays::indexOutOfRange>);
}

}  // namespace
}  // namespace kobj
