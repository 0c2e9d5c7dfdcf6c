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

class Cells : public BalancedTest {
protected:
    kxArrayPtr cell_;

    void SetUp() override {
        BalancedTest::SetUp();
        cell_.reset(kxCreateCell({2, 2}));
    }
    void TearDown() override {
        cell_.reset();
        BalancedTest::TearDown();
    }
};

TEST_F(Cells, holdWhatIsPutIntoThem) {
    kxReplaceCell(cell_.get(), 0, kxCreateCharacters(u"first"));
    kxReplaceCell(cell_.get(), 3, kxCreateNumeric(kxClass::kInt8, {1, 1}));
    EXPECT_EQ(kxGetCharacters(kxGetCell(cell_.get(), 0)), u"first");
    EXPECT_EQ(kxGetClass(kxGetCell(cell_.get(), 3)), kxClass::kInt8);
}

TEST_F(Cells, holdTheVeryArrayThatIsPutIntoThem) {
    kxArray* const row = kxCreateCharacters(u"name");
    kxReplaceCell(cell_.get(), 1, row);
    EXPECT_EQ(kxGetCell(cell_.get(), 1), row);
}

TEST_F(Cells, readAsAnEmptyDoubleArrayWhereNothingWasPut) {
    const kxArray* const empty = kxGetCell(cell_.get(), 2);
    EXPECT_EQ(kxGetClass(empty), kxClass::kDouble);
    EXPECT_EQ(kxGetClassName(empty), "double");
    EXPECT_THAT(kxGetDimensions(empty), ElementsAre(0, 0));
    EXPECT_EQ(kxGetNumberOfElements(empty), 0U);
    EXPECT_THAT(kxGetData<double>(empty), testing::IsEmpty());
}

TEST_F(Cells, shareOneArrayForAllEmptyPlaces) {
    const kxArrayPtr other(kxCreateCell({1, 1}));
    EXPECT_EQ(kxGetCell(cell_.get(), 0), kxGetCell(cell_.get(), 1));
    EXPECT_EQ(kxGetCell(cell_.get(), 0), kxGetCell(other.get(), 0));
}

TEST_F(Cells, giveADuplicateOfAnEmptyPlaceThatIsFreedAsOthersAre) {
    const kxArrayPtr copy(kxDuplicateArray(kxGetCell(cell_.get(), 0)));
    EXPECT_THAT(kxGetDimensions(copy.get()), ElementsAre(0, 0));
    EXPECT_NE(copy.get(), kxGetCell(cell_.get(), 0));
}

TEST_F(Cells, freeWhatIsReplaced) {
    const std::size_t before = liveObjects().arrays;
    kxReplaceCell(cell_.get(), 0, kxCreateCharacters(u"first"));
    kxReplaceCell(cell_.get(), 0, kxCreateCharacters(u"second"));
    EXPECT_EQ(liveObjects().arrays, before + 1);
    EXPECT_EQ(kxGetCharacters(kxGetCell(cell_.get(), 0)), u"second");
}

TEST_F(Cells, areEmptiedByNull) {
    const std::size_t before = liveObjects().arrays;
    kxReplaceCell(cell_.get(), 0, kxCreateCharacters(u"first"));
    kxReplaceCell(cell_.get(), 0, nullptr);
    EXPECT_EQ(liveObjects().arrays, before);
    EXPECT_EQ(kxGetClass(kxGetCell(cell_.get(), 0)), kxClass::kDouble);
}

TEST_F(Cells, areFreedWithWhatTheyHold) {
    const std::shared_ptr<kxObject> object = circle();
    kxReplaceCell(cell_.get(), 0, kxCreateObject(object));
    kxReplaceCell(cell_.get(), 2, kxCreateStructure({1, 1}, {"name"}));
    cell_.reset();
    EXPECT_EQ(object.use_count(), 1);
}

