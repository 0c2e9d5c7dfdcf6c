#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/arrays/ArrayErrors.hpp"
#include "host/arrays/kxArray.hpp"
#include "tests/host/BalancedTest.hpp"
#include "tests/host/Refusals.hpp"
#include "tests/host/arrays/NamedObject.hpp"

namespace {

using foundation::core::liveObjects;
using testing::ElementsAre;
using testing::IsEmpty;

/// How arrays with fields are made.
struct Kind {
    const char* name;
    kxArray* (*make)(const kxDimensions& dimensions, const std::vector<std::string>& fieldNames);
};
void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

kxArray* makeObject(const kxDimensions& dimensions, const std::vector<std::string>& fieldNames) {
    return kxCreateObjectWithFields("korvex.Person", dimensions, fieldNames);
}

/// What structures and objects with fields have in common.
class Fields : public BalancedTest, public testing::WithParamInterface<Kind> {
protected:
    kxArrayPtr people_;

    void SetUp() override {
        BalancedTest::SetUp();
        people_.reset(GetParam().make({2, 1}, {"name", "age", "size"}));
    }
    void TearDown() override {
        people_.reset();
        BalancedTest::TearDown();
    }
};

TEST_P(Fields, haveThePositionsInWhichTheyWereNamed) {
    EXPECT_THAT(kxGetFieldNames(people_.get()), ElementsAre("name", "age", "size"));
    EXPECT_EQ(kxGetFieldNumber(people_.get(), "name"), 0);
    EXPECT_EQ(kxGetFieldNumber(people_.get(), "age"), 1);
    EXPECT_EQ(kxGetFieldNumber(people_.get(), "size"), 2);
}

TEST_P(Fields, areFoundByTheirWholeNameOnly) {
    for (const char* name : {"", "nam", "names", "Name"})
        EXPECT_EQ(kxGetFieldNumber(people_.get(), name), -1) << name;
}

TEST_P(Fields, holdAnArrayForEachElementAndName) {
    for (std::size_t element = 0; element < 2; ++element)
        for (const std::string& name : kxGetFieldNames(people_.get()))
            kxReplaceField(people_.get(), element, name,
                           kxCreateCharacters(std::u16string(name.begin(), name.end()) +
                                              static_cast<char16_t>(u'0' + element)));
    EXPECT_EQ(kxGetCharacters(kxGetField(people_.get(), 0, "name")), u"name0");
    EXPECT_EQ(kxGetCharacters(kxGetField(people_.get(), 0, "age")), u"age0");
    EXPECT_EQ(kxGetCharacters(kxGetField(people_.get(), 0, "size")), u"size0");
    EXPECT_EQ(kxGetCharacters(kxGetField(people_.get(), 1, "name")), u"name1");
    EXPECT_EQ(kxGetCharacters(kxGetField(people_.get(), 1, "age")), u"age1");
    EXPECT_EQ(kxGetCharacters(kxGetField(people_.get(), 1, "size")), u"size1");
}

TEST_P(Fields, readAsAnEmptyDoubleArrayWhereNothingWasPut) {
    const kxArray* const empty = kxGetField(people_.get(), 1, "size");
    EXPECT_EQ(kxGetClass(empty), kxClass::kDouble);
    EXPECT_THAT(kxGetDimensions(empty), ElementsAre(0, 0));
    const kxArrayPtr cell(kxCreateCell({1, 1}));
    EXPECT_EQ(empty, kxGetCell(cell.get(), 0));
}

TEST_P(Fields, freeWhatIsReplacedAndAreEmptiedByNull) {
    const std::size_t before = liveObjects().arrays;
    kxReplaceField(people_.get(), 0, "name", kxCreateCharacters(u"Ann"));
    kxReplaceField(people_.get(), 0, "name", kxCreateCharacters(u"Bea"));
    EXPECT_EQ(liveObjects().arrays, before + 1);
    EXPECT_EQ(kxGetCharacters(kxGetField(people_.get(), 0, "name")), u"Bea");
    kxReplaceField(people_.get(), 0, "name", nullptr);
    EXPECT_EQ(liveObjects().arrays, before);
    EXPECT_EQ(kxGetClass(kxGetField(people_.get(), 0, "name")), kxClass::kDouble);
}

TEST_P(Fields, areRefusedByNamesThatAreNone) {
    EXPECT_EQ(refusal<KORVEX::arrays::noSuchField>([&] { kxGetField(people_.get(), 0, "shoe"); }),
              (Arguments{"shoe"}));
    const std::size_t before = liveObjects().arrays;
    const auto replace = [&] {
        kxReplaceField(people_.get(), 0, "shoe", kxCreateCharacters(u"lost"));
    };
    EXPECT_EQ(refusal<KORVEX::arrays::noSuchField>(replace), (Arguments{"shoe"}));
    EXPECT_EQ(liveObjects().arrays, before);
}

TEST_P(Fields, areRefusedOutsideTheArray) {
    EXPECT_EQ(
        refusal<KORVEX::arrays::indexOutOfRange>([&] { kxGetField(people_.get(), 2, "age"); }),
        (Arguments{"3", "2"}));
    const std::size_t before = liveObjects().arrays;
    const auto replace = [&] {
        kxReplaceField(people_.get(), 2, "age", kxCreateCharacters(u"lost"));
    };
    EXPECT_EQ(refusal<KORVEX::arrays::indexOutOfRange>(replace), (Arguments{"3", "2"}));
    EXPECT_EQ(liveObjects().arrays, before);
}

TEST_P(Fields, refuseTheArrayThatTheyBelongTo) {
    kxReplaceField(people_.get(), 0, "name", kxCreateCharacters(u"kept"));
    const auto intoItself = [&] { kxReplaceField(people_.get(), 0, "name", people_.get()); };
    EXPECT_EQ(refusal<KORVEX::arrays::arrayWithinItself>(intoItself), Arguments{});
    EXPECT_EQ(kxGetCharacters(kxGetField(people_.get(), 0, "name")), u"kept");
}

INSTANTIATE_TEST_SUITE_P(Of, Fields,
                         testing::Values(Kind{"structures", &kxCreateStructure},
                                         Kind{"objects", &makeObject}),
                         [](const auto& test) { return std::string(test.param.name); });

class FieldsOfOthers : public BalancedTest {};

TEST_F(FieldsOfOthers, areNone) {
    const kxArrayPtr cell(kxCreateCell({1, 1}));
    const kxArrayPtr object(kxCreateObject(circle()));
    for (const kxArray* array : {cell.get(), object.get()}) {
        EXPECT_THAT(kxGetFieldNames(array), IsEmpty());
        EXPECT_EQ(kxGetFieldNumber(array, "name"), -1);
    }
}

TEST_F(FieldsOfOthers, areRefused) {
    const kxArrayPtr cell(kxCreateCell({1, 1}));
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { kxGetField(cell.get(), 0, "name"); }),
              (Arguments{"struct", "cell"}));
    const kxArrayPtr object(kxCreateObject(circle()));
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { kxGetField(object.get(), 0, "name"); }),
              (Arguments{"struct", "korvex.shapes.Circle"}));
}

TEST_F(FieldsOfOthers, freeWhatIsPutIntoThem) {
    const kxArrayPtr cell(kxCreateCell({1, 1}));
    const std::size_t before = liveObjects().arrays;
    const auto replace = [&] {
        kxReplaceField(cell.get(), 0, "name", kxCreateCharacters(u"lost"));
    };
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>(replace), (Arguments{"struct", "cell"}));
    EXPECT_EQ(liveObjects().arrays, before);
}

}  // namespace
