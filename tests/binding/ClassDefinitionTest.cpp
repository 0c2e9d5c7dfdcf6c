// What the class tells the host about itself: methods, their signatures and counts, properties, and
// how its objects are passed.

#include <gtest/gtest.h>

#include <ostream>

#include "tests/binding/BindingTest.hpp"
#include "tests/binding/MethodCall.hpp"

namespace kobj {

// Found by argument-dependent lookup, hence here.
inline bool operator==(const COSParameter& a, const COSParameter& b) {
    return a.type == b.type && a.name == b.name && a.isOptional == b.isOptional;
}
inline void PrintTo(const COSParameter& parameter, std::ostream* out) {
    *out << parameter.type << " \"" << parameter.name << (parameter.isOptional ? "\"?" : "\"");
}

}  // namespace kobj

namespace binding_tests {
namespace {

using Parameters = std::vector<kobj::COSParameter>;

/// What is promised of a method.
struct MethodRow {
    std::string name;
    Parameters inputs;  // after the object
    Parameters outputs;
    std::int32_t mostOutputs;
    std::int32_t fewestInputs;  // with the object
    std::int32_t mostInputs;
};

void PrintTo(const MethodRow& row, std::ostream* out) {
    *out << row.name;
}

const std::vector<MethodRow>& methodRows() {
    static const std::vector<MethodRow> rows{
        {"HuffmanPaths",
         {{"char", "createFrom", true},
          {"any", "uniqueCharsOrObjectOrFolders", true},
          {"any", "pathTree", true},
          {"any", "frequencies", true}},
         {{kClassName, "instance"}},
         1,
         0,
         4},
        {"addPaths", {{"cell", "folderpaths"}, {"cell", "files"}}, {}, 0, 3, 3},
        {"getPaths",
         {{"double", "partitions"}, {"char", "filesep", true}},
         {{"cell", "paths"}, {"cell", "files", true}},
         2,
         2,
         3},
        {"getNextPath", {}, {{"cell", "path"}}, 1, 1, 1},
        {"hasNextPath", {}, {{"logical scalar", ""}}, 1, 1, 1},
        {"reset", {}, {}, 0, 1, 1},
        {"serialize", {}, {{"char", "uniqueChars"}, {"any", "PathTree", true}}, 2, 1, 1},
    };
    return rows;
}

class Methods : public BindingTest, public ::testing::WithParamInterface<MethodRow> {
protected:
    static void expectRefused(const char* identifier, std::int32_t outputs, std::int32_t inputs) {
        MethodCall call(GetParam().name, outputs);
        expectHostError(identifier, {}, [&] { call.runOnNothing(inputs); });
    }

