// The properties StringTree and Frequencies.

#include <gtest/gtest.h>

#include "tests/binding/BindingTest.hpp"
#include "tests/binding/MethodCall.hpp"

namespace binding_tests {
namespace {

class Properties : public BindingTest {
protected:
    Properties() : object(construct(text(u"frequencies"), text(u"abc"), numbers({1, 2, 4}))) {}

    static korvex::Array squareOf(kxClass elementClass) {
        return korvex::Array(kxCreateNumeric(elementClass, {2, 2}));
    }

    korvex::Object object;
};

TEST_F(Properties, giveCharactersAsARowAndFrequenciesAsAColumn) {
    EXPECT_EQ(nameIn(object.get("StringTree").get()), u"abc");
    EXPECT_EQ(dimensionsOf(object.get("Frequencies").get()), (kxDimensions{3, 1}));
    EXPECT_EQ(numbersIn(object.get("Frequencies").get()), (std::vector<double>{1, 2, 4}));
}

TEST_F(Properties, areEmptyInAnEmptyObject) {
    const korvex::Object empty = construct();
    EXPECT_EQ(dimensionsOf(empty.get("StringTree").get()), (kxDimensions{1, 0}));
    EXPECT_EQ(kxGetClass(empty.get("StringTree").get()), kxClass::kCharacter);
    EXPECT_EQ(dimensionsOf(empty.get("Frequencies").get()), (kxDimensions{0, 1}));
    EXPECT_EQ(kxGetClass(empty.get("Frequencies").get()), kxClass::kDouble);
}

TEST_F(Properties, giveBackWhatWasSet) {
    const std::u16string odd(u"\0\xD800z", 3);
    object.set("StringTree", text(odd));
    EXPECT_EQ(nameIn(object.get("StringTree").get()), odd);
    object.set("Frequencies", numbers({0.5, -1}));
    EXPECT_EQ(numbersIn(object.get("Frequencies").get()), (std::vector<double>{0.5, -1}));
    object.set("StringTree", text(u""));
    EXPECT_EQ(nameIn(object.get("StringTree").get()), u"");
    object.set("Frequencies", numbers({}));
    EXPECT_EQ(numbersIn(object.get("Frequencies").get()), std::vector<double>());
}

TEST_F(Properties, leaveTheSetAsItIs) {
    add(object, {{{u"a"}}, {{u"bc"}}});
    object.set("StringTree", text(u"xyz"));
    object.set("Frequencies", numbers({7}));
    expectHolds(object, {u"abc"});
    add(object, {{{u"a"}}, {{u"b"}}});
    expectHolds(object, {u"abc", u"ab"});
}

TEST_F(Properties, takeVectorsInEitherDirection) {
    korvex::Array column(kxCreateNumeric(kxClass::kCharacter, {2, 1}));
    kxGetData<char16_t>(column.get())[0] = u'p';
    kxGetData<char16_t>(column.get())[1] = u'q';
    object.set("StringTree", column);
    EXPECT_EQ(nameIn(object.get("StringTree").get()), u"pq");
    korvex::Array row(kxCreateNumeric(kxClass::kDouble, {1, 2}));
    kxGetData<double>(row.get())[1] = 3;
    object.set("Frequencies", row);
    EXPECT_EQ(dimensionsOf(object.get("Frequencies").get()), (kxDimensions{2, 1}));
    EXPECT_EQ(numbersIn(object.get("Frequencies").get()), (std::vector<double>{0, 3}));
}

TEST_F(Properties, takeNumbersOfOtherClassesAsFrequencies) {
    korvex::Array integers(kxCreateNumeric(kxClass::kInt32, {2, 1}));
    kxGetData<std::int32_t>(integers.get())[1] = -7;
    object.set("Frequencies", integers);
    EXPECT_EQ(numbersIn(object.get("Frequencies").get()), (std::vector<double>{0, -7}));
}

TEST_F(Properties, refuseWhatIsNotOfTheirTypes) {
    constexpr const char* kWrongProperty = "KORVEX:runtime:wrongProperty";
    expectError(kWrongProperty, [&] { object.set("StringTree", numbers({97})); });
    expectError(kWrongProperty, [&] { object.set("StringTree", squareOf(kxClass::kCharacter)); });
    expectError(kWrongProperty, [&] { object.set("Frequencies", listsOf({})); });
    expectError(kWrongProperty, [&] { object.set("Frequencies", squareOf(kxClass::kDouble)); });
    EXPECT_EQ(nameIn(object.get("StringTree").get()), u"abc");
    EXPECT_EQ(numbersIn(object.get("Frequencies").get()), (std::vector<double>{1, 2, 4}));
}

TEST_F(Properties, areTwo) {
    expectError("KORVEX:kobj:noSuchProperty", [&] { object.get("Paths"); });
    expectError("KORVEX:kobj:noSuchProperty", [&] { object.set("stringTree", text(u"a")); });
}

TEST_F(Properties, refuseAtTheBoundaryWhatCannotBeRead) {
    const kobj::COSInterfacePtr raw = newObject();
    const korvex::Array number = numbers({1});
    expectHostError("KORVEX:arrays:wrongClass", {"char", "double"},
                    [&] { boundClass().getProperty("StringTree").set(raw, number.get()); });
}

TEST_F(Properties, releaseTheArraysThatTheyMake) {
    const kobj::COSInterfacePtr raw = newObject();
    for (const kobj::COSProperty& property : boundClass().getProperties()) {
        const std::size_t before = foundation::core::liveObjects().arrays;
        kxArray* const value = property.get(raw);
        EXPECT_EQ(foundation::core::liveObjects().arrays, before + 1);
        property.release(value);
        EXPECT_EQ(foundation::core::liveObjects().arrays, before);
        property.release(nullptr);
        EXPECT_EQ(foundation::core::liveObjects().arrays, before);
    }
}

}  // namespace
}  // namespace binding_tests
