#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <thread>
#include <type_traits>
#include <vector>

#include "host/arrays/ArrayErrors.hpp"
#include "host/arrays/kxArray.hpp"
#include "tests/host/BalancedTest.hpp"
#include "tests/host/Refusals.hpp"
#include "tests/host/arrays/NamedObject.hpp"

namespace {

using testing::ElementsAre;

template <class T>
class ElementAccess : public BalancedTest {
protected:
    static constexpr kxClass kElementClass = arrays::detail::kClassOf<T>;
    static constexpr T kLowest = std::numeric_limits<T>::lowest();
    static constexpr T kHighest = std::numeric_limits<T>::max();

    /// Lowest, 1, highest, 0.
    static kxArrayPtr limits() {
        kxArrayPtr array(kxCreateNumeric(kElementClass, {2, 2}));
        const std::span<T> data = kxGetData<T>(array.get());
        data[0] = kLowest;
        data[1] = T{1};
        data[2] = kHighest;
        return array;
    }
};

using ElementTypes =
    testing::Types<double, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                   std::uint32_t, std::int64_t, std::uint64_t, bool, char16_t>;
TYPED_TEST_SUITE(ElementAccess, ElementTypes);

TYPED_TEST(ElementAccess, readsWhatWasWrittenInElementOrder) {
    const kxArrayPtr array = TestFixture::limits();
    const kxArray* constant = array.get();
    const std::span<const TypeParam> data = kxGetData<TypeParam>(constant);
    EXPECT_THAT(
        data, ElementsAre(TestFixture::kLowest, TypeParam{1}, TestFixture::kHighest, TypeParam{}));
}

TYPED_TEST(ElementAccess, givesElementsAsNumbers) {
    const kxArrayPtr array = TestFixture::limits();
    EXPECT_EQ(kxGetNumber(array.get(), 0), static_cast<double>(TestFixture::kLowest));
    EXPECT_EQ(kxGetNumber(array.get(), 1), 1);
    EXPECT_EQ(kxGetNumber(array.get(), 2), static_cast<double>(TestFixture::kHighest));
    EXPECT_EQ(kxGetNumber(array.get(), 3), 0);
}

TYPED_TEST(ElementAccess, refusesPositionsOutsideTheArray) {
    const kxArrayPtr array = TestFixture::limits();
    EXPECT_EQ(refusal<KORVEX::arrays::indexOutOfRange>([&] { kxGetNumber(array.get(), 4); }),
              (Arguments{"5", "4"}));
    const kxArrayPtr empty(kxCreateNumeric(TestFixture::kElementClass, {}));
    EXPECT_EQ(refusal<KORVEX::arrays::indexOutOfRange>([&] { kxGetNumber(empty.get(), 0); }),
              (Arguments{"1", "0"}));
}

TYPED_TEST(ElementAccess, refusesElementsOfAnotherType) {
    using Other = std::conditional_t<std::is_same_v<TypeParam, double>, std::int64_t, double>;
    const kxArrayPtr array = TestFixture::limits();
    const kxArray* constant = array.get();
    const Arguments arguments = {std::is_same_v<Other, double> ? "double" : "int64",
                                 kxGetClassName(constant)};
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { kxGetData<Other>(array.get()); }),
              arguments);
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { kxGetData<Other>(constant); }), arguments);
}

TYPED_TEST(ElementAccess, hasNoFields) {
    const kxArrayPtr array = TestFixture::limits();
    EXPECT_THAT(kxGetFieldNames(array.get()), testing::IsEmpty());
    EXPECT_EQ(kxGetFieldNumber(array.get(), "name"), -1);
}

class ArrayAccess : public BalancedTest {
protected:
    kxArrayPtr cell_;
    kxArrayPtr structure_;
    kxArrayPtr object_;
    kxArrayPtr person_;

    void SetUp() override {
        BalancedTest::SetUp();
        cell_.reset(kxCreateCell({1, 1}));
        structure_.reset(kxCreateStructure({1, 1}, {"name"}));
        object_.reset(kxCreateObject(circle()));
        person_.reset(kxCreateObjectWithFields("korvex.Person", {1, 1}, {"name"}));
    }
    void TearDown() override {
        for (kxArrayPtr* array : {&cell_, &structure_, &object_, &person_}) array->reset();
        BalancedTest::TearDown();
    }
};

