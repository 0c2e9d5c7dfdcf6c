#include <gtest/gtest.h>

#include <functional>

#include "host/arrays/kxArray.hpp"
#include "host/foundation/Exceptions.hpp"
#include "tests/host/BalancedTest.hpp"
#include "tests/host/arrays/NamedObject.hpp"
#include "tests/support/CountedHeap.hpp"

namespace {

using foundation::core::except::bad_alloc;

class ArrayMemory : public BalancedTest {};

using Creation = std::function<kxArray*()>;

/// Blocks that an array takes, and gives back in the end.
std::size_t blocksOf(const Creation& create) {
    const CountedHeap heap;
    kxArray* const array = create();
    const std::size_t blocks = heap.asked();
    kxDestroyArray(array);
    EXPECT_EQ(heap.freed(), blocks);
    return blocks;
}

TEST_F(ArrayMemory, isOneBlockForElementsAndDimensions) {
    const kxDimensions dimensions = {2, 3, 4, 5, 6};
    EXPECT_EQ(blocksOf([&] { return kxCreateNumeric(kxClass::kDouble, dimensions); }), 1U);
    EXPECT_EQ(blocksOf([&] { return kxCreateUninitialized(kxClass::kUint8, dimensions); }), 1U);
    EXPECT_EQ(blocksOf([] { return kxCreateCharacters(u"a name that is not short"); }), 1U);
    EXPECT_EQ(blocksOf([] { return kxCreateCharacters(u""); }), 1U);
}

TEST_F(ArrayMemory, isOneBlockForThePlacesOfACell) {
    const kxDimensions dimensions = {100, 2, 1};
    EXPECT_EQ(blocksOf([&] { return kxCreateCell(dimensions); }), 1U);
}

TEST_F(ArrayMemory, isOneBlockBesideTheSharedObject) {
    const std::shared_ptr<kxObject> object = circle();
    EXPECT_EQ(blocksOf([&] { return kxCreateObject(object); }), 1U);
}

TEST_F(ArrayMemory, isGivenBackWithTheNamesOfFields) {
    const kxDimensions dimensions = {2, 1};
    const std::vector<std::string> names = {"a field whose name is not short"};
    const std::string className = "korvex.classes.whose.name.is.not.short";
    EXPECT_GE(blocksOf([&] { return kxCreateStructure(dimensions, names); }), 2U);
    const auto object = [&] { return kxCreateObjectWithFields(className, dimensions, names); };
    EXPECT_GE(blocksOf(object), 3U);
}

TEST_F(ArrayMemory, isOneBlockForADuplicate) {
    const kxArrayPtr row(kxCreateCharacters(u"a name that is not short"));
    EXPECT_EQ(blocksOf([&] { return kxDuplicateArray(row.get()); }), 1U);
}

TEST_F(ArrayMemory, isNotTakenForReadingAndReplacingCells) {
    const kxArrayPtr cell(kxCreateCell({2, 1}));
    kxReplaceCell(cell.get(), 0, kxCreateCharacters(u"name"));
    kxArray* const row = kxCreateCharacters(u"other");
    const CountedHeap heap;
    kxReplaceCell(cell.get(), 0, row);
    const std::size_t length = kxGetCharacters(kxGetCell(cell.get(), 0)).size() +
                               kxGetNumberOfElements(kxGetCell(cell.get(), 1));
    const std::size_t asked = heap.asked();
    EXPECT_EQ(length, 5U);
    EXPECT_EQ(asked, 0U);
}

/// Creates with each number of blocks that is not enough, then with enough; returns how often
/// memory could not be had.
std::size_t failuresOf(const Creation& create) {
    for (std::size_t granted = 0;; ++granted) {
        const foundation::core::LiveObjects before = foundation::core::liveObjects();
        try {
            const CountedHeap heap(granted);
            kxDestroyArray(create());
            return granted;
        } catch (const bad_alloc&) {
            EXPECT_EQ(foundation::core::liveObjects(), before);
        }
    }
}

TEST_F(ArrayMemory, thatCannotBeHadIsAnErrorOfTheHost) {
    const kxDimensions dimensions = {2, 3};
    EXPECT_EQ(failuresOf([&] { return kxCreateNumeric(kxClass::kDouble, dimensions); }), 1U);
    EXPECT_EQ(failuresOf([] { return kxCreateCharacters(u"name"); }), 1U);
    EXPECT_EQ(failuresOf([&] { return kxCreateCell(dimensions); }), 1U);
}

TEST_F(ArrayMemory, thatCannotBeHadForFieldsLeavesNothingBehind) {
    const kxDimensions dimensions = {2, 3};
    const std::vector<std::string> names = {"a field whose name is not short",
                                            "another such field, no shorter"};
    EXPECT_GT(failuresOf([&] { return kxCreateStructure(dimensions, names); }), 3U);
    EXPECT_GT(failuresOf([&] { return kxCreateObjectWithFields("Box", dimensions, names); }), 3U);
}

TEST_F(ArrayMemory, thatCannotBeHadForADuplicateLeavesNothingBehind) {
    const kxArrayPtr outer(kxCreateCell({3, 1}));
    kxArrayPtr structure(kxCreateStructure({1, 1}, {"a field whose name is not short", "b"}));
    kxReplaceField(structure.get(), 0, "b", kxCreateCharacters(u"b"));
    kxReplaceCell(outer.get(), 0, kxCreateCharacters(u"name"));
    kxReplaceCell(outer.get(), 1, structure.release());
    kxReplaceCell(outer.get(), 2, kxCreateObject(circle()));
    EXPECT_GT(failuresOf([&] { return kxDuplicateArray(outer.get()); }), 7U);
}

TEST_F(ArrayMemory, thatCannotBeHadForARefusalStillFreesWhatWasTaken) {
    const kxArrayPtr cell(kxCreateCell({1, 1}));
    const foundation::core::LiveObjects before = foundation::core::liveObjects();
    kxArray* const row = kxCreateCharacters(u"lost");
    {
        const CountedHeap heap(0);
        EXPECT_THROW(kxReplaceCell(cell.get(), 1, row), std::bad_alloc);
    }
    EXPECT_EQ(foundation::core::liveObjects(), before);
}

}  // namespace
