#include "host/runtime/Object.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>

#include "tests/host/runtime/CountersTest.hpp"

namespace korvex {
namespace {

double addressOf(const Array& array) {
    return static_cast<double>(std::bit_cast<std::uintptr_t>(array.get()));
}

using ObjectTest = CountersTest;

// --- Inputs.

TEST_F(ObjectTest, callsAMethodOnItself) {
    Object counter = makeCounter(number(3));
    const auto outputs = counter.call("add", 1, number(4));
    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_EQ(numberIn(outputs[0]), 7.0);
    EXPECT_EQ(numberIn(counter.get("Total")), 7.0);
}

TEST_F(ObjectTest, isTheSameInItsCopies) {
    Object counter = makeCounter(number(3));
    Object copy = counter;
    copy.call("add", 0, number(4));
    EXPECT_EQ(numberIn(counter.get("Total")), 7.0);
}

TEST_F(ObjectTest, convertsInputsToTheirDeclaredTypes) {
    Object counter = makeCounter();
    EXPECT_EQ(numberIn(counter.call("add", 1, bytes(std::vector<std::uint8_t>{200, 55}))[0]),
              255.0);
    EXPECT_EQ(numberIn(counter.call("add", 1, text(u"A"))[0]), 320.0);
}

TEST_F(ObjectTest, passesInputsOnWithoutCopyingThem) {
    Object counter = makeCounter();
    const Array texts(kxCreateCell({65536, 1}));
    const Array values(kxCreateNumeric(kxClass::kDouble, {65536, 1}));
    const Array anything(kxCreateCell({65536, 1}));
    const auto outputs = counter.call("addressesOf", 3, texts, values, anything);
    EXPECT_EQ(numberIn(outputs.at(0)), addressOf(texts));
    EXPECT_EQ(numberIn(outputs.at(1)), addressOf(values));
    EXPECT_EQ(numberIn(outputs.at(2)), addressOf(anything));
}

TEST_F(ObjectTest, convertsOnlyTheInputsThatNeedIt) {
    Object counter = makeCounter();
    const Array texts(kxCreateCell({1, 1}));
    const Array characters = text(u"A");
    const auto outputs = counter.call("addressesOf", 3, texts, characters, characters);
    EXPECT_EQ(numberIn(outputs.at(0)), addressOf(texts));
    EXPECT_NE(numberIn(outputs.at(1)), addressOf(characters));
    EXPECT_EQ(numberIn(outputs.at(2)), addressOf(characters));
}

TEST_F(ObjectTest, tellsWhichInputIsOfAWrongType) {
    Object counter = makeCounter(number(3));
    EXPECT_EQ(failureOf([&] { counter.call("add", 1, cellOf()); }),
              refusalOf<KORVEX::runtime::wrongInput>("add", "amounts", "double vector", "cell"));
    EXPECT_EQ(numberIn(counter.get("Total")), 3.0);
}

TEST_F(ObjectTest, tellsWhichInputIsOfAWrongShape) {
    Object counter = makeCounter();
    const Array square(kxCreateNumeric(kxClass::kDouble, {2, 2}));
    EXPECT_EQ(failureOf([&] { counter.call("add", 1, square); }),
              refusalOf<KORVEX::runtime::wrongInput>("add", "amounts", "double vector",
                                                     "double of 2 by 2"));
}

TEST_F(ObjectTest, tellsWhichInputIsNotThere) {
    Object counter = makeCounter();
    EXPECT_EQ(failureOf([&] { counter.call("addressesOf", 3, cellOf(), number(1), Array()); }),
              refusalOf<KORVEX::runtime::wrongInput>("addressesOf", "4", "any", "nothing"));
}

TEST_F(ObjectTest, leavesTheCheckOfCountsToTheMethod) {
    Object counter = makeCounter();
    const Array wrong = cellOf();
    EXPECT_EQ(failureOf([&] { counter.call("add", 1); }).identifier,
              "KORVEX:matrix:notEnoughInputs");
    EXPECT_EQ(failureOf([&] { counter.call("add", 1, wrong, wrong); }).identifier,
              "KORVEX:matrix:tooManyInputs");
    EXPECT_EQ(failureOf([&] { counter.call("add", 2, wrong); }).identifier,
              "KORVEX:matrix:tooManyOutputs");
    EXPECT_EQ(failureOf([&] { counter.call("add", -1, wrong); }).identifier,
              "KORVEX:matrix:invalidOutputCount");
    EXPECT_EQ(failureOf([&] {
                  counter.call("add", std::numeric_limits<std::int32_t>::max(), wrong);
              }).identifier,
              "KORVEX:matrix:tooManyOutputs");
}

TEST_F(ObjectTest, hasNoMethodsButThoseOfItsClass) {
    Object counter = makeCounter();
    EXPECT_EQ(failureOf([&] { counter.call("subtract", 0); }),
              refusalOf<KORVEX::kobj::noSuchMethod>("korvex.tests.Counter", "subtract"));
}

TEST_F(ObjectTest, cannotBeConstructedOnceMore) {
    Object counter = makeCounter();
    EXPECT_EQ(failureOf([&] { counter.call("Counter", 1, number(1)); }).identifier,
              "KORVEX:kobj:noSuchMethod");
}

TEST_F(ObjectTest, isRefusedWhereAnotherClassIsDeclared) {
    Object letter = session_.construct("korvex.tests.Letter");
    const Object counter = makeCounter();
    EXPECT_EQ(failureOf([&] { letter.call("isSameAs", 1, counter.toArray()); }),
              refusalOf<KORVEX::runtime::wrongInput>("isSameAs", "other", "korvex.tests.Letter",
                                                     "korvex.tests.Counter"));
}

TEST_F(ObjectTest, isPassedOnAsItself) {
    Object letter = session_.construct("korvex.tests.Letter");
    const Object other = session_.construct("korvex.tests.Letter");
    EXPECT_EQ(numberIn(letter.call("isSameAs", 1, letter.toArray())[0]), 1.0);
    EXPECT_EQ(numberIn(letter.call("isSameAs", 1, other.toArray())[0]), 0.0);
}

// --- Outputs. "give" puts the elements of a cell into its output slots, save "-", and sets the
// --- number of outputs.

TEST_F(ObjectTest, givesAsManyOutputsAsTheMethodSays) {
    Object counter = makeCounter();
    const auto outputs =
        counter.call("give", 0, number(2), cellOf(number(1), text(u"two"), text(u"-")));
    ASSERT_EQ(outputs.size(), 2U);
    EXPECT_EQ(numberIn(outputs[0]), 1.0);
    EXPECT_EQ(kxGetCharacters(outputs[1].get()), u"two");
}

TEST_F(ObjectTest, givesMoreOutputsIfTheMethodSetsThem) {
    Object counter = makeCounter();
    const auto outputs =
        counter.call("give", 1, number(1), cellOf(number(1), text(u"two"), number(3)));
    ASSERT_EQ(outputs.size(), 3U);
    EXPECT_EQ(numberIn(outputs[2]), 3.0);
}

TEST_F(ObjectTest, givesAnOutputThatNobodyAskedFor) {
    Object letter = session_.construct("korvex.tests.Letter");
    EXPECT_EQ(letter.call("isSameAs", 0, letter.toArray()).size(), 1U);
}

TEST_F(ObjectTest, dropsOutputsBehindAGap) {
    Object counter = makeCounter();
    const auto outputs =
        counter.call("give", 0, number(0), cellOf(text(u"-"), text(u"two"), number(3)));
    EXPECT_TRUE(outputs.empty());
}

TEST_F(ObjectTest, givesAnEmptyArrayForAnOptionalOutputThatIsLeftOut) {
    Object counter = makeCounter();
    const auto outputs =
        counter.call("give", 3, number(3), cellOf(number(1), text(u"two"), text(u"-")));
    ASSERT_EQ(outputs.size(), 3U);
    EXPECT_TRUE(outputs[1]);
    EXPECT_FALSE(outputs[2]);
}

TEST_F(ObjectTest, missesAnOutputThatWasAskedFor) {
    Object counter = makeCounter();
    const Failure missing = refusalOf<KORVEX::runtime::missingOutput>("give", "2");
    for (const double announced : {0, 1, 2, 3}) {
        EXPECT_EQ(failureOf([&] { counter.call("give", 2, number(announced), cellOf(number(1))); }),
                  missing);
    }
}

TEST_F(ObjectTest, missesAnOutputThatTheMethodAnnounces) {
    Object counter = makeCounter();
    EXPECT_EQ(failureOf([&] { counter.call("give", 0, number(1), cellOf()); }).identifier,
              "KORVEX:runtime:missingOutput");
    EXPECT_EQ(failureOf([&] {
                  counter.call("give", 3, number(5), cellOf(number(1), text(u"two"), number(3)));
              }),
              refusalOf<KORVEX::runtime::missingOutput>("give", "4"));
}

TEST_F(ObjectTest, takesANegativeNumberOfOutputsForNone) {
    Object counter = makeCounter();
    EXPECT_TRUE(counter.call("give", 0, number(-1), cellOf()).empty());
}

TEST_F(ObjectTest, convertsOutputsToTheirDeclaredTypes) {
    Object counter = makeCounter();
    const auto outputs =
        counter.call("give", 1, number(1), cellOf(bytes(std::vector<std::uint8_t>{9})));
    EXPECT_EQ(kxGetClass(outputs.at(0).get()), kxClass::kDouble);
    EXPECT_EQ(numberIn(outputs[0]), 9.0);
}

TEST_F(ObjectTest, tellsWhichOutputIsOfAWrongType) {
    Object counter = makeCounter();
    EXPECT_EQ(failureOf([&] { counter.call("give", 1, number(1), cellOf(cellOf())); }),
              refusalOf<KORVEX::runtime::wrongOutput>("give", "first", "double", "cell"));
    EXPECT_EQ(failureOf([&] { counter.call("give", 1, number(1), cellOf(number(1), number(2))); }),
              refusalOf<KORVEX::runtime::wrongOutput>("give", "2", "char vector", "double"));
}

TEST_F(ObjectTest, freesTheOutputsOfAMethodThatFails) {
    Object counter = makeCounter();
    const std::size_t before = foundation::core::liveObjects().arrays;
    EXPECT_THROW(counter.call("fail", 2, text(u"standard")), Error);
    EXPECT_EQ(foundation::core::liveObjects().arrays, before);
}

// --- Properties.

TEST_F(ObjectTest, setsAndGetsProperties) {
    Object counter = makeCounter();
    counter.set("Total", number(12));
    counter.set("Unit", text(u"m"));
    EXPECT_EQ(numberIn(counter.get("Total")), 12.0);
    EXPECT_EQ(kxGetCharacters(counter.get("Unit").get()), u"m");
}

TEST_F(ObjectTest, convertsPropertiesToTheirDeclaredTypes) {
    Object counter = makeCounter();
    counter.set("Total", bytes(std::vector<std::uint8_t>{12}));
    EXPECT_EQ(numberIn(counter.get("Total")), 12.0);
    EXPECT_EQ(kxGetClass(counter.get("WasLoaded").get()), kxClass::kDouble);
}

TEST_F(ObjectTest, refusesAPropertyValueOfAWrongType) {
    Object counter = makeCounter(number(1));
    EXPECT_EQ(failureOf([&] { counter.set("Total", cellOf()); }),
              refusalOf<KORVEX::runtime::wrongProperty>("Total", "double scalar", "cell"));
    EXPECT_EQ(
        failureOf([&] { counter.set("Total", numbers({})); }),
        refusalOf<KORVEX::runtime::wrongProperty>("Total", "double scalar", "double of 0 by 1"));
    EXPECT_EQ(failureOf([&] { counter.set("Total", Array()); }).identifier,
              "KORVEX:runtime:wrongProperty");
    EXPECT_EQ(numberIn(counter.get("Total")), 1.0);
}

TEST_F(ObjectTest, refusesWhatAnAccessorGivesOfAWrongType) {
    const Object counter = makeCounter();
    EXPECT_EQ(failureOf([&] { counter.get("TotalAsCell"); }),
              refusalOf<KORVEX::runtime::wrongProperty>("TotalAsCell", "cell", "double"));
    EXPECT_EQ(failureOf([&] { counter.get("Nothing"); }).identifier,
              "KORVEX:runtime:wrongProperty");
}

TEST_F(ObjectTest, passesErrorsOfAccessorsOn) {
    Object counter = makeCounter();
    EXPECT_EQ(failureOf([&] { counter.set("Total", number(-2)); }),
              (Failure{"KORVEX:tests:negativeTotal", "a total cannot be -2"}));
}

TEST_F(ObjectTest, hasNoPropertiesButThoseOfItsClass) {
    Object counter = makeCounter();
    const Failure missing =
        refusalOf<KORVEX::kobj::noSuchProperty>("korvex.tests.Counter", "Colour");
    EXPECT_EQ(failureOf([&] { counter.get("Colour"); }), missing);
    EXPECT_EQ(failureOf([&] { counter.set("Colour", number(1)); }), missing);
}

// --- Saving.

TEST_F(ObjectTest, isSavedAsAStructureOfWhatItSerializes) {
    Object counter = makeCounter(number(3), text(u"km"));
    const Array saved = counter.save({"total", "unit"});
    EXPECT_EQ(kxGetClass(saved.get()), kxClass::kStructure);
    EXPECT_EQ(kxGetNumberOfElements(saved.get()), 1U);
    EXPECT_EQ(kxGetNumber(kxGetField(saved.get(), 0, "total"), 0), 3.0);
    EXPECT_EQ(kxGetCharacters(kxGetField(saved.get(), 0, "unit")), u"km");
}

TEST_F(ObjectTest, isSavedWithTheFieldsThatAreNamed) {
    Object counter = makeCounter(number(3), text(u"km"));
    const Array saved = counter.save({"total"});
    const auto names = kxGetFieldNames(saved.get());
    EXPECT_EQ(std::vector<std::string>(names.begin(), names.end()),
              std::vector<std::string>{"total"});
}

TEST_F(ObjectTest, isNotSavedUnderMoreNamesThanItSerializes) {
    Object counter = makeCounter();
    EXPECT_EQ(failureOf([&] {
                  counter.save({"a", "b", "c"});
              }).identifier,
              "KORVEX:matrix:tooManyOutputs");
    EXPECT_EQ(failureOf([&] {
                  counter.save({"a", "a"});
              }).identifier,
              "KORVEX:arrays:repeatedField");
}

TEST_F(ObjectTest, isSavedByItsClassIfThatWantsTo) {
    Object letter = session_.construct("korvex.tests.Letter", text(u"Dear all"));
    EXPECT_EQ(kxGetCharacters(letter.save({"total"}).get()), u"Dear all");
    EXPECT_FALSE(session_.construct("korvex.tests.Letter").save({"total"}));
}

TEST_F(ObjectTest, isNotSavedWithoutAWayToDoIt) {
    Object bare = session_.load("korvex.tests.Bare", Array());
    EXPECT_EQ(failureOf([&] { bare.save({"total"}); }).identifier, "KORVEX:kobj:noSuchMethod");
}

}  // namespace
}  // namespace korvex
