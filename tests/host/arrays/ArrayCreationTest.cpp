#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "host/arrays/ArrayErrors.hpp"
#include "host/arrays/kxArray.hpp"
#include "tests/host/BalancedTest.hpp"
#include "tests/host/Refusals.hpp"
#include "tests/host/arrays/NamedObject.hpp"

namespace {

using foundation::core::except::bad_alloc;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t kHuge = std::numeric_limits<std::size_t>::max();

/// A class of elements that lie in memory as they are.
struct ElementClass {
    kxClass elementClass;
    const char* name;
    std::size_t byteSize;
};
void PrintTo(const ElementClass& elements, std::ostream* out) {
    *out << elements.name;
}

class ElementCreation : public BalancedTest, public testing::WithParamInterface<ElementClass> {};

bool isAllZero(const kxArray* array) {
    for (std::size_t i = 0; i < kxGetNumberOfElements(array); ++i)
        if (kxGetNumber(array, i) != 0) return false;
    return true;
}

TEST_P(ElementCreation, givesZerosOfTheWantedClassAndDimensions) {
    const kxArrayPtr array(kxCreateNumeric(GetParam().elementClass, {3, 2}));
    EXPECT_EQ(kxGetClass(array.get()), GetParam().elementClass);
    EXPECT_EQ(kxGetClassName(array.get()), GetParam().name);
    EXPECT_THAT(kxGetDimensions(array.get()), ElementsAre(3, 2));
    EXPECT_EQ(kxGetNumberOfElements(array.get()), 6U);
    EXPECT_TRUE(isAllZero(array.get()));
}

TEST_P(ElementCreation, givesUnsetElementsOfTheWantedClassAndDimensions) {
    const kxArrayPtr array(kxCreateUninitialized(GetParam().elementClass, {3, 2}));
    EXPECT_EQ(kxGetClass(array.get()), GetParam().elementClass);
    EXPECT_THAT(kxGetDimensions(array.get()), ElementsAre(3, 2));
    EXPECT_EQ(kxGetNumberOfElements(array.get()), 6U);
}

TEST_P(ElementCreation, takesAnyNumberOfDimensions) {
    for (std::size_t count = 1; count <= 100; ++count) {
        kxDimensions dimensions(count, 1);
        dimensions.back() = 7;
        const kxArrayPtr array(kxCreateNumeric(GetParam().elementClass, dimensions));
        EXPECT_THAT(kxGetDimensions(array.get()), testing::ElementsAreArray(dimensions));
        EXPECT_EQ(kxGetNumberOfElements(array.get()), 7U);
        EXPECT_TRUE(isAllZero(array.get()));
    }
}

TEST_P(ElementCreation, givesNoElementsWithoutDimensions) {
    const kxArrayPtr array(kxCreateNumeric(GetParam().elementClass, {}));
    EXPECT_THAT(kxGetDimensions(array.get()), IsEmpty());
    EXPECT_EQ(kxGetNumberOfElements(array.get()), 0U);
}

TEST_P(ElementCreation, givesNoElementsIfADimensionIsZero) {
    for (const kxDimensions& dimensions :
         {kxDimensions{0, 0}, kxDimensions{5, 0, 3}, kxDimensions{kHuge, kHuge, 0}}) {
        const kxArrayPtr array(kxCreateNumeric(GetParam().elementClass, dimensions));
        EXPECT_THAT(kxGetDimensions(array.get()), testing::ElementsAreArray(dimensions));
        EXPECT_EQ(kxGetNumberOfElements(array.get()), 0U);
    }
}

TEST_P(ElementCreation, refusesDimensionsWhoseProductOverflows) {
    const auto create = [] {
        kxCreateNumeric(GetParam().elementClass, {std::size_t{1} << 32U, std::size_t{1} << 32U, 1});
    };
    EXPECT_EQ(refusal<KORVEX::arrays::tooManyElements>(create),
              (Arguments{"4294967296 by 4294967296 by 1"}));
}

TEST_P(ElementCreation, refusesElementsWhoseBytesOverflow) {
    // The elements alone could be counted in bytes, but not with what stands before them.
    const std::size_t count = kHuge / GetParam().byteSize;
    for (const bool isZeroed : {true, false}) {
        const auto create = [&] {
            isZeroed ? kxCreateNumeric(GetParam().elementClass, {count, 1})
                     : kxCreateUninitialized(GetParam().elementClass, {count, 1});
        };
        EXPECT_EQ(refusal<KORVEX::arrays::tooManyElements>(create),
                  (Arguments{std::to_string(count) + " by 1"}));
    }
}

TEST_P(ElementCreation, saysWhenMemoryCannotBeHad) {
    const std::size_t count = (kHuge >> 2U) / GetParam().byteSize;
    EXPECT_THROW(kxCreateNumeric(GetParam().elementClass, {count, 1}), bad_alloc);
    EXPECT_THROW(kxCreateUninitialized(GetParam().elementClass, {1, count}), bad_alloc);
}

TEST_P(ElementCreation, duplicatesElements) {
    const kxArrayPtr array(kxCreateNumeric(GetParam().elementClass, {2, 1, 3}));
    const kxArrayPtr copy(kxDuplicateArray(array.get()));
    EXPECT_NE(copy, array);
    EXPECT_EQ(kxGetClass(copy.get()), GetParam().elementClass);
    EXPECT_THAT(kxGetDimensions(copy.get()), ElementsAre(2, 1, 3));
    EXPECT_TRUE(isAllZero(copy.get()));
}

INSTANTIATE_TEST_SUITE_P(Classes, ElementCreation,
                         testing::Values(ElementClass{kxClass::kDouble, "double", 8},
                                         ElementClass{kxClass::kInt8, "int8", 1},
                                         ElementClass{kxClass::kUint8, "uint8", 1},
                                         ElementClass{kxClass::kInt16, "int16", 2},
                                         ElementClass{kxClass::kUint16, "uint16", 2},
                                         ElementClass{kxClass::kInt32, "int32", 4},
                                         ElementClass{kxClass::kUint32, "uint32", 4},
                                         ElementClass{kxClass::kInt64, "int64", 8},
                                         ElementClass{kxClass::kUint64, "uint64", 8},
                                         ElementClass{kxClass::kLogical, "logical", 1},
                                         ElementClass{kxClass::kCharacter, "char", 2}),
                         [](const auto& test) { return std::string(test.param.name); });

class ArrayCreation : public BalancedTest {};

TEST_F(ArrayCreation, refusesNumbersOfClassesThatHoldNone) {
    for (const auto& [elementClass, name] :
         {std::pair{kxClass::kCell, "cell"}, std::pair{kxClass::kStructure, "struct"},
          std::pair{kxClass::kObject, "object"}}) {
        const auto zeros = [wanted = elementClass] { kxCreateNumeric(wanted, {1, 1}); };
        const auto unset = [wanted = elementClass] { kxCreateUninitialized(wanted, {1, 1}); };
        EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>(zeros), (Arguments{"numeric", name}));
        EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>(unset), (Arguments{"numeric", name}));
    }
}