    static constexpr const char* kTooManyOutputs = "KORVEX:matrix:tooManyOutputs";
    static constexpr const char* kTooManyInputs = "KORVEX:matrix:tooManyInputs";
    static constexpr const char* kNotEnoughInputs = "KORVEX:matrix:notEnoughInputs";
};

TEST_P(Methods, declareTheirInputsAndOutputs) {
    const kobj::COSMethodInfo& method = boundClass().getMethod(GetParam().name);
    Parameters inputs = method.getSignature().inputs();
    if (GetParam().name != "HuffmanPaths") {
        ASSERT_FALSE(inputs.empty());
        EXPECT_EQ(inputs[0].type, kClassName);
        EXPECT_FALSE(inputs[0].isOptional);
        inputs.erase(inputs.begin());
    }
    EXPECT_EQ(inputs, GetParam().inputs);
    EXPECT_EQ(method.getSignature().outputs(), GetParam().outputs);
}

TEST_P(Methods, refuseMoreOutputsThanTheyHave) {
    for (const std::int32_t outputs : {GetParam().mostOutputs + 1, 100})
        expectRefused(kTooManyOutputs, outputs, GetParam().mostInputs);
}

TEST_P(Methods, refuseMoreInputsThanTheyTake) {
    for (const std::int32_t inputs : {GetParam().mostInputs + 1, 100})
        expectRefused(kTooManyInputs, GetParam().mostOutputs, inputs);
}

TEST_P(Methods, refuseFewerInputsThanTheyNeed) {
    for (std::int32_t inputs = 0; inputs < GetParam().fewestInputs; ++inputs)
        expectRefused(kNotEnoughInputs, GetParam().mostOutputs, inputs);
}

TEST_P(Methods, countOutputsBeforeInputs) {
    const std::int32_t outputs = GetParam().mostOutputs + 1;
    expectRefused(kTooManyOutputs, outputs, GetParam().mostInputs + 1);
    expectRefused(kTooManyOutputs, outputs, GetParam().fewestInputs - 1);
}

INSTANTIATE_TEST_SUITE_P(All, Methods, ::testing::ValuesIn(methodRows()),
                         [](const auto& tested) { return tested.param.name; });

class ClassDefinition : public BindingTest {
protected:
    kobj::COSClassInfo& info = boundClass().getClassInfo();
};

TEST_F(ClassDefinition, hasTheMethodsInTheirOrder) {
    std::vector<std::string> expected;
    for (const MethodRow& row : methodRows()) expected.push_back(row.name);
    std::vector<std::string> names;
    for (const auto& method : boundClass().getMethods())
        names.emplace_back(method->getMethodName());
    EXPECT_EQ(names, expected);
}

TEST_F(ClassDefinition, hasTheProperties) {
    const std::vector<kobj::COSProperty>& properties = boundClass().getProperties();
    ASSERT_EQ(properties.size(), 2U);
    EXPECT_EQ(properties[0].name, "StringTree");
    EXPECT_EQ(properties[0].type, "char vector");
    EXPECT_EQ(properties[1].name, "Frequencies");
    EXPECT_EQ(properties[1].type, "double vector");
    for (const kobj::COSProperty& property : properties) {
        EXPECT_EQ(property.getAccess, 0);
        EXPECT_EQ(property.setAccess, 2);
        EXPECT_EQ(property.flags, 0x840);
        EXPECT_EQ(property.origin, 0);
        EXPECT_NE(property.get, nullptr);
        EXPECT_NE(property.set, nullptr);
        EXPECT_NE(property.release, nullptr);
    }
}

TEST_F(ClassDefinition, tellsItsName) {
    EXPECT_STREQ(info.getClassName(), "HuffmanPaths");
    EXPECT_EQ(boundClass().getFullName(), kClassName);
    EXPECT_EQ(boundClass().getAccess(), 0);
    EXPECT_EQ(boundClass().getOrigin(), 2);
}

TEST_F(ClassDefinition, passesObjectsByReference) {
    EXPECT_EQ(info.getPassingMode(), 0);
    EXPECT_TRUE(info.canBePassedByReference());
}

TEST_F(ClassDefinition, sharesItsObjectsBetweenCopiesOfAnArray) {
    korvex::Object object = holding(smallListing());
    const korvex::Array array = object.toArray();
    const korvex::Array copy(kxDuplicateArray(array.get()));
    korvex::Object same(kobj::omGetArrayElement(copy.get(), 0));
    add(same, {{{u"/"}}, {{u"t"}}});
    EXPECT_EQ(joined(object, {4}), Names{u"/t"});
}

TEST_F(ClassDefinition, leavesSavingToTheHost) {
    kobj::COSInterfacePtr object = newObject();
    kobj::COSValue saved;
    EXPECT_FALSE(info.customSave(object, saved));
    EXPECT_EQ(saved.array(), nullptr);
}

TEST_F(ClassDefinition, makesAnInstanceForEachObject) {
    const std::size_t before = foundation::core::liveObjects().instances;
    {
        const kobj::COSInterfacePtr one = newObject();
        const kobj::COSInterfacePtr other = newObject();
        EXPECT_NE(one->getInstanceData(kClassName), nullptr);
        EXPECT_NE(one->getInstanceData(kClassName), other->getInstanceData(kClassName));
        EXPECT_EQ(foundation::core::liveObjects().instances, before + 2);
    }
    EXPECT_EQ(foundation::core::liveObjects().instances, before);
}

TEST_F(ClassDefinition, ignoresAnInstanceThatIsNotThere) {
    const foundation::core::LiveObjects before = foundation::core::liveObjects();
    info.deallocateInstance(nullptr, nullptr);
    EXPECT_TRUE(foundation::core::liveObjects() == before);
}

TEST_F(ClassDefinition, refusesObjectsThatAreNone) {
    const korvex::Array number = numbers({1});
    for (const char* method : {"getPaths", "getNextPath", "hasNextPath", "reset", "serialize"}) {
        MethodCall call(method, method == std::string_view("reset") ? 0 : 1);
        std::vector<const kxArray*> inputs{number.get()};
        if (method == std::string_view("getPaths")) inputs.push_back(number.get());
        expectHostError("KORVEX:kobj:notAnObject", {"double"}, [&] { call.run(inputs); });
        EXPECT_EQ(call.outputs()[0], nullptr);
    }
}

TEST_F(ClassDefinition, refusesCallsWithWrongCountsFromHostPrograms) {
    korvex::Object object = holding(smallListing());
    const korvex::Array first = numbers({1});
    const korvex::Array separator = text(u"/");
    expectError("KORVEX:matrix:notEnoughInputs", [&] { object.call("getPaths", 1); });
    expectError("KORVEX:matrix:tooManyInputs",
                [&] { object.call("getPaths", 1, first, separator, separator); });
    expectError("KORVEX:matrix:tooManyOutputs", [&] { object.call("getPaths", 3, first); });
    expectError("KORVEX:matrix:tooManyOutputs", [&] { object.call("addPaths", 1, first, first); });
    expectError("KORVEX:matrix:tooManyInputs",
                [&] { construct(text(u"copy"), object.toArray(), first, first, first); });
    expectHolds(object, smallPaths());
}

}  // namespace
}  // namespace binding_tests
