#include "host/matrix/Matrix.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "host/arrays/ArrayErrors.hpp"
#include "tests/host/BalancedTest.hpp"
#include "tests/host/Refusals.hpp"

namespace matrix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Matrix : public BalancedTest {};

std::string utf8Of(std::u16string_view text) {
    return get_string(create(text).get());
}

/// An array of the class of T with these elements in one column.
template <class T>
kxArrayPtr column(std::initializer_list<T> elements) {
    kxArrayPtr array(kxCreateNumeric(arrays::detail::kClassOf<T>, {elements.size(), 1}));
    std::ranges::copy(elements, kxGetData<T>(array.get()).begin());
    return array;
}

TEST_F(Matrix, givesCharactersAsUtf8) {
    EXPECT_EQ(utf8Of(u""), "");
    EXPECT_EQ(utf8Of(u"a.txt"), "a.txt");
    EXPECT_EQ(utf8Of(u"\u00E4\u20AC"), "\xC3\xA4\xE2\x82\xAC");
    EXPECT_EQ(utf8Of(u"\U0001F600"), "\xF0\x9F\x98\x80");
}

TEST_F(Matrix, givesTheEdgesOfEachLengthOfUtf8) {
    EXPECT_EQ(utf8Of(std::u16string(1, u'\x7F')), "\x7F");
    EXPECT_EQ(utf8Of(std::u16string(1, u'\x80')), "\xC2\x80");
    EXPECT_EQ(utf8Of(u"\u07FF"), "\xDF\xBF");
    EXPECT_EQ(utf8Of(u"\u0800"), "\xE0\xA0\x80");
    EXPECT_EQ(utf8Of(u"\uD7FF"), "\xED\x9F\xBF");
    EXPECT_EQ(utf8Of(u"\uE000"), "\xEE\x80\x80");
    EXPECT_EQ(utf8Of(u"\uFFFF"), "\xEF\xBF\xBF");
    EXPECT_EQ(utf8Of(u"\U00010000"), "\xF0\x90\x80\x80");
    EXPECT_EQ(utf8Of(u"\U0010FFFF"), "\xF4\x8F\xBF\xBF");
}

TEST_F(Matrix, keepsNulCharactersInUtf8) {
    EXPECT_EQ(utf8Of(std::u16string_view(u"a\0b\0", 4)), std::string("a\0b\0", 4));
}

TEST_F(Matrix, replacesSurrogatesWithoutTheirOtherHalf) {
    const std::string replaced = "\xEF\xBF\xBD";
    const char16_t lead = 0xD83D;
    const char16_t trail = 0xDE00;
    const std::string pair = "\xF0\x9F\x98\x80";
    EXPECT_EQ(utf8Of(std::u16string{lead}), replaced);
    EXPECT_EQ(utf8Of(std::u16string{trail}), replaced);
    EXPECT_EQ(utf8Of(std::u16string{lead, u'a'}), replaced + "a");
    EXPECT_EQ(utf8Of(std::u16string{u'a', trail, u'b'}), "a" + replaced + "b");
    EXPECT_EQ(utf8Of(std::u16string{trail, lead}), replaced + replaced);
    EXPECT_EQ(utf8Of(std::u16string{lead, lead, trail}), replaced + pair);
    EXPECT_EQ(utf8Of(std::u16string{lead, trail, trail}), pair + replaced);
    for (const char16_t edge : std::u16string{0xD800, 0xDBFF, 0xDC00, 0xDFFF})
        EXPECT_EQ(utf8Of(std::u16string{edge}), replaced);
}

TEST_F(Matrix, givesLongNamesAsUtf8) {
    const std::u16string name(65536, u'\u20AC');
    const std::string bytes = utf8Of(name);
    ASSERT_EQ(bytes.size(), 3U * 65536);
    EXPECT_EQ(bytes.substr(bytes.size() - 3), "\xE2\x82\xAC");
}

TEST_F(Matrix, givesCharactersAsTheyAre) {
    std::u16string all(0x10000, u'\0');
    for (std::size_t unit = 0; unit < all.size(); ++unit) all[unit] = static_cast<char16_t>(unit);
    EXPECT_EQ(get_ustring(create(all).get()), all);
    EXPECT_EQ(get_ustring(create(u"").get()), u"");
}

TEST_F(Matrix, readsCharactersOfAnyDimensionsInElementOrder) {
    const kxArrayPtr array(kxCreateNumeric(kxClass::kCharacter, {2, 2}));
    std::ranges::copy(std::u16string(u"acbd"), kxGetData<char16_t>(array.get()).begin());
    EXPECT_EQ(get_ustring(array.get()), u"acbd");
    EXPECT_EQ(get_string(array.get()), "acbd");
}

TEST_F(Matrix, refusesTextsOfOtherClasses) {
    const kxArrayPtr numbers = column<double>({97});
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { get_string(numbers.get()); }),
              (Arguments{"char", "double"}));
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { get_ustring(numbers.get()); }),
              (Arguments{"char", "double"}));
    const kxArrayPtr cell = detail::do_create_cell(1, 1);
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { get_ustring(cell.get()); }),
              (Arguments{"char", "cell"}));
}

