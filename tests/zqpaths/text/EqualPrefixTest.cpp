#include "zqpaths/text/EqualPrefix.hpp"

#include <gtest/gtest.h>

#include <string>

namespace zqpaths {
namespace {

TEST(EqualPrefix, endsWithTheShorterText) {
    EXPECT_EQ(equalPrefix("", ""), 0U);
    EXPECT_EQ(equalPrefix("abc", ""), 0U);
    EXPECT_EQ(equalPrefix("usr/bin/", "usr/bin/env"), 8U);
    EXPECT_EQ(equalPrefix("usr/bin/env", "usr/bin/env"), 11U);
}

TEST(EqualPrefix, endsAtTheFirstByteThatDiffers) {
    for (std::size_t size = 1; size < 40; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            const std::string text(size, 'x');
            std::string other = text;
            other[at] = 'y';
            EXPECT_EQ(equalPrefix(text, other), at);
            other[at] = static_cast<char>('x' ^ 0x80);  // in its highest bit alone
            EXPECT_EQ(equalPrefix(other, text), at);
        }
    }
}

}  // namespace
}  // namespace zqpaths