TEST_F(Cells, refusePositionsOutside) {
    EXPECT_EQ(refusal<KORVEX::arrays::indexOutOfRange>([&] { kxGetCell(cell_.get(), 4); }),
              (Arguments{"5", "4"}));
    EXPECT_EQ(
        refusal<KORVEX::arrays::indexOutOfRange>([&] { kxReplaceCell(cell_.get(), 7, nullptr); }),
        (Arguments{"8", "4"}));
}

TEST_F(Cells, refuseEveryPositionIfThereAreNone) {
    for (const kxDimensions& dimensions : {kxDimensions{}, kxDimensions{0, 1}}) {
        const kxArrayPtr none(kxCreateCell(dimensions));
        EXPECT_EQ(refusal<KORVEX::arrays::indexOutOfRange>([&] { kxGetCell(none.get(), 0); }),
                  (Arguments{"1", "0"}));
    }
}

TEST_F(Cells, areNotFoundInOtherClasses) {
    const kxArrayPtr row(kxCreateCharacters(u"name"));
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { kxGetCell(row.get(), 0); }),
              (Arguments{"cell", "char"}));
    const kxArrayPtr structure(kxCreateStructure({1, 1}, {"name"}));
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { kxGetCell(structure.get(), 0); }),
              (Arguments{"cell", "struct"}));
    const kxArrayPtr object(kxCreateObject(circle()));
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>([&] { kxGetCell(object.get(), 0); }),
              (Arguments{"cell", "korvex.shapes.Circle"}));
}

TEST_F(Cells, freeWhatTheyRefuse) {
    const std::size_t before = liveObjects().arrays;
    const auto outside = [&] { kxReplaceCell(cell_.get(), 4, kxCreateCharacters(u"lost")); };
    EXPECT_EQ(refusal<KORVEX::arrays::indexOutOfRange>(outside), (Arguments{"5", "4"}));
    EXPECT_EQ(liveObjects().arrays, before);
}

TEST_F(Cells, freeWhatIsPutIntoAnotherClass) {
    const kxArrayPtr row(kxCreateCharacters(u"name"));
    const std::size_t before = liveObjects().arrays;
    const auto intoRow = [&] { kxReplaceCell(row.get(), 0, kxCreateCharacters(u"lost")); };
    EXPECT_EQ(refusal<KORVEX::arrays::wrongClass>(intoRow), (Arguments{"cell", "char"}));
    EXPECT_EQ(liveObjects().arrays, before);
}

TEST_F(Cells, refuseThemselvesAndStayAsTheyAre) {
    kxReplaceCell(cell_.get(), 0, kxCreateCharacters(u"kept"));
    const auto intoItself = [&] { kxReplaceCell(cell_.get(), 0, cell_.get()); };
    EXPECT_EQ(refusal<KORVEX::arrays::arrayWithinItself>(intoItself), Arguments{});
    EXPECT_EQ(kxGetCharacters(kxGetCell(cell_.get(), 0)), u"kept");
}

TEST_F(Cells, refuseThemselvesBeforeTheyLookAtThePosition) {
    const auto outside = [&] { kxReplaceCell(cell_.get(), 9, cell_.get()); };
    EXPECT_EQ(refusal<KORVEX::arrays::arrayWithinItself>(outside), Arguments{});
    const kxArrayPtr row(kxCreateCharacters(u"kept"));
    const auto intoRow = [&] { kxReplaceCell(row.get(), 0, row.get()); };
    EXPECT_EQ(refusal<KORVEX::arrays::arrayWithinItself>(intoRow), Arguments{});
    EXPECT_EQ(kxGetCharacters(row.get()), u"kept");
}

TEST_F(Cells, areLeftAsTheyWereByARefusal) {
    kxReplaceCell(cell_.get(), 3, kxCreateCharacters(u"kept"));
    const auto outside = [&] { kxReplaceCell(cell_.get(), 4, kxCreateCharacters(u"lost")); };
    EXPECT_EQ(refusal<KORVEX::arrays::indexOutOfRange>(outside), (Arguments{"5", "4"}));
    EXPECT_EQ(kxGetCharacters(kxGetCell(cell_.get(), 3)), u"kept");
}

}  // namespace
