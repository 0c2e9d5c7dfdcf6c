#pragma once
// Fields as sets have them, small ones and such of several parts, and how to compare them.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/runtime/Arrays.hpp"

namespace zqpaths {

inline constexpr const char* kSomeClass = "some.Class";

inline std::vector<std::uint8_t> makeBytes(std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 1'664'525 + 1'013'904'223;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

inline korvex::Array makeStructure(std::vector<std::pair<std::string, korvex::Array>>&& fields) {
    std::vector<std::string> names;
    names.reserve(fields.size());
    for (const auto& field : fields) names.push_back(field.first);
    korvex::Array structure(kxCreateStructure({1, 1}, names));
    for (auto& [name, array] : fields) kxReplaceField(structure.get(), 0, name, array.release());
    return structure;
}

/// Text, bytes and numbers; so many bytes.
inline korvex::Array makeFields(std::size_t byteCount) {
    std::vector<std::pair<std::string, korvex::Array>> fields;
    fields.emplace_back("Text", korvex::text(std::u16string(u"a\u00E9\xD800\0z", 5)));
    fields.emplace_back("Bytes", korvex::bytes(makeBytes(byteCount)));
    fields.emplace_back("Numbers", korvex::numbers(std::vector<double>{0.5, -3, 1e300}));
    return makeStructure(std::move(fields));
}

inline void expectEqualArrays(const kxArray* left, const kxArray* right) {
    ASSERT_EQ(kxGetClassName(left), kxGetClassName(right));
    const auto leftSize = kxGetDimensions(left);
    const auto rightSize = kxGetDimensions(right);
    ASSERT_EQ(std::vector(leftSize.begin(), leftSize.end()),
              std::vector(rightSize.begin(), rightSize.end()));
    for (std::size_t i = 0; i < kxGetNumberOfElements(left); ++i)
        ASSERT_EQ(kxGetNumber(left, i), kxGetNumber(right, i)) << "element " << i;
}

inline void expectEqualFields(const kxArray* left, const kxArray* right) {
    const auto names = kxGetFieldNames(left);
    const auto otherNames = kxGetFieldNames(right);
    ASSERT_EQ(std::vector(names.begin(), names.end()),
              std::vector(otherNames.begin(), otherNames.end()));
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        expectEqualArrays(kxGetField(left, 0, name), kxGetField(right, 0, name));
    }
}

}  // namespace zqpaths
