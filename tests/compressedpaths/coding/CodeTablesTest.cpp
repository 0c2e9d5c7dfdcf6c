// Tables code and decode as the coding tree does, bit by bit.

#include <gtest/gtest.h>

#include "tests/compressedpaths/coding/SlowCode.hpp"

namespace compressedpaths {
namespace {

using namespace slow_code;

TEST(CodeTables, codeAndDecodeALookedUpExample) {
    const CodeTables tables = SlowCode(u".a.bc").tables();  // a is 0, b 10, c 11
    NameBytes names;
    EXPECT_EQ(tables.appendCode(u"abc", names), 2U);
    EXPECT_EQ(Bytes(names.data(), names.end()), (Bytes{5, 0b11010}));

    std::string text = "-";
    tables.appendText(viewName(names.data(), names.end()), text);
    EXPECT_EQ(text, "-abc");
}

TEST(CodeTables, codeAllShortTextsLikeTheirCodeWords) {
    for (const SlowCode& code : variedCodes()) {
        const CodeTables tables = code.tables();
        const std::u16string some = code.leaves.substr(0, 5) + code.leaves.back();
        std::vector<std::u16string> texts{u""};
        for (std::size_t i = 0; texts[i].size() < 5; ++i)
            for (const char16_t character : some) texts.push_back(texts[i] + character);
        texts.erase(texts.begin());
        for (const std::u16string& text : texts) expectRoundTrip(code, tables, text);
    }
}

TEST(CodeTables, decodeAllShortBitStringsWhateverFollowsThem) {
    for (const SlowCode& code : variedCodes()) {
        const CodeTables tables = code.tables();
        for (std::size_t length = 0; length <= 11; ++length) {
            for (std::size_t value = 0; value < std::size_t{1} << length; ++value) {
                Bits bits;
                for (std::size_t bit = 0; bit < length; ++bit)
                    bits.push_back((value >> bit & 1) != 0);
                const std::u16string text = code.textOf(bits);
                for (const unsigned filling : {0x00U, 0xFFU}) {
                    const BitName name(bits, static_cast<std::uint8_t>(filling));
                    expectTexts(tables, name.view(), text);
                }
            }
        }
    }
}

TEST(CodeTables, decodeLongBitStringsCutAtAnyBit) {
    std::mt19937 random(1);
    for (const SlowCode& code : variedCodes()) {
        const CodeTables tables = code.tables();
        Bits bits;
        for (std::size_t length = 0; length < 400; ++length) {
            const BitName name(bits, static_cast<std::uint8_t>(random()));
            expectTexts(tables, name.view(), code.textOf(bits));
            bits.push_back(random() % 4 != 0);  // leads deep into a comb
        }
    }
}

TEST(CodeTables, codeTextsOfAnyLength) {
    std::mt19937 random(2);
    for (const SlowCode& code : variedCodes()) {
        const CodeTables tables = code.tables();
        std::u16string text;
        while (text.size() < 300) {
            text.push_back(code.leaves[random() % code.leaves.size()]);
            expectRoundTrip(code, tables, text);
        }
    }
}

TEST(CodeTables, tellTheLengthInOneByteBelow248Bits) {
    const SlowCode code(u".ab");
    const CodeTables tables = code.tables();
    EXPECT_EQ(coded(tables, std::u16string(247, u'b')).front(), 247);
    EXPECT_EQ(coded(tables, std::u16string(247, u'b')).size(), 1U + 31);
    const Bytes long248 = coded(tables, std::u16string(248, u'b'));
    EXPECT_EQ(Bytes(long248.begin(), long248.begin() + 4), (Bytes{248, 0xF8, 0x01, 0xFF}));
    EXPECT_EQ(long248.size(), 3U + 31);
    for (const std::size_t length : {246U, 247U, 248U, 249U, 255U, 256U, 257U, 20'000U})
        expectRoundTrip(code, tables, std::u16string(length - 1, u'b') + u"a");
}

TEST(CodeTables, codeWordsOfAnyNumberOfBits) {
    for (const std::size_t leaves :
         {11U, 12U, 13U, 14U, 56U, 57U, 58U, 59U, 64U, 65U, 130U, 3101U}) {
        const SlowCode code = comb(units(leaves, 0x20));
        const CodeTables tables = code.tables();
        const std::u16string deepest = code.leaves.substr(leaves - 4);
        expectRoundTrip(code, tables, deepest);
        expectRoundTrip(code, tables, u" " + deepest + u"  " + deepest);
        for (const char16_t character : deepest)
            expectRoundTrip(code, tables, std::u16string(1, character));
    }
}

TEST(CodeTables, giveARepeatedCharacterTheWordOfItsFirstLeaf) {
    const SlowCode code(u"..aba");
    EXPECT_EQ(coded(code.tables(), u"ab"), stored({false, false, false, true}));
    EXPECT_EQ(decoded<std::string>(code.tables(), BitName({true, false, true}).view()), "ab");
}

TEST(CodeTables, ofASingleLeafCodeToNoBytesAndDecodeNothing) {
    const CodeTables tables = SlowCode(u"x").tables();
    NameBytes names;
    EXPECT_EQ(tables.appendCode(u"xxx", names), 0U);
    EXPECT_EQ(Bytes(names.data(), names.end()), (Bytes{kAnyKey, 0}));
    EXPECT_THROW(tables.appendCode(u"xy", names), CodeNotFoundException);
    EXPECT_FALSE(tables.canDecode());
    std::string text;
    EXPECT_THROW(tables.appendText(BitName({true}).view(), text), NoUsableCodingTreeException);
}

TEST(CodeTables, withoutACodeNeitherCodeNorDecode) {
    const CodeTables tables;
    NameBytes names;
    EXPECT_THROW(tables.appendCode(u"", names), NoCodeForEmptyString);
    EXPECT_THROW(tables.appendCode(u"a", names), CodeNotFoundException);
    std::u16string text;
    EXPECT_FALSE(tables.canDecode());
    EXPECT_THROW(tables.appendText(BitName({}).view(), text), NoUsableCodingTreeException);
}

TEST(CodeTables, forDecodingCodeNothing) {
    const SlowCode code(u".a.bc");
    const CodeTables tables = CodeTables::forDecoding(code.shape, code.leaves);
    EXPECT_EQ(decoded<std::string>(tables, BitName({true, false, false}).view()), "ba");
    EXPECT_THROW(coded(tables, u"a"), CodeNotFoundException);
    EXPECT_TRUE(tables.arrays().words.isEmpty());
}

TEST(CodeTables, leaveTheNamesAloneWhenACharacterHasNoWord) {
    const SlowCode code = comb(units(100, u'A'));
    const CodeTables tables = code.tables();
    NameBytes names;
    tables.appendCode(u"ABC", names);
    const Bytes before(names.data(), names.end());
    const std::u16string longWord(3, u'A' + 99);
    for (const std::u16string& text :
         {std::u16string(u""), std::u16string(u"\u00FF"), std::u16string(u"AB\u4E00"),
          std::u16string(500, u'B') + u"!", longWord + u"!", u"!" + longWord}) {
        EXPECT_ANY_THROW(tables.appendCode(text, names));
        EXPECT_EQ(Bytes(names.data(), names.end()), before);
    }
}

TEST(CodeTables, appendNamesAfterOneAnother) {
    const SlowCode code = balanced(units(26, u'a'));
    const CodeTables tables = code.tables();
    NameBytes names;
    const std::vector<std::u16string> texts{u"one", u"two", std::u16string(100, u'z'), u"four"};
    for (const std::u16string& text : texts) tables.appendCode(text, names);
    const std::uint8_t* next = names.data();
    for (const std::u16string& text : texts) {
        const NameView name = viewName(next, names.end());
        expectTexts(tables, name, text);
        next = name.end();
    }
    EXPECT_EQ(next, names.end());
}

TEST(CodeTables, writeHalvesOfPairsRawBytesAndPairsAsTheyAre) {
    const std::u16string all{u'x', 0xD83D, 0xDE00, 0xDCED, 0xDCA0, 0xDC80, 0xDC7F, 0xDFFF, 0xDBFF};
    const SlowCode code = balanced(all);
    const CodeTables tables = code.tables();
    const auto bytesOf = [&](const std::u16string& text) {
        NameBytes names;
        tables.appendCode(text, names);
        return decoded<std::string>(tables, viewName(names.data(), names.end()));
    };
    EXPECT_EQ(bytesOf({0xD83D, 0xDE00}), "\xF0\x9F\x98\x80");
    EXPECT_EQ(bytesOf({0xDBFF, 0xDFFF}), "\xF4\x8F\xBF\xBF");
    EXPECT_EQ(bytesOf({0xD83D}), "\xED\xA0\xBD");
    EXPECT_EQ(bytesOf({0xDE00}), "\xED\xB8\x80");
    EXPECT_EQ(bytesOf({0xDE00, 0xD83D}), "\xED\xB8\x80\xED\xA0\xBD");
    EXPECT_EQ(bytesOf({0xD83D, u'x', 0xDE00}), "\xED\xA0\xBDx\xED\xB8\x80");
    EXPECT_EQ(bytesOf({0xD83D, 0xD83D, 0xDE00}), "\xED\xA0\xBD\xF0\x9F\x98\x80");
    EXPECT_EQ(bytesOf({0xDC80}), "\x80");
    EXPECT_EQ(bytesOf({0xDC7F}), "\xED\xB1\xBF");
    EXPECT_EQ(bytesOf({0xD83D, 0xDC80}), "\xF0\x9F\x92\x80");  // a second half, not a byte
    // Three raw bytes that look like the first half of a pair are none.
    EXPECT_EQ(bytesOf({0xDCED, 0xDCA0, 0xDC80, 0xDE00}), "\xED\xA0\x80\xED\xB8\x80");
}

TEST(CodeTables, joinNoPairAcrossTwoNames) {
    const SlowCode code = balanced({u'x', 0xD83D, 0xDE00, 0xDC80});
    const CodeTables tables = code.tables();
    std::string text;
    for (const char16_t unit : {char16_t{0xDE00}, char16_t{0xD83D}, char16_t{0xDE00}}) {
        NameBytes names;
        tables.appendCode(std::u16string(1, unit), names);
        tables.appendText(viewName(names.data(), names.end()), text);
    }
    EXPECT_EQ(text, "\xED\xB8\x80\xED\xA0\xBD\xED\xB8\x80");
}

TEST(CodeTables, joinPairsWhereverTheyStand) {
    for (const SlowCode& code : {balanced({u'x', 0xD83D, 0xDE00, 0xE9}),
                                 comb(units(30, u'a') + std::u16string{0xD83D, 0xDE00, u'x'})}) {
        const CodeTables tables = code.tables();
        for (std::size_t before = 0; before < 300; ++before)
            expectRoundTrip(code, tables,
                            std::u16string(before, u'x') + std::u16string{0xD83D, 0xDE00, u'x'});
    }
}

TEST(CodeTables, refuseWhatIsNoCodeBytesAndLeaveTheText) {
    const CodeTables tables = SlowCode(u".ab").tables();
    NameBytes names;
    appendStoredName(Bytes{1, 2, 9}, names);
    const NameView anyKey = viewName(names.data(), names.end());
    ASSERT_TRUE(anyKey.isAnyKey);
    const NameView cut = viewName(names.data(), names.data() + 1);
    for (const NameView& name : {anyKey, cut, NameView{}}) {
        std::string bytes = "kept";
        std::u16string characters = u"kept";
        EXPECT_THROW(tables.appendText(name, bytes), InvalidCodeException);
        EXPECT_THROW(tables.appendText(name, characters), InvalidCodeException);
        EXPECT_EQ(bytes, "kept");
        EXPECT_EQ(characters, u"kept");
    }
}

}  // namespace
}  // namespace compressedpaths
