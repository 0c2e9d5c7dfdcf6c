#include "compressedpaths/CodeTables.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "compressedpaths/HuffmanPathTreeExceptions.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace compressedpaths {
namespace {

using Bits = std::vector<bool>;
using Bytes = std::vector<std::uint8_t>;
using NameBytes = FlatArray<std::uint8_t>;

/// A coding tree, and what its tables are compared with: one bit, one character at a time.
struct SlowCode {
    Bits shape;
    std::u16string leaves;
    std::map<char16_t, Bits> words;
    std::map<Bits, char16_t> characters;

    /// The shape in pre-order: a dot is a branch, any other character a leaf.
    explicit SlowCode(const std::u16string& preOrder) {
        for (const char16_t character : preOrder) {
            shape.push_back(character != u'.');
            if (shape.back()) leaves.push_back(character);
        }
        findWords();
    }

    SlowCode(Bits theShape, std::u16string theLeaves)
        : shape(std::move(theShape)), leaves(std::move(theLeaves)) {
        findWords();
    }

    CodeTables tables() const { return {shape, leaves}; }

    Bits bitsOf(std::u16string_view text) const {
        Bits bits;
        for (const char16_t character : text) {
            const Bits& word = words.at(character);
            bits.insert(bits.end(), word.begin(), word.end());
        }
        return bits;
    }

