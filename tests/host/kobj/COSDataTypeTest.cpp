#include "host/kobj/COSDataType.hpp"

#include <gtest/gtest.h>

#include "tests/host/BalancedTest.hpp"

namespace kobj {
namespace {

using COSDataTypeTest = BalancedTest;

TEST_F(COSDataTypeTest, isNamedAfterTheClassOfAnArray) {
    const auto idOf = [](kxArray* array) {
        return COSDataType::of(COSValue(kxArrayPtr(array)))->getID();
    };
    EXPECT_EQ(idOf(kxCreateNumeric(kxClass::kUint8, {2, 2})), "uint8");
    EXPECT_EQ(idOf(kxCreateCharacters(u"red")), "char");
    EXPECT_EQ(idOf(kxCreateStructure({1, 1}, {})), "struct");
    EXPECT_EQ(idOf(kxCreateObjectWithFields("korvex.Shape", {1, 1}, {})), "korvex.Shape");
}

TEST_F(COSDataTypeTest, hasNoNameForNothing) {
    EXPECT_EQ(COSDataType::of(COSValue())->getID(), "");
}

}  // namespace
}  // namespace kobj
