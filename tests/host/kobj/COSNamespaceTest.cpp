#include "host/kobj/COSNamespace.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/host/kobj/RegistryTest.hpp"

namespace kobj {
namespace {

using COSNamespaceTest = RegistryTest;

TEST_F(COSNamespaceTest, isNamedByAllNamesFromTheOutermostOn) {
    COSNamespace* outer = omGetNamespace("korvex");
    COSNamespace* inner = omGetInnerNamespace(omGetInnerNamespace(outer, "io"), "datastore");
    EXPECT_EQ(outer->getFullName(), "korvex");
    EXPECT_EQ(inner->getFullName(), "korvex.io.datastore");
}

TEST_F(COSNamespaceTest, isTheSameWheneverItIsAskedFor) {
    COSNamespace* outer = omGetNamespace("korvex");
    EXPECT_EQ(omGetNamespace("korvex"), outer);
    EXPECT_EQ(omGetInnerNamespace(outer, "io"), omGetInnerNamespace(outer, "io"));
}

TEST_F(COSNamespaceTest, ofOneNameIsAnotherInAnotherNamespace) {
    COSNamespace* first = omGetInnerNamespace(omGetNamespace("first"), "shapes");
    COSNamespace* second = omGetInnerNamespace(omGetNamespace("second"), "shapes");
    EXPECT_NE(first, second);
    EXPECT_NE(first, omGetNamespace("shapes"));
}

TEST_F(COSNamespaceTest, addsAClassThatIsFoundByItsFullName) {
    EXPECT_EQ(COSClass::getClass("korvex.Shape"), nullptr);
    COSClass* added = addClass({});
    EXPECT_EQ(COSClass::getClass("korvex.Shape"), added);
    EXPECT_EQ(COSClass::getClass("Shape"), nullptr);
    EXPECT_EQ(added->getFullName(), "korvex.Shape");
    EXPECT_STREQ(added->getClassInfo().getClassName(), "Shape");
}

TEST_F(COSNamespaceTest, keepsAccessAndOriginWithAClass) {
    COSClass* added = omGetNamespace("korvex")->addClass(new ScriptedClassInfo({}), 3, 7);
    EXPECT_EQ(added->getAccess(), 3);
    EXPECT_EQ(added->getOrigin(), 7);
}

TEST_F(COSNamespaceTest, letsAClassDescribeItselfBeforeOthersSeeIt) {
    ClassScript script;
    bool wasSeen = true;
    script.initialize = [&](COSClass& described) {
        wasSeen = COSClass::getClass("korvex.Shape") != nullptr;
        described.addMethod(new ScriptedMethod("draw"));
    };
    EXPECT_EQ(addClass(script)->getMethods().size(), 1U);
    EXPECT_FALSE(wasSeen);
}

TEST_F(COSNamespaceTest, keepsTheFirstClassOfAName) {
    ClassScript second;
    bool wasDescribed = false;
    second.initialize = [&](COSClass&) { wasDescribed = true; };
    COSClass* first = addClass({});
    EXPECT_EQ(addClass(second), first);
    EXPECT_FALSE(wasDescribed);
    EXPECT_EQ(foundation::core::liveObjects().classInfos, 1U);
}

TEST_F(COSNamespaceTest, keepsTheClassThatIsDescribedFirstOfTwoOfOneName) {
    ClassScript later;
    COSClass* first = nullptr;
    later.initialize = [&](COSClass& described) {
        described.addMethod(new ScriptedMethod("draw"));
        first = addClass({});
    };
    EXPECT_EQ(addClass(later), first);
    EXPECT_TRUE(first->getMethods().empty());
    EXPECT_EQ(foundation::core::liveObjects().methodInfos, 0U);
}

TEST_F(COSNamespaceTest, mayBeUsedByAClassThatDescribesItself) {
    ClassScript script;
    ClassScript helper;
    helper.name = "Colour";
    script.initialize = [&](COSClass&) { addClass(helper); };
    addClass(script);
    EXPECT_NE(COSClass::getClass("korvex.Shape"), nullptr);
    EXPECT_NE(COSClass::getClass("korvex.Colour"), nullptr);
}

TEST_F(COSNamespaceTest, hasNoClassThatCouldNotDescribeItself) {
    ClassScript script;
    script.initialize = [](COSClass& described) {
        described.addMethod(new ScriptedMethod("draw"));
        throw std::runtime_error("no ink");
    };
    EXPECT_THROW(addClass(script), std::runtime_error);
    EXPECT_EQ(COSClass::getClass("korvex.Shape"), nullptr);
    EXPECT_EQ(foundation::core::liveObjects().methodInfos, 0U);
    EXPECT_EQ(ScriptedClassInfo::aliveInOwnMemory, 0);

    script.initialize = [](COSClass&) {};
    EXPECT_NE(addClass(script), nullptr);
}

TEST_F(COSNamespaceTest, refusesAClassThatIsPassedByValueOnly) {
    ClassScript script;
    script.passingMode = 1;
    EXPECT_EQ(refusal<KORVEX::kobj::notPassedByReference>([&] { addClass(script); }),
              Arguments{"korvex.Shape"});
    EXPECT_EQ(COSClass::getClass("korvex.Shape"), nullptr);
    EXPECT_EQ(ScriptedClassInfo::aliveInOwnMemory, 0);
}

TEST_F(COSNamespaceTest, takesAClassThatIsPassedByReferenceOrValue) {
    ClassScript script;
    script.passingMode = 2;
    EXPECT_NE(addClass(script), nullptr);
}

TEST_F(COSNamespaceTest, givesOneClassToAllThreadsThatAddIt) {
    constexpr int kThreads = 16;
    constexpr int kRounds = 20;
    for (int round = 0; round < kRounds; ++round) {
        ClassScript script;
        std::atomic<int> described = 0;
        script.initialize = [&](COSClass& newClass) {
            ++described;
            newClass.addMethod(new ScriptedMethod("draw"));
            std::this_thread::yield();
            newClass.addMethod(new ScriptedMethod("erase"));
        };
        std::vector<COSClass*> classes(kThreads);
        std::barrier start(kThreads);
        {
            std::vector<std::jthread> threads;
            threads.reserve(kThreads);
            for (COSClass*& added : classes) {
                threads.emplace_back([&] {
                    start.arrive_and_wait();
                    COSNamespace* shapes = omGetInnerNamespace(omGetNamespace("korvex"), "shapes");
                    added = shapes->addClass(new ScriptedClassInfo(script), 0, 2);
                });
            }
        }
        EXPECT_GE(described, 1);
        EXPECT_EQ(classes, std::vector(kThreads, COSClass::getClass("korvex.shapes.Shape")));
        EXPECT_EQ(classes.front()->getMethods().size(), 2U);
        EXPECT_EQ(foundation::core::liveObjects().classInfos, 1U);
        EXPECT_EQ(foundation::core::liveObjects().methodInfos, 2U);
        EXPECT_EQ(foundation::core::liveObjects().methodSignatures, 2U);
        omReset();
    }
}

}  // namespace
}  // namespace kobj