    std::u16string textOf(const Bits& bits) const {
        std::u16string text;
        Bits word;
        for (const bool bit : bits) {
            word.push_back(bit);
            const auto leaf = characters.find(word);
            if (leaf == characters.end()) continue;
            text.push_back(leaf->second);
            word.clear();
        }
        return text;
    }

private:
    void findWords() {
        Bits path;
        std::size_t leaf = 0;
        for (const bool isLeaf : shape) {
            if (!isLeaf) {
                path.push_back(false);
                continue;
            }
            words.emplace(leaves[leaf], path);
            characters.emplace(path, leaves[leaf]);
            ++leaf;
            while (!path.empty() && path.back()) path.pop_back();
            if (!path.empty()) path.back() = true;
        }
    }
};

/// Each leaf one level below the one before: word n is n ones and a zero, the last but ones.
SlowCode comb(const std::u16string& leaves) {
    Bits shape;
    for (std::size_t i = 0; i + 1 < leaves.size(); ++i) {
        shape.push_back(false);
        shape.push_back(true);
    }
    shape.push_back(true);
    return {shape, leaves};
}

SlowCode balanced(const std::u16string& leaves) {
    Bits shape;
    std::vector<std::size_t> open{leaves.size()};
    while (!open.empty()) {
        const std::size_t count = open.back();
        open.pop_back();
        shape.push_back(count == 1);
        if (count == 1) continue;
        open.push_back(count - count / 2);
        open.push_back(count / 2);
    }
    return {shape, leaves};
}

std::u16string units(std::size_t count, char16_t first = 0) {
    std::u16string all;
    for (std::size_t i = 0; i < count; ++i) all.push_back(static_cast<char16_t>(first + i));
    return all;
}

std::string slowBytes(const std::u16string& text) {
    const auto isHigh = [](char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; };
    const auto isLow = [](char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; };
    std::string bytes;
    const auto append = [&bytes](std::uint32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t number = text[i];
        if (isHigh(text[i]) && i + 1 < text.size() && isLow(text[i + 1])) {
            number = 0x10000U + ((text[i] - 0xD800U) << 10) + (text[i + 1] - 0xDC00U);
            ++i;
        } else if (number >= 0xDC80 && number <= 0xDCFF) {
            append(number - 0xDC00);
            continue;
        }
        if (number < 0x80) {
            append(number);
        } else if (number < 0x800) {
            append(0xC0 | number >> 6);
            append(0x80 | (number & 0x3F));
        } else if (number < 0x10000) {
            append(0xE0 | number >> 12);
            append(0x80 | (number >> 6 & 0x3F));
            append(0x80 | (number & 0x3F));
        } else {
            append(0xF0 | number >> 18);
            append(0x80 | (number >> 12 & 0x3F));
            append(0x80 | (number >> 6 & 0x3F));
            append(0x80 | (number & 0x3F));
        }
    }
    return bytes;
}

Bytes stored(const Bits& bits) {
    Bytes key;
    sixpacks::boolVecToBytes(key, bits);
    NameBytes names;
    appendStoredName(key, names);
    return {names.data(), names.end()};
}

Bytes coded(const CodeTables& tables, std::u16string_view text) {
    NameBytes names;
    tables.appendCode(text, names);
    return {names.data(), names.end()};
}

template <class Text>
Text decoded(const CodeTables& tables, const NameView& name) {
    Text text;
    tables.appendText(name, text);
    return text;
}

/// The bits of a name in memory of their own; what may be read after them is `filling`.
class BitName {
public:
    explicit BitName(const Bits& bits, std::uint8_t filling = 0xFF) {
        Bytes key;
        sixpacks::boolVecToBytes(key, bits);
        if (!key.empty()) key.resize(key.size() - 2 + (key.back() != 0 ? 1 : 0));
        if (bits.size() % 8 != 0)
            key.back() = static_cast<std::uint8_t>(key.back() | filling << bits.size() % 8);
        size_ = bits.size();
        data_ = key;
        data_.resize(key.size() + FlatArray<std::uint8_t>::kReadableBytes, filling);
    }
    NameView view() const { return {data_.data(), size_, false}; }

private:
    Bytes data_;
    std::size_t size_ = 0;
};

void expectTexts(const CodeTables& tables, const NameView& name, const std::u16string& text) {
    ASSERT_EQ(decoded<std::u16string>(tables, name), text);
    ASSERT_EQ(decoded<std::string>(tables, name), slowBytes(text));
}

void expectRoundTrip(const SlowCode& code, const CodeTables& tables, const std::u16string& text) {
    const Bits bits = code.bitsOf(text);
    NameBytes names;
    const std::size_t codeBytes = tables.appendCode(text, names);
    ASSERT_EQ(Bytes(names.data(), names.end()), stored(bits));
    ASSERT_EQ(codeBytes, bits.size() / 8 + 2);
    expectTexts(tables, viewName(names.data(), names.end()), text);
}

/// Codes of all kinds: words of one bit and of many, ASCII and other, at both sides of a look-up.
std::vector<SlowCode> variedCodes() {
    const std::u16string odd{u'a',   0xE9,   0x20AC, 0xD83D, 0xDE00, 0xDC80,
                             0xDCFF, 0xD800, 0xDBFF, 0x7F,   0x80,   0xFFFF};
    return {SlowCode(u".ab"),
            SlowCode(u".a.bc"),
            SlowCode(u"..a.b\u00E9..cd."
                     u"e.f.\U0001F600"),
            balanced(units(128)),
            balanced(odd),
            comb(odd),
            comb(units(40, u'A')),
            comb(units(40, 0xD7F0)),
            balanced(units(5000, 0x30))};
}

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

/// Tables on copies of the arrays of a code that `damage` has been at.
template <class Damage>
CodeTables damaged(const SlowCode& code, Damage damage) {
    CodeTables::Arrays arrays = code.tables().arrays();
    damage(arrays);
    return CodeTables(std::move(arrays));
}

TEST(CodeTables, workOnArraysThatAreBorrowed) {
    const SlowCode code = comb(units(100, u'A'));
    const CodeTables owner = code.tables();
    const CodeTables::Arrays& own = owner.arrays();
    CodeTables::Arrays arrays;
    arrays.pageOf = FlatArray<std::uint16_t>::borrowing(own.pageOf.values());
    arrays.words = FlatArray<std::uint64_t>::borrowing(own.words.values());
    arrays.longWords = FlatArray<std::uint32_t>::borrowing(own.longWords.values());
    arrays.longBits = FlatArray<std::uint8_t>::borrowing(own.longBits.values());
    arrays.steps = FlatArray<std::uint64_t>::borrowing(own.steps.values());
    arrays.branches = FlatArray<std::uint32_t>::borrowing(own.branches.values());
    expectRoundTrip(code, CodeTables(std::move(arrays)), code.leaves);
}

TEST(CodeTables, onArraysOfOtherSizesCodeAndDecodeNothing) {
    const SlowCode code(u".a.bc");
    const auto noPages = damaged(code, [](auto& arrays) { arrays.pageOf.truncate(255); });
    EXPECT_THROW(coded(noPages, u"a"), CodeNotFoundException);
    const auto noWords = damaged(code, [](auto& arrays) { arrays.words.truncate(255); });
    EXPECT_THROW(coded(noWords, u"a"), CodeNotFoundException);
    const auto noSteps = damaged(code, [](auto& arrays) { arrays.steps.truncate(4095); });
    EXPECT_FALSE(noSteps.canDecode());
    const auto noBranches = damaged(code, [](auto& arrays) { arrays.branches.truncate(0); });
    EXPECT_FALSE(noBranches.canDecode());
}

TEST(CodeTables, findNoLongWordOutsideTheArrays) {
    const SlowCode code = comb(units(100, u'A'));
    const std::u16string text(1, u'A' + 98);
    EXPECT_EQ(coded(code.tables(), text), stored(code.bitsOf(text)));
    const auto cutWords = [](auto& arrays) { arrays.longWords.truncate(3); };
    EXPECT_THROW(coded(damaged(code, cutWords), text), CodeNotFoundException);
    const auto cutBits = [](auto& arrays) {
        arrays.longBits.truncate(arrays.longBits.size() - 20);
    };
    EXPECT_THROW(coded(damaged(code, cutBits), text), CodeNotFoundException);
    const auto farAway = [](auto& arrays) {
        for (std::size_t i = 0; i < arrays.longWords.size(); ++i)
            arrays.longWords.at(i) = 0xFFFFFFFF;
    };
    EXPECT_THROW(coded(damaged(code, farAway), text), CodeNotFoundException);
}

TEST(CodeTables, comeToAnEndWhereStepsOrBranchesLeadNowhere) {
    const SlowCode code = comb(units(100, u'A'));
    const BitName name(Bits(1000, true));
    const auto noBits = damaged(code, [](auto& arrays) { arrays.steps.assign(4096, 0); });
    EXPECT_THROW(decoded<std::string>(noBits, name.view()), InvalidCodeException);
    const auto circle = [](auto& arrays) { arrays.branches.assign(arrays.branches.size(), 0); };
    EXPECT_EQ(decoded<std::string>(damaged(code, circle), name.view()), "");
    const auto outside = [](auto& arrays) {
        arrays.branches.assign(arrays.branches.size(), 0x7FFFFFFF);
    };
    EXPECT_THROW(decoded<std::u16string>(damaged(code, outside), name.view()),
                 InvalidCodeException);
}

/// Runs `work`, which may refuse what it is given.
template <class Work>
void tolerate(Work work) {
    try {
        work();
    } catch (const InvalidCodeException&) {
        // told
    } catch (const CodeNotFoundException&) {
        // told
    }
}

TEST(CodeTables, readNothingOutsideOfArraysThatHoldAnything) {
    std::mt19937_64 random(3);
    const SlowCode code = comb(units(100, u'A'));
    for (unsigned round = 0; round < 400; ++round) {
        const auto scramble = [&](auto& array) {
            const bool isAll = random() % 2 == 0;
            for (std::size_t i = 0; i < array.size(); ++i)
                if (isAll || random() % 8 == 0)
                    array.at(i) = static_cast<std::remove_cvref_t<decltype(array[0])>>(
                        random() >> random() % 64);
        };
        const CodeTables tables = damaged(code, [&](auto& arrays) {
            if (round % 2 == 0) scramble(arrays.pageOf);
            if (round % 3 == 0) scramble(arrays.words);
            if (round % 5 != 0) scramble(arrays.longWords);
            scramble(arrays.steps);
            if (round % 7 != 0) scramble(arrays.branches);
        });
        tolerate([&] { coded(tables, code.leaves); });
        for (const char16_t character : code.leaves)
            tolerate([&] { coded(tables, std::u16string(3, character)); });
        for (const std::size_t length : {1U, 12U, 47U, 48U, 90U, 2000U}) {
            Bits bits;
            while (bits.size() < length) bits.push_back(random() % 3 != 0);
            const BitName name(bits, static_cast<std::uint8_t>(random()));
            tolerate([&] { decoded<std::string>(tables, name.view()); });
            tolerate([&] { decoded<std::u16string>(tables, name.view()); });
        }
    }
}

}  // namespace
}  // namespace compressedpaths
