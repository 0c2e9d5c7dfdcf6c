#include "tools/zqpaths/sources/archives/ZipHeader.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zqpaths::program {
namespace {

std::string twoBytes(std::size_t number) {
    return {static_cast<char>(number & 0xFF), static_cast<char>(number >> 8)};
}

std::string headerOf(const std::string& name, const std::string& fields = "") {
    return "PK\3\4" + std::string(22, '\7') + twoBytes(name.size()) + twoBytes(fields.size()) +
           name + fields;
}

std::string fieldOf(std::size_t kind, const std::string& content) {
    return twoBytes(kind) + twoBytes(content.size()) + content;
}

TEST(ZipHeader, hasTheNameAtTheEndOfTheBytes) {
    EXPECT_EQ(nameInZipHeader(headerOf("a/b")), "a/b");
    EXPECT_EQ(nameInZipHeader("content" + headerOf("\xFF", fieldOf(1, "xyz"))), "\xFF");
    EXPECT_EQ(nameInZipHeader("PK\3\4PK\3\4" + headerOf("PK\3\4")), "PK\3\4");
    EXPECT_EQ(nameInZipHeader(headerOf(std::string(65535, 'n'))), std::string(65535, 'n'));
}

TEST(ZipHeader, prefersANameInUtf8) {
    const std::string field = fieldOf(0x7075, "\1SUM4caf\xC3\xA9");
    EXPECT_EQ(nameInZipHeader(headerOf("caf\x82", fieldOf(1, "x") + field)), "caf\xC3\xA9");
    EXPECT_EQ(nameInZipHeader(headerOf("a", fieldOf(0x7075, "\1SUM4"))), "a");
    EXPECT_EQ(nameInZipHeader(headerOf("a", twoBytes(0x7075) + twoBytes(99))), "a");
}

TEST(ZipHeader, isNotInOtherBytes) {
    const std::string header = headerOf("a/b");
    EXPECT_EQ(nameInZipHeader(""), std::nullopt);
    EXPECT_EQ(nameInZipHeader(header + "x"), std::nullopt);
    for (std::size_t length = 0; length < header.size(); ++length)
        EXPECT_EQ(nameInZipHeader(header.substr(0, length)), std::nullopt) << length;
}

TEST(ZipHeader, knowsTheEndOfAZip) {
    const std::string end = "PK\5\6" + std::string(16, '\7') + twoBytes(3) + "abc";
    EXPECT_TRUE(hasEndOfZip(end));
    EXPECT_TRUE(hasEndOfZip("x" + end + "PK\5\6"));
    for (std::size_t length = 0; length < end.size(); ++length)
        EXPECT_FALSE(hasEndOfZip(end.substr(0, length))) << length;
}

}  // namespace
}  // namespace zqpaths::program
