#include "zqpaths/text/Base64.hpp"

#include <gtest/gtest.h>

namespace zqpaths {
namespace {

// RFC 4648, section 10.
TEST(Base64, givesTheExamplesOfItsStandard) {
    EXPECT_EQ(toBase64(""), "");
    EXPECT_EQ(toBase64("f"), "Zg==");
    EXPECT_EQ(toBase64("fo"), "Zm8=");
    EXPECT_EQ(toBase64("foo"), "Zm9v");
    EXPECT_EQ(toBase64("foob"), "Zm9vYg==");
    EXPECT_EQ(toBase64("fooba"), "Zm9vYmE=");
    EXPECT_EQ(toBase64("foobar"), "Zm9vYmFy");
}

TEST(Base64, comesBackAsTheBytes) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes.push_back(static_cast<char>(byte));
        EXPECT_EQ(fromBase64(toBase64(bytes)), bytes);
    }
}

TEST(Base64, refusesWhatItDoesNotWrite) {
    for (const char* const digits : {"Z", "Zg", "Zg=", "Zg===", "Zh==", "Zg==Zg==", "Z g=", "Zm9-"})
        EXPECT_EQ(fromBase64(digits), std::nullopt) << digits;
}

TEST(Base64, takesBytesThatAreNoCharacters) {
    EXPECT_EQ(toBase64("\xFF\xFE\xFD"), "//79");
    EXPECT_EQ(toBase64(std::string_view("\0\0", 2)), "AAA=");
}

}  // namespace
}  // namespace zqpaths
