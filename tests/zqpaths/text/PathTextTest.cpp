#include "zqpaths/text/PathText.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace zqpaths {
namespace {

std::u16string toUtf16(std::string_view bytes) {
    std::u16string text;
    appendUtf16(bytes, text);
    return text;
}

std::string toBytes(std::u16string_view text) {
    std::string bytes;
    appendBytes(text, bytes);
    return bytes;
}

std::string roundTrip(std::string_view bytes) {
    return toBytes(toUtf16(bytes));
}

TEST(PathText, keepsAsciiOfEveryLengthAsItIs) {
    std::string bytes;
    std::u16string text;
    for (char character = ' '; character < '\x7F'; ++character) {
        EXPECT_EQ(toUtf16(bytes), text);
        EXPECT_EQ(toBytes(text), bytes);
        bytes.push_back(character);
        text.push_back(static_cast<char16_t>(character));
    }
}

TEST(PathText, convertsUtf8OfEveryLength) {
    EXPECT_EQ(toUtf16("\x7F"), u"\u007F");
    EXPECT_EQ(toUtf16("\xC2\x80"), std::u16string(1, 0x80));
    EXPECT_EQ(toUtf16("\xDF\xBF"), u"\u07FF");
    EXPECT_EQ(toUtf16("\xE0\xA0\x80"), u"\u0800");
    EXPECT_EQ(toUtf16("\xEF\xBF\xBF"), u"\uFFFF");
    EXPECT_EQ(toUtf16("\xF0\x90\x80\x80"), u"\U00010000");
    EXPECT_EQ(toUtf16("\xF4\x8F\xBF\xBF"), u"\U0010FFFF");
}

TEST(PathText, givesBackEveryCodePoint) {
    for (char32_t point = 0; point <= 0x10FFFF; ++point) {
        if (point >= 0xD800 && point <= 0xDFFF) continue;
        std::u16string text;
        if (point < 0x10000) {
            text.push_back(static_cast<char16_t>(point));
        } else {
            text.push_back(static_cast<char16_t>(0xD7C0 + (point >> 10)));
            text.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
        }
        ASSERT_EQ(toUtf16(toBytes(text)), text) << static_cast<std::uint32_t>(point);
    }
}

TEST(PathText, escapesEachByteThatIsNotUtf8) {
    EXPECT_EQ(toUtf16("a\xFFz"), (std::u16string{u'a', 0xDCFF, u'z'}));
    EXPECT_EQ(toUtf16("\x80"), (std::u16string{0xDC80}));
    EXPECT_EQ(toUtf16("\xC3"), (std::u16string{0xDCC3}));                          // cut short
    EXPECT_EQ(toUtf16("\xE2\x82x"), (std::u16string{0xDCE2, 0xDC82, u'x'}));       // cut short
    EXPECT_EQ(toUtf16("\xC0\xAF"), (std::u16string{0xDCC0, 0xDCAF}));              // overlong
    EXPECT_EQ(toUtf16("\xED\xA0\x80"), (std::u16string{0xDCED, 0xDCA0, 0xDC80}));  // a surrogate
    EXPECT_EQ(toUtf16("\xF4\x90\x80\x80"),
              (std::u16string{0xDCF4, 0xDC90, 0xDC80, 0xDC80}));  // beyond the last plane
}

TEST(PathText, givesBackAnEscapedByteBehindACharacterOfTwoUnits) {
    const std::string bytes = "\xF0\x9F\x98\x80\x80";
    EXPECT_EQ(toUtf16(bytes), (std::u16string{0xD83D, 0xDE00, 0xDC80}));
    EXPECT_EQ(roundTrip(bytes), bytes);
}

TEST(PathText, givesBackAllStringsOfTwoBytes) {
    for (unsigned number = 0; number <= 0xFFFF; ++number) {
        const std::string bytes{static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)};
        ASSERT_EQ(roundTrip(bytes), bytes) << number;
    }
}

TEST(PathText, givesBackAllStringsOfUpToFiveBytesThatStandAtTheEdgesOfUtf8) {
    constexpr std::string_view kEdges = "a\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xE0\xED\xEF\xF0\xF4\xF5";
    std::size_t count = 1;
    for (std::size_t length = 1; length <= 5; ++length) {
        count *= kEdges.size();
        std::string bytes(length, '\0');
        for (std::size_t number = 0; number < count; ++number) {
            std::size_t rest = number;
            for (char& byte : bytes) {
                byte = kEdges[rest % kEdges.size()];
                rest /= kEdges.size();
            }
            ASSERT_EQ(roundTrip(bytes), bytes) << number << " of length " << length;
        }
    }
}

TEST(PathText, givesBackRandomBytes) {
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): a failure is to come again in the next run
    std::mt19937 random(1);
    for (int round = 0; round < 20'000; ++round) {
        std::string bytes(random() % 40, '\0');
        const bool isMostlyAscii = round % 2 == 0;
        for (char& byte : bytes) {
            const bool isLetter = isMostlyAscii && random() % 8 != 0;
            byte = static_cast<char>(isLetter ? 'a' + random() % 26 : random() % 256);
        }
        ASSERT_EQ(roundTrip(bytes), bytes);
    }
}

TEST(PathText, appendsToWhatIsThere) {
    std::u16string text = u"1";
    appendUtf16("2\xC3\xA9", text);
    appendUtf16("", text);
    EXPECT_EQ(text, u"12\u00E9");
    std::string bytes = "0";
    appendBytes(text, bytes);
    EXPECT_EQ(bytes, "012\xC3\xA9");
}

TEST(PathText, keepsForeignLoneSurrogatesApart) {
    EXPECT_EQ(toBytes({u"\xD800", 1}), "\xED\xA0\x80");
    EXPECT_EQ(toBytes({u"\xD83Dx", 2}), "\xED\xA0\xBDx");
    EXPECT_EQ(toBytes({u"\xDC00", 1}), "\xED\xB0\x80");
    EXPECT_EQ(toBytes({u"\xDD00", 1}), "\xED\xB4\x80");
}

TEST(PathText, tellsHowMuchIsUtf8) {
    EXPECT_EQ(utf8Prefix(""), 0);
    EXPECT_EQ(utf8Prefix("plain enough for eight bytes"), 28);
    EXPECT_EQ(utf8Prefix("caf\xC3\xA9"), 5);
    EXPECT_EQ(utf8Prefix("caf\xC3"), 3);
    EXPECT_EQ(utf8Prefix("plain enough\xFF and more"), 12);
    EXPECT_EQ(utf8Prefix("\xED\xA0\x80"), 0);
}

TEST(PathText, replacesWhatCannotBeRead) {
    std::string text = "kept ";
    appendReadable("caf\xC3\xA9 \xFF\xFE", text);
    EXPECT_EQ(text, "kept caf\xC3\xA9 \xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace zqpaths