TEST_F(ArrayAccess, readsCharactersInColumnOrder) {
    const kxArrayPtr array(kxCreateNumeric(kxClass::kCharacter, {2, 2}));
    std::ranges::copy(std::u16string(u"acbd"), kxGetData<char16_t>(array.get()).begin());
    EXPECT_EQ(kxGetCharacters(array.get()), u"acbd");
}

TEST_F(ArrayAccess, refusesCharactersOfOtherClasses) {
    const kxArrayPtr numbers(kxCreateNumeric(kxClass::kUint16, {1, 1}));
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { kxGetCharacters(numbers.get()); }),
              (Arguments{"char", "uint16"}));
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { kxGetCharacters(cell_.get()); }),
              (Arguments{"char", "cell"}));
}

TEST_F(ArrayAccess, refusesNumbersOfClassesThatHoldNone) {
    const auto numberOf = [](const kxArrayPtr& array) {
        return refusal<KORVEX::arrays::wrongClass>([&] { kxGetNumber(array.get(), 0); });
    };
    EXPECT_EQ(numberOf(cell_), (Arguments{"numeric", "cell"}));
    EXPECT_EQ(numberOf(structure_), (Arguments{"numeric", "struct"}));
    EXPECT_EQ(numberOf(object_), (Arguments{"numeric", "korvex.shapes.Circle"}));
    EXPECT_EQ(numberOf(person_), (Arguments{"numeric", "korvex.Person"}));
}

TEST_F(ArrayAccess, refusesDataOfClassesThatHoldNone) {
    const auto dataOf = [](const kxArrayPtr& array) {
        return refusal<KORVEX::arrays::wrongClass>([&] { kxGetData<double>(array.get()); });
    };
    EXPECT_EQ(dataOf(cell_), (Arguments{"double", "cell"}));
    EXPECT_EQ(dataOf(structure_), (Arguments{"double", "struct"}));
    EXPECT_EQ(dataOf(object_), (Arguments{"double", "korvex.shapes.Circle"}));
    EXPECT_EQ(dataOf(person_), (Arguments{"double", "korvex.Person"}));
}

TEST_F(ArrayAccess, roundsIntegersThatADoubleCannotHold) {
    const kxArrayPtr array(kxCreateNumeric(kxClass::kUint64, {1, 1}));
    kxGetData<std::uint64_t>(array.get())[0] = (std::uint64_t{1} << 53U) + 1;
    EXPECT_EQ(kxGetNumber(array.get(), 0), 9007199254740992.0);
}

TEST_F(ArrayAccess, givesTheSharedObject) {
    const std::shared_ptr<kxObject> object = circle();
    const kxArrayPtr array(kxCreateObject(object));
    EXPECT_EQ(kxGetObject(array.get(), 0), object);
    EXPECT_EQ(object.use_count(), 2);
}

TEST_F(ArrayAccess, refusesObjectsBehindTheOne) {
    EXPECT_EQ(refusal<KORVEX::arrays::indexOutOfRange>([&] { kxGetObject(object_.get(), 1); }),
              (Arguments{"2", "1"}));
}

TEST_F(ArrayAccess, refusesObjectsOfArraysThatHoldNone) {
    const auto objectOf = [](const kxArrayPtr& array) {
        return refusal<KORVEX::arrays::wrongClass>([&] { kxGetObject(array.get(), 0); });
    };
    EXPECT_EQ(objectOf(cell_), (Arguments{"object", "cell"}));
    EXPECT_EQ(objectOf(structure_), (Arguments{"object", "struct"}));
    EXPECT_EQ(objectOf(person_), (Arguments{"object", "korvex.Person"}));
    const kxArrayPtr number(kxCreateNumeric(kxClass::kDouble, {1, 1}));
    EXPECT_EQ(objectOf(number), (Arguments{"object", "double"}));
}

TEST_F(ArrayAccess, isSafeForManyThreadsWhileNobodyChangesAnything) {
    const kxArrayPtr names(kxCreateCell({1000, 1}));
    for (std::size_t i = 0; i < 1000; i += 2)
        kxReplaceCell(names.get(), i, kxCreateCharacters(u"name"));
    std::array<std::size_t, 4> lengths{};
    {
        std::vector<std::jthread> threads;
        threads.reserve(lengths.size());
        for (std::size_t& length : lengths)
            threads.emplace_back([&names, &length] {
                for (std::size_t i = 0; i < 1000; ++i)
                    length += kxGetNumberOfElements(kxGetCell(names.get(), i));
            });
    }
    EXPECT_THAT(lengths, testing::Each(2000U));
}

}  // namespace
