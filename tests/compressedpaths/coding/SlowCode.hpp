#pragma once
// A coding tree that is gone through one bit and one character at a time, and what tables are held
// against it with:
//
//     const SlowCode code(u".a.bc");           // a: 0, b: 10, c: 11
//     expectRoundTrip(code, code.tables(), u"abc");

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "compressedpaths/HuffmanPathTreeExceptions.hpp"
#include "compressedpaths/coding/CodeTables.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace compressedpaths::slow_code {

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
inline SlowCode comb(const std::u16string& leaves) {
    Bits shape;
    for (std::size_t i = 0; i + 1 < leaves.size(); ++i) {
        shape.push_back(false);
        shape.push_back(true);
    }
    shape.push_back(true);
    return {shape, leaves};
}

inline SlowCode balanced(const std::u16string& leaves) {
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

inline std::u16string units(std::size_t count, char16_t first = 0) {
    std::u16string all;
    for (std::size_t i = 0; i < count; ++i) all.push_back(static_cast<char16_t>(first + i));
    return all;
}

inline std::string slowBytes(const std::u16string& text) {
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

inline Bytes stored(const Bits& bits) {
    Bytes key;
    sixpacks::boolVecToBytes(key, bits);
    NameBytes names;
    appendStoredName(key, names);
    return {names.data(), names.end()};
}

inline Bytes coded(const CodeTables& tables, std::u16string_view text) {
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

inline void expectTexts(const CodeTables& tables, const NameView& name,
                        const std::u16string& text) {
    ASSERT_EQ(decoded<std::u16string>(tables, name), text);
    ASSERT_EQ(decoded<std::string>(tables, name), slowBytes(text));
}

inline void expectRoundTrip(const SlowCode& code, const CodeTables& tables,
                            const std::u16string& text) {
    const Bits bits = code.bitsOf(text);
    NameBytes names;
    const std::size_t codeBytes = tables.appendCode(text, names);
    ASSERT_EQ(Bytes(names.data(), names.end()), stored(bits));
    ASSERT_EQ(codeBytes, bits.size() / 8 + 2);
    expectTexts(tables, viewName(names.data(), names.end()), text);
}

/// Codes of all kinds: words of one bit and of many, ASCII and other, at both sides of a look-up.
inline std::vector<SlowCode> variedCodes() {
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

}  // namespace compressedpaths::slow_code
