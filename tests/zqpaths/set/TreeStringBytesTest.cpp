#include "zqpaths/set/TreeStringBytes.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zqpaths {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(TreeStringBytes, haveTheLowestByteFirst) {
    Bytes bytes{0x7A};
    appendTreeString(u"a\u20AC", bytes);
    EXPECT_EQ(bytes, (Bytes{0x7A, 0x61, 0x00, 0xAC, 0x20}));
}

TEST(TreeStringBytes, giveEveryCharacterBack) {
    std::u16string characters;
    for (std::uint32_t character = 0; character < 0x10000; ++character)
        characters.push_back(static_cast<char16_t>(character));
    Bytes bytes;
    appendTreeString(characters, bytes);
    EXPECT_EQ(treeStringOf(bytes), characters);
}

TEST(TreeStringBytes, mayBeNone) {
    EXPECT_EQ(treeStringOf({}), u"");
}

}  // namespace
}  // namespace zqpaths