TEST_F(ArrayCreation, refusesAClassThatIsNone) {
    const auto create = [] { kxCreateNumeric(static_cast<kxClass>(200), {1, 1}); };
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>(create), (Arguments{"numeric", "unknown"}));
}

TEST_F(ArrayCreation, givesARowOfCharacters) {
    const kxArrayPtr row(kxCreateCharacters(u"a.txt"));
    EXPECT_EQ(kxGetClass(row.get()), kxClass::kCharacter);
    EXPECT_THAT(kxGetDimensions(row.get()), ElementsAre(1, 5));
    EXPECT_EQ(kxGetCharacters(row.get()), u"a.txt");
}

TEST_F(ArrayCreation, givesARowOfNoCharacters) {
    for (const std::u16string_view none : {std::u16string_view(), std::u16string_view(u"")}) {
        const kxArrayPtr row(kxCreateCharacters(none));
        EXPECT_THAT(kxGetDimensions(row.get()), ElementsAre(1, 0));
        EXPECT_EQ(kxGetCharacters(row.get()), u"");
    }
}

TEST_F(ArrayCreation, keepsEveryCodeUnitOfARow) {
    std::u16string all(0x10000, u'\0');
    for (std::size_t unit = 0; unit < all.size(); ++unit) all[unit] = static_cast<char16_t>(unit);
    const kxArrayPtr row(kxCreateCharacters(all));
    EXPECT_EQ(kxGetCharacters(row.get()), all);
}

TEST_F(ArrayCreation, copiesTheCharactersOfARow) {
    std::u16string text = u"name";
    const kxArrayPtr row(kxCreateCharacters(text));
    text = u"gone";
    EXPECT_EQ(kxGetCharacters(row.get()), u"name");
}

