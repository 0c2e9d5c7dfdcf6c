#include "host/kobj/COSTypeRepository.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "tests/host/kobj/RegistryTest.hpp"

namespace kobj {
namespace {

using KORVEX::kobj::cannotConvert;

using COSTypeRepositoryTest = RegistryTest;

/// An array of 1 by 1 of each class, by the name of the class.
kxArrayPtr sampleOf(std::string_view className) {
    constexpr std::array<std::pair<std::string_view, kxClass>, 11> kNumeric{{
        {"double", kxClass::kDouble},
        {"int8", kxClass::kInt8},
        {"uint8", kxClass::kUint8},
        {"int16", kxClass::kInt16},
        {"uint16", kxClass::kUint16},
        {"int32", kxClass::kInt32},
        {"uint32", kxClass::kUint32},
        {"int64", kxClass::kInt64},
        {"uint64", kxClass::kUint64},
        {"logical", kxClass::kLogical},
        {"char", kxClass::kCharacter},
    }};
    for (const auto& [name, elementClass] : kNumeric) {
        if (name == className) return kxArrayPtr(kxCreateNumeric(elementClass, {1, 1}));
    }
    if (className == "cell") return kxArrayPtr(kxCreateCell({1, 1}));
    if (className == "struct") return kxArrayPtr(kxCreateStructure({1, 1}, {}));
    return kxArrayPtr(kxCreateObjectWithFields(std::string(className), {1, 1}, {}));
}

const std::vector<std::string> kClasses{"double", "int8",   "uint8",  "int16",       "uint16",
                                        "int32",  "uint32", "int64",  "uint64",      "logical",
                                        "char",   "cell",   "struct", "korvex.Shape"};

bool isNumber(const std::string& className) {
    return std::find(kClasses.begin(), kClasses.begin() + 11, className) != kClasses.begin() + 11;
}

bool fits(const kxDimensions& dimensions, std::string_view type) {
    const kxArrayPtr array(kxCreateNumeric(kxClass::kDouble, dimensions));
    try {
        return COSTypeRepository::convertBorrowed(array.get(), type) == nullptr;
    } catch (const Exception<cannotConvert>&) {
        return false;
    }
}

COSValue convert(const COSValue& value, std::string_view type) {
    return COSTypeRepository::getConversion(COSDataType::of(value)->getID(), type).apply(value);
}

TEST_F(COSTypeRepositoryTest, convertsEachClassToItselfAndNumbersToDouble) {
    for (const std::string& source : kClasses) {
        const kxArrayPtr sample = sampleOf(source);
        for (const std::string& target : kClasses) {
            SCOPED_TRACE(testing::Message() << source << " to " << target);
            if (source == target) {
                EXPECT_EQ(COSTypeRepository::convertBorrowed(sample.get(), target), nullptr);
            } else if (target == "double" && isNumber(source)) {
                const auto converted = COSTypeRepository::convertBorrowed(sample.get(), target);
                ASSERT_NE(converted, nullptr);
                EXPECT_EQ(kxGetClass(converted.get()), kxClass::kDouble);
            } else {
                EXPECT_EQ(refusal<cannotConvert>(
                              [&] { COSTypeRepository::convertBorrowed(sample.get(), target); }),
                          (Arguments{target, source}));
            }
        }
    }
}

TEST_F(COSTypeRepositoryTest, findsTheSameConversionsForTypesAsForArrays) {
    for (const std::string& source : kClasses) {
        const COSValue sample(sampleOf(source));
        for (const std::string& target : kClasses) {
            SCOPED_TRACE(testing::Message() << source << " to " << target);
            if (source == target || (target == "double" && isNumber(source))) {
                EXPECT_EQ(kxGetClassName(convert(sample, target).array()), target);
            } else {
                EXPECT_THROW(COSTypeRepository::getConversion(source, target),
                             Exception<cannotConvert>);
            }
        }
    }
}

TEST_F(COSTypeRepositoryTest, takesAnythingForAny) {
    for (const std::string& source : kClasses) {
        const COSValue sample(sampleOf(source));
        EXPECT_EQ(convert(sample, "any").array(), sample.array()) << source;
    }
}

TEST_F(COSTypeRepositoryTest, sharesWhatNeedsNoChange) {
    const COSValue sample(sampleOf("double"));
    const std::size_t arrays = foundation::core::liveObjects().arrays;
    EXPECT_EQ(convert(sample, "double scalar").array(), sample.array());
    EXPECT_EQ(foundation::core::liveObjects().arrays, arrays);
}

TEST_F(COSTypeRepositoryTest, leavesNothingAsItIs) {
    for (const char* type : {"any", "double", "cell scalar", "korvex.Shape"}) {
        EXPECT_EQ(convert(COSValue(), type).array(), nullptr) << type;
    }
}

TEST_F(COSTypeRepositoryTest, refusesAnArrayThatIsNotThere) {
    EXPECT_EQ(refusal<cannotConvert>([] { COSTypeRepository::convertBorrowed(nullptr, "any"); }),
              (Arguments{"any", "nothing"}));
}

TEST_F(COSTypeRepositoryTest, takesAnyShapeIfNoneIsDeclared) {
    for (const kxDimensions& dimensions :
         {kxDimensions{}, {0, 0}, {0, 1}, {1, 1}, {2, 3}, {1, 2, 3}}) {
        EXPECT_TRUE(fits(dimensions, "double"));
    }
}

TEST_F(COSTypeRepositoryTest, takesAtMostOneDimensionOtherThanOneForAVector) {
    for (const kxDimensions& dimensions :
         {kxDimensions{1, 1}, {1, 5}, {5, 1}, {1, 0}, {0, 1}, {1, 1, 4}, {7}, {}}) {
        EXPECT_TRUE(fits(dimensions, "double vector"));
        EXPECT_TRUE(fits(dimensions, "any vector"));
    }
    for (const kxDimensions& dimensions : {kxDimensions{2, 2}, {0, 0}, {2, 1, 3}}) {
        EXPECT_FALSE(fits(dimensions, "double vector"));
        EXPECT_FALSE(fits(dimensions, "any vector"));
    }
}

TEST_F(COSTypeRepositoryTest, takesOneElementForAScalar) {
    for (const kxDimensions& dimensions : {kxDimensions{1, 1}, {1, 1, 1}, {1}}) {
        EXPECT_TRUE(fits(dimensions, "double scalar"));
    }
    for (const kxDimensions& dimensions : {kxDimensions{1, 2}, {2, 1}, {1, 0}, {0, 0}, {}}) {
        EXPECT_FALSE(fits(dimensions, "double scalar"));
    }
}

TEST_F(COSTypeRepositoryTest, tellsTheDimensionsThatDoNotFit) {
    const COSValue sample(kxArrayPtr(kxCreateNumeric(kxClass::kUint8, {2, 1, 3})));
    EXPECT_EQ(refusal<cannotConvert>([&] { convert(sample, "double vector"); }),
              (Arguments{"double vector", "uint8 of 2 by 1 by 3"}));
    EXPECT_EQ(refusal<cannotConvert>([&] { convert(sample, "uint8 scalar"); }),
              (Arguments{"uint8 scalar", "uint8 of 2 by 1 by 3"}));
}

TEST_F(COSTypeRepositoryTest, refusesAValueOfAnotherTypeThanWasSaid) {
    const COSValue text(sampleOf("char"));
    const COSConversion conversion = COSTypeRepository::getConversion("cell", "cell");
    EXPECT_THROW(conversion.apply(text), Exception<cannotConvert>);
}

TEST_F(COSTypeRepositoryTest, keepsElementsAndDimensionsInConverting) {
    kxArrayPtr bytes(kxCreateNumeric(kxClass::kInt16, {2, 3}));
    const std::vector<std::int16_t> elements{-32768, 32767, 0, 1, -1, 300};
    std::copy(elements.begin(), elements.end(), kxGetData<std::int16_t>(bytes.get()).begin());
    const auto converted = COSTypeRepository::convertBorrowed(bytes.get(), "double");
    const auto dimensions = kxGetDimensions(converted.get());
    EXPECT_EQ(kxDimensions(dimensions.begin(), dimensions.end()), (kxDimensions{2, 3}));
    const auto numbers = kxGetData<double>(const_cast<const kxArray*>(converted.get()));
    EXPECT_EQ(std::vector<double>(numbers.begin(), numbers.end()),
              (std::vector<double>{-32768, 32767, 0, 1, -1, 300}));
}

TEST_F(COSTypeRepositoryTest, convertsCharactersToTheirCodeUnits) {
    const kxArrayPtr text(kxCreateCharacters(u"a\xD800"));
    const auto converted = COSTypeRepository::convertBorrowed(text.get(), "double vector");
    EXPECT_EQ(kxGetNumber(converted.get(), 0), 97.0);
    EXPECT_EQ(kxGetNumber(converted.get(), 1), 55296.0);
}

}  // namespace
}  // namespace kobj