TEST_F(Matrix, givesNumbersOfEveryClassAsDoubles) {
    EXPECT_THAT(get_doubles(column<double>({-0.5, 1e300}).get()), ElementsAre(-0.5, 1e300));
    EXPECT_THAT(get_doubles(column<std::int8_t>({-128, 127}).get()), ElementsAre(-128, 127));
    EXPECT_THAT(get_doubles(column<std::uint8_t>({0, 255}).get()), ElementsAre(0, 255));
    EXPECT_THAT(get_doubles(column<std::int16_t>({-32768, 2}).get()), ElementsAre(-32768, 2));
    EXPECT_THAT(get_doubles(column<std::uint16_t>({65535}).get()), ElementsAre(65535));
    EXPECT_THAT(get_doubles(column<std::int32_t>({-2147483647}).get()), ElementsAre(-2147483647));
    EXPECT_THAT(get_doubles(column<std::uint32_t>({4294967295U}).get()), ElementsAre(4294967295));
    EXPECT_THAT(get_doubles(column<std::int64_t>({-1, 1}).get()), ElementsAre(-1, 1));
    EXPECT_THAT(get_doubles(column<std::uint64_t>({1, 0}).get()), ElementsAre(1, 0));
    EXPECT_THAT(get_doubles(column<bool>({true, false}).get()), ElementsAre(1, 0));
    EXPECT_THAT(get_doubles(column<char16_t>({u'a'}).get()), ElementsAre(97));
    EXPECT_THAT(get_doubles(column<double>({}).get()), IsEmpty());
}

TEST_F(Matrix, refusesDoublesOfClassesThatHoldNone) {
    const kxArrayPtr cell = detail::do_create_cell(1, 1);
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { get_doubles(cell.get()); }),
              (Arguments{"numeric", "cell"}));
}

TEST_F(Matrix, givesTheBytesOfClassesOfOneByteAnElement) {
    EXPECT_THAT(get_bytes(column<std::uint8_t>({0, 7, 255}).get()), ElementsAre(0, 7, 255));
    EXPECT_THAT(get_bytes(column<std::int8_t>({-1, 127}).get()), ElementsAre(255, 127));
    EXPECT_THAT(get_bytes(column<bool>({true, false}).get()), ElementsAre(1, 0));
    EXPECT_THAT(get_bytes(column<std::uint8_t>({}).get()), IsEmpty());
}

TEST_F(Matrix, refusesBytesOfWiderClasses) {
    EXPECT_EQ(
        refusal<KORVEX::arrays::wrongClass>([&] { get_bytes(column<char16_t>({u'a'}).get()); }),
        (Arguments{"uint8", "char"}));
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { get_bytes(column<double>({1}).get()); }),
              (Arguments{"uint8", "double"}));
}

TEST_F(Matrix, createsRowsOfCharacters) {
    const kxArrayPtr row = create(u"name");
    EXPECT_THAT(kxGetDimensions(row.get()), ElementsAre(1, 4));
    EXPECT_EQ(kxGetCharacters(row.get()), u"name");
}

TEST_F(Matrix, createsCellsOfEmptyPlaces) {
    const kxArrayPtr cell = detail::do_create_cell(3, 1);
    EXPECT_EQ(kxGetClass(cell.get()), kxClass::kCell);
    EXPECT_THAT(kxGetDimensions(cell.get()), ElementsAre(3, 1));
    EXPECT_EQ(kxGetNumberOfElements(kxGetCell(cell.get(), 2)), 0U);
}

TEST_F(Matrix, createsNumbersWhoseElementsAreNotSet) {
    const kxArrayPtr bytes = detail::do_create_uninitnumeric(3, 2, kxClass::kUint8);
    EXPECT_EQ(kxGetClass(bytes.get()), kxClass::kUint8);
    EXPECT_THAT(kxGetDimensions(bytes.get()), ElementsAre(3, 2));
    const auto cell = [] { detail::do_create_uninitnumeric(1, 1, kxClass::kCell); };
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>(cell), (Arguments{"numeric", "cell"}));
}

TEST_F(Matrix, refusesMoreElementsThanMemoryCanAddress) {
    const std::size_t huge = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(refusal<KORVEX::arrays::tooManyElements>([&] { detail::do_create_cell(huge, 1); }),
              (Arguments{std::to_string(huge) + " by 1"}));
}

TEST_F(Matrix, handsArraysToTheHostWhichFreesThem) {
    kxArrayPtr row = create(u"name");
    kxArray* const expected = row.get();
    kxArray* const handed = to_korvex(std::move(row));
    EXPECT_EQ(handed, expected);
    kxDestroyArray(handed);
}

TEST_F(Matrix, handsNothingToTheHostIfThereIsNothing) {
    EXPECT_EQ(to_korvex(nullptr), nullptr);
}

TEST_F(Matrix, givesTheArrayOfAValueAsLongAsACopyOfItLives) {
    kxArrayPtr row = create(u"name");
    const kxArray* const expected = row.get();
    kobj::COSValue copy;
    {
        const kobj::COSValue value(std::move(row));
        EXPECT_EQ(from_korvex(value), expected);
        copy = value;
    }
    EXPECT_EQ(from_korvex(copy), expected);
    EXPECT_EQ(kxGetCharacters(from_korvex(copy)), u"name");
}

TEST_F(Matrix, givesNullForAValueWithoutAnArray) {
    EXPECT_EQ(from_korvex(kobj::COSValue()), nullptr);
}

}  // namespace
}  // namespace matrix