TEST_F(ArrayCreation, givesCellsOfEmptyPlaces) {
    const kxArrayPtr cell(kxCreateCell({2, 3, 4}));
    EXPECT_EQ(kxGetClass(cell.get()), kxClass::kCell);
    EXPECT_EQ(kxGetClassName(cell.get()), "cell");
    EXPECT_THAT(kxGetDimensions(cell.get()), ElementsAre(2, 3, 4));
    EXPECT_EQ(kxGetNumberOfElements(cell.get()), 24U);
}

TEST_F(ArrayCreation, givesStructuresWithTheirFieldsInOrder) {
    const kxArrayPtr structure(kxCreateStructure({2, 3}, {"name", "age", "Name"}));
    EXPECT_EQ(kxGetClass(structure.get()), kxClass::kStructure);
    EXPECT_EQ(kxGetClassName(structure.get()), "struct");
    EXPECT_THAT(kxGetDimensions(structure.get()), ElementsAre(2, 3));
    EXPECT_EQ(kxGetNumberOfElements(structure.get()), 6U);
    EXPECT_THAT(kxGetFieldNames(structure.get()), ElementsAre("name", "age", "Name"));
}

TEST_F(ArrayCreation, givesStructuresWithoutFieldsOrElements) {
    const kxArrayPtr noFields(kxCreateStructure({5, 1}, {}));
    EXPECT_EQ(kxGetNumberOfElements(noFields.get()), 5U);
    EXPECT_THAT(kxGetFieldNames(noFields.get()), IsEmpty());
    const kxArrayPtr noElements(kxCreateStructure({}, {"name"}));
    EXPECT_EQ(kxGetNumberOfElements(noElements.get()), 0U);
    EXPECT_THAT(kxGetFieldNames(noElements.get()), ElementsAre("name"));
}

TEST_F(ArrayCreation, refusesFieldsOfOneName) {
    const std::vector<std::string> names = {"name", "age", "size", "age"};
    EXPECT_EQ(refusal<KORVEX::arrays::repeatedField>([&] {
                  kxCreateStructure({1, 1}, names);
              }),
              (Arguments{"age"}));
    const auto create = [&] { kxCreateObjectWithFields("korvex.Person", {1, 1}, names); };
    EXPECT_EQ(refusal<KORVEX::arrays::repeatedField>(create), (Arguments{"age"}));
}

TEST_F(ArrayCreation, givesAnArrayOfOneSharedObject) {
    const std::shared_ptr<kxObject> object = circle();
    const kxArrayPtr array(kxCreateObject(object));
    EXPECT_EQ(kxGetClass(array.get()), kxClass::kObject);
    EXPECT_EQ(kxGetClassName(array.get()), "korvex.shapes.Circle");
    EXPECT_THAT(kxGetDimensions(array.get()), ElementsAre(1, 1));
    EXPECT_EQ(kxGetNumberOfElements(array.get()), 1U);
    EXPECT_EQ(object.use_count(), 2);
}

TEST_F(ArrayCreation, letsGoOfTheObjectWithTheArray) {
    const std::shared_ptr<kxObject> object = circle();
    kxDestroyArray(kxCreateObject(object));
    EXPECT_EQ(object.use_count(), 1);
}

TEST_F(ArrayCreation, refusesNullForAnObject) {
    EXPECT_EQ(refusal<KORVEX::arrays::noObject>([] { kxCreateObject(nullptr); }), Arguments{});
}

TEST_F(ArrayCreation, givesObjectsWithFieldsOfTheirOwn) {
    const kxArrayPtr array(kxCreateObjectWithFields("korvex.Person", {2, 1}, {"name", "age"}));
    EXPECT_EQ(kxGetClass(array.get()), kxClass::kObject);
    EXPECT_EQ(kxGetClassName(array.get()), "korvex.Person");
    EXPECT_THAT(kxGetDimensions(array.get()), ElementsAre(2, 1));
    EXPECT_THAT(kxGetFieldNames(array.get()), ElementsAre("name", "age"));
}

TEST_F(ArrayCreation, refusesPlacesThatCannotBeAddressed) {
    const auto cell = [] { kxCreateCell({kHuge / 8, 1}); };
    const auto structure = [] { kxCreateStructure({kHuge / 16, 1}, {"a", "b"}); };
    const auto object = [] { kxCreateObjectWithFields("korvex.Person", {kHuge, 2}, {"a"}); };
    const std::string byOne = " by 1";
    EXPECT_EQ(refusal<KORVEX::arrays::tooManyElements>(cell),
              (Arguments{std::to_string(kHuge / 8) + byOne}));
    EXPECT_EQ(refusal<KORVEX::arrays::tooManyElements>(structure),
              (Arguments{std::to_string(kHuge / 16) + byOne}));
    EXPECT_EQ(refusal<KORVEX::arrays::tooManyElements>(object),
              (Arguments{std::to_string(kHuge) + " by 2"}));
}

