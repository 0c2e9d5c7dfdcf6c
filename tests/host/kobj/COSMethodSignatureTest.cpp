#include "host/kobj/COSMethodSignature.hpp"

#include <gtest/gtest.h>

#include "tests/host/BalancedTest.hpp"

namespace kobj {
namespace {

using COSMethodSignatureTest = BalancedTest;

TEST_F(COSMethodSignatureTest, keepsTheParametersInTheirOrder) {
    const auto signature = COSMethodSignature::createMethodSignature(
        {{"korvex.Shape", "shape"}, {"double", "angle", true}}, {{"cell", ""}});
    ASSERT_EQ(signature->inputs().size(), 2U);
    EXPECT_EQ(signature->inputs()[0].type, "korvex.Shape");
    EXPECT_EQ(signature->inputs()[0].name, "shape");
    EXPECT_FALSE(signature->inputs()[0].isOptional);
    EXPECT_EQ(signature->inputs()[1].name, "angle");
    EXPECT_TRUE(signature->inputs()[1].isOptional);
    ASSERT_EQ(signature->outputs().size(), 1U);
    EXPECT_EQ(signature->outputs()[0].type, "cell");
    EXPECT_EQ(signature->outputs()[0].name, "");
}

TEST_F(COSMethodSignatureTest, requiresTheInputsThatAreNotOptional) {
    const auto required = [](std::vector<COSParameter> inputs) {
        return COSMethodSignature::createMethodSignature(std::move(inputs), {})
            ->requiredInputCount();
    };
    EXPECT_EQ(required({}), 0U);
    EXPECT_EQ(required({{"any", "a", true}, {"any", "b", true}}), 0U);
    EXPECT_EQ(required({{"any", "a"}, {"any", "b", true}}), 1U);
    EXPECT_EQ(required({{"any", "a"}, {"any", "b"}}), 2U);
}

TEST_F(COSMethodSignatureTest, isCountedWhileItIsAlive) {
    const std::size_t before = foundation::core::liveObjects().methodSignatures;
    auto signature = COSMethodSignature::createMethodSignature({}, {});
    EXPECT_EQ(foundation::core::liveObjects().methodSignatures, before + 1);
    signature.reset();
    EXPECT_EQ(foundation::core::liveObjects().methodSignatures, before);
}

}  // namespace
}  // namespace kobj
