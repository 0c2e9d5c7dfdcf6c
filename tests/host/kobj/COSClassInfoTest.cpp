#include "host/kobj/COSClassInfo.hpp"

#include <gtest/gtest.h>

#include "tests/host/kobj/RegistryTest.hpp"

namespace kobj {
namespace {

using COSClassInfoTest = RegistryTest;

/// What a library writes that is content with everything else.
class PlainClassInfo : public COSClassInfo {
public:
    const char* getClassName() const override { return "Plain"; }
    void initializeClass(COSClass*, const COSClient*) override {}
    void* allocateInstance(COSInterface*) override { return nullptr; }
    void deallocateInstance(COSInterface*, void*) override {}
};

TEST_F(COSClassInfoTest, reservesNoPropertyNamesAndLivesWithAllClasses) {
    const PlainClassInfo info;
    EXPECT_FALSE(info.isPropertyNameReservedByThisClass("Width"));
    EXPECT_TRUE(info.canOtherClassContainThisClass(nullptr));
    EXPECT_TRUE(info.canThisClassContainOtherClass(nullptr));
}

TEST_F(COSClassInfoTest, isPassedByReferenceUnlessItSaysOtherwise) {
    const PlainClassInfo info;
    EXPECT_EQ(info.getPassingMode(), 0);
    EXPECT_TRUE(info.canBePassedByReference());
}

TEST_F(COSClassInfoTest, canBePassedByReferenceInTheModesZeroAndTwo) {
    for (int mode = -1; mode <= 4; ++mode) {
        ClassScript script;
        script.passingMode = mode;
        EXPECT_EQ(ScriptedClassInfo(script).canBePassedByReference(), mode == 0 || mode == 2)
            << mode;
    }
}

TEST_F(COSClassInfoTest, leavesSavingToTheHostAndLoadsNothing) {
    PlainClassInfo info;
    COSInterfacePtr object;
    COSValue saved;
    EXPECT_FALSE(info.customSave(object, saved));
    EXPECT_EQ(saved.array(), nullptr);
    info.customLoad(object, saved, COSDataType::of(saved));
    info.instanceLoaded(object);
    EXPECT_EQ(object, nullptr);
}

TEST_F(COSClassInfoTest, isCountedWhileItIsAlive) {
    const std::size_t before = foundation::core::liveObjects().classInfos;
    {
        const PlainClassInfo info;
        EXPECT_EQ(foundation::core::liveObjects().classInfos, before + 1);
    }
    EXPECT_EQ(foundation::core::liveObjects().classInfos, before);
}

TEST_F(COSClassInfoTest, isFreedByTheOperatorOfItsOwnClass) {
    addClass({});
    EXPECT_EQ(ScriptedClassInfo::aliveInOwnMemory, 1);
    addClass({});
    EXPECT_EQ(ScriptedClassInfo::aliveInOwnMemory, 1);
    omReset();
    EXPECT_EQ(ScriptedClassInfo::aliveInOwnMemory, 0);
}

}  // namespace
}  // namespace kobj
