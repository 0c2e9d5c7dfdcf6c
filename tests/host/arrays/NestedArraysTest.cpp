#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/arrays/kxArray.hpp"
#include "tests/host/BalancedTest.hpp"
#include "tests/host/arrays/NamedObject.hpp"
#include "tests/support/SmallStack.hpp"

namespace {

using foundation::core::liveObjects;

constexpr std::size_t kDepth = 100'000;

class NestedArrays : public BalancedTest {};

kxArray* row(std::size_t number) {
    const std::string digits = std::to_string(number);
    return kxCreateCharacters(std::u16string(digits.begin(), digits.end()));
}

/// Cells in cells; each has a row before the cell within it, a row after it, and an empty place.
kxArrayPtr deepCells() {
    kxArrayPtr inner(kxCreateCharacters(u"innermost"));
    for (std::size_t depth = 0; depth < kDepth; ++depth) {
        kxArrayPtr outer(kxCreateCell({4, 1}));
        kxReplaceCell(outer.get(), 0, row(depth));
        kxReplaceCell(outer.get(), 1, inner.release());
        kxReplaceCell(outer.get(), 3, row(depth));
        inner = std::move(outer);
    }
    return inner;
}

/// Structures, objects with fields and cells by turns.
kxArrayPtr deepMixture() {
    kxArrayPtr inner(kxCreateCharacters(u"innermost"));
    for (std::size_t depth = 0; depth < kDepth; ++depth) {
        kxArrayPtr outer;
        if (depth % 3 == 0) {
            outer.reset(kxCreateCell({1, 2}));
            kxReplaceCell(outer.get(), depth % 2, inner.release());
        } else {
            const std::vector<std::string> names = {"before", "inner", "after"};
            outer.reset(depth % 3 == 1 ? kxCreateStructure({2, 1}, names)
                                       : kxCreateObjectWithFields("korvex.Box", {2, 1}, names));
            kxReplaceField(outer.get(), 1, "before", row(depth));
            kxReplaceField(outer.get(), depth % 2, "inner", inner.release());
        }
        inner = std::move(outer);
    }
    return inner;
}

const kxArray* within(const kxArray* outer, std::size_t depth) {
    if (kxGetClass(outer) == kxClass::kCell) return kxGetCell(outer, depth % 2);
    return kxGetField(outer, depth % 2, "inner");
}

TEST_F(NestedArrays, areFreedToAnyDepth) {
    const std::size_t before = liveObjects().arrays;
    kxArrayPtr deep = deepCells();
    EXPECT_EQ(liveObjects().arrays, before + 3 * kDepth + 1);
    onSmallStack([&] { deep.reset(); });
    EXPECT_EQ(liveObjects().arrays, before);
}

TEST_F(NestedArrays, areFreedToAnyDepthThroughFields) {
    const std::size_t before = liveObjects().arrays;
    kxArrayPtr deep = deepMixture();
    EXPECT_GT(liveObjects().arrays, before + kDepth);
    onSmallStack([&] { deep.reset(); });
    EXPECT_EQ(liveObjects().arrays, before);
}

TEST_F(NestedArrays, areDuplicatedToAnyDepth) {
    kxArrayPtr deep = deepCells();
    const std::size_t before = liveObjects().arrays;
    kxArrayPtr copy;
    onSmallStack([&] { copy.reset(kxDuplicateArray(deep.get())); });
    EXPECT_EQ(liveObjects().arrays, before + 3 * kDepth + 1);
    deep.reset();
    const kxArray* cell = copy.get();
    for (std::size_t depth = kDepth; depth-- > 0; cell = kxGetCell(cell, 1)) {
        const kxArrayPtr expected(row(depth));
        ASSERT_EQ(kxGetCharacters(kxGetCell(cell, 0)), kxGetCharacters(expected.get()));
        ASSERT_EQ(kxGetCharacters(kxGetCell(cell, 3)), kxGetCharacters(expected.get()));
        ASSERT_EQ(kxGetClass(kxGetCell(cell, 2)), kxClass::kDouble);
    }
    EXPECT_EQ(kxGetCharacters(cell), u"innermost");
}

TEST_F(NestedArrays, areDuplicatedToAnyDepthThroughFields) {
    kxArrayPtr deep = deepMixture();
    kxArrayPtr copy;
    onSmallStack([&] { copy.reset(kxDuplicateArray(deep.get())); });
    deep.reset();
    const kxArray* inner = copy.get();
    for (std::size_t depth = kDepth; depth-- > 0; inner = within(inner, depth)) {
        if (depth % 3 == 0) continue;
        const kxArrayPtr expected(row(depth));
        ASSERT_EQ(kxGetCharacters(kxGetField(inner, 1, "before")), kxGetCharacters(expected.get()));
    }
    EXPECT_EQ(kxGetCharacters(inner), u"innermost");
}

TEST_F(NestedArrays, areFreedWhenTheyAreReplaced) {
    const kxArrayPtr cell(kxCreateCell({1, 1}));
    const std::size_t before = liveObjects().arrays;
    kxReplaceCell(cell.get(), 0, deepCells().release());
    kxReplaceCell(cell.get(), 0, nullptr);
    EXPECT_EQ(liveObjects().arrays, before);
}

/// A full tree of cells: `width` in each, down to rows that count up from `next`.
kxArrayPtr tree(std::size_t levels, std::size_t width, std::size_t& next) {
    if (levels == 0) return kxArrayPtr(row(next++));
    kxArrayPtr cell(kxCreateCell({width, 1}));
    for (std::size_t i = 0; i < width; ++i)
        kxReplaceCell(cell.get(), i, tree(levels - 1, width, next).release());
    return cell;
}

void collect(const kxArray* array, std::u16string& text) {
    if (kxGetClass(array) == kxClass::kCharacter) {
        text.append(kxGetCharacters(array)).append(u" ");
        return;
    }
    for (std::size_t i = 0; i < kxGetNumberOfElements(array); ++i)
        collect(kxGetCell(array, i), text);
}

TEST_F(NestedArrays, areDuplicatedWithAllTheirBranches) {
    std::size_t rows = 0;
    kxArrayPtr original = tree(5, 4, rows);
    ASSERT_EQ(rows, 1024U);
    std::u16string expected;
    collect(original.get(), expected);
    const kxArrayPtr copy(kxDuplicateArray(original.get()));
    original.reset();
    std::u16string copied;
    collect(copy.get(), copied);
    EXPECT_EQ(copied, expected);
}

TEST_F(NestedArrays, letGoOfTheObjectsWithinThem) {
    const std::shared_ptr<kxObject> object = circle();
    kxArrayPtr outer(kxCreateCell({2, 1}));
    kxArrayPtr structure(kxCreateStructure({1, 1}, {"shape"}));
    kxReplaceField(structure.get(), 0, "shape", kxCreateObject(object));
    kxReplaceCell(outer.get(), 0, structure.release());
    kxArrayPtr copy(kxDuplicateArray(outer.get()));
    EXPECT_EQ(object.use_count(), 3);
    outer.reset();
    EXPECT_EQ(object.use_count(), 2);
    copy.reset();
    EXPECT_EQ(object.use_count(), 1);
}

}  // namespace