TEST_F(ArrayCreation, saysWhenMemoryForPlacesCannotBeHad) {
    EXPECT_THROW(kxCreateCell({kHuge / 32, 1}), bad_alloc);
    EXPECT_THROW(kxCreateStructure({kHuge / 64, 1}, {"a", "b"}), bad_alloc);
    EXPECT_THROW(kxCreateObjectWithFields("korvex.Person", {kHuge / 32, 1}, {"a"}), bad_alloc);
}

TEST_F(ArrayCreation, duplicatesTheValuesOfElements) {
    const kxArrayPtr array(kxCreateNumeric(kxClass::kInt32, {3, 1}));
    std::ranges::copy(std::vector<std::int32_t>{-1, 0, 70'000},
                      kxGetData<std::int32_t>(array.get()).begin());
    const kxArrayPtr copy(kxDuplicateArray(array.get()));
    kxGetData<std::int32_t>(array.get())[0] = 5;
    EXPECT_THAT(kxGetData<std::int32_t>(copy.get()), ElementsAre(-1, 0, 70'000));
}

TEST_F(ArrayCreation, duplicatesCellsWithWhatTheyHold) {
    const kxArrayPtr cell(kxCreateCell({2, 1}));
    kxReplaceCell(cell.get(), 1, kxCreateCharacters(u"name"));
    const kxArrayPtr copy(kxDuplicateArray(cell.get()));
    kxReplaceCell(cell.get(), 1, nullptr);
    EXPECT_THAT(kxGetDimensions(copy.get()), ElementsAre(2, 1));
    EXPECT_EQ(kxGetNumberOfElements(kxGetCell(copy.get(), 0)), 0U);
    EXPECT_EQ(kxGetCharacters(kxGetCell(copy.get(), 1)), u"name");
}

TEST_F(ArrayCreation, duplicatesStructuresWithWhatTheyHold) {
    const kxArrayPtr structure(kxCreateStructure({2, 1}, {"name", "age"}));
    kxReplaceField(structure.get(), 1, "name", kxCreateCharacters(u"Ann"));
    const kxArrayPtr copy(kxDuplicateArray(structure.get()));
    kxReplaceField(structure.get(), 1, "name", nullptr);
    EXPECT_EQ(kxGetClass(copy.get()), kxClass::kStructure);
    EXPECT_THAT(kxGetFieldNames(copy.get()), ElementsAre("name", "age"));
    EXPECT_EQ(kxGetCharacters(kxGetField(copy.get(), 1, "name")), u"Ann");
    EXPECT_EQ(kxGetNumberOfElements(kxGetField(copy.get(), 0, "name")), 0U);
}

TEST_F(ArrayCreation, duplicatesObjectsWithFieldsWithTheirClass) {
    const kxArrayPtr object(kxCreateObjectWithFields("korvex.Person", {1, 1}, {"name"}));
    kxReplaceField(object.get(), 0, "name", kxCreateCharacters(u"Ann"));
    const kxArrayPtr copy(kxDuplicateArray(object.get()));
    EXPECT_EQ(kxGetClass(copy.get()), kxClass::kObject);
    EXPECT_EQ(kxGetClassName(copy.get()), "korvex.Person");
    EXPECT_EQ(kxGetCharacters(kxGetField(copy.get(), 0, "name")), u"Ann");
}

TEST_F(ArrayCreation, sharesObjectsWithDuplicates) {
    const std::shared_ptr<kxObject> object = circle();
    kxArrayPtr array(kxCreateObject(object));
    const kxArrayPtr copy(kxDuplicateArray(array.get()));
    array.reset();
    EXPECT_EQ(kxGetObject(copy.get(), 0), object);
    EXPECT_EQ(object.use_count(), 2);
}

TEST_F(ArrayCreation, ignoresNullWhenFreeing) {
    const foundation::core::LiveObjects before = foundation::core::liveObjects();
    kxDestroyArray(nullptr);
    EXPECT_EQ(foundation::core::liveObjects(), before);
}

}  // namespace
