#include "compressedpaths/store/StoredName.hpp"

#include <gtest/gtest.h>

#include <map>

#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace compressedpaths {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes storedForm(const Bytes& key) {
    FlatArray<std::uint8_t> out;
    appendStoredName(key, out);
    return {out.data(), out.end()};
}

NameView viewOf(const Bytes& stored) {
    return viewName(stored.data(), stored.data() + stored.size());
}

Bytes codeBytes(std::size_t bitCount) {
    std::vector<bool> bits;
    for (std::size_t bit = 0; bit < bitCount; ++bit) bits.push_back(bit % 3 == 0);
    Bytes code;
    sixpacks::boolVecToBytes(code, bits);
    return code;
}

void expectRoundTrip(const Bytes& key) {
    const Bytes stored = storedForm(key);
    EXPECT_EQ(stored.size(), storedSize(key));
    const NameView name = viewOf(stored);
    ASSERT_NE(name.data, nullptr);
    EXPECT_EQ(name.end(), stored.data() + stored.size());
    EXPECT_EQ(name.keySize(), key.size());
    EXPECT_EQ(keyOf(name), key);
}

TEST(StoredName, isTheLengthInBitsAndTheBits) {
    EXPECT_EQ(storedForm({0x4D, 0x02, 0x02}), (Bytes{0x0A, 0x4D, 0x02}));
    EXPECT_EQ(storedForm({0xFF, 0x00, 0x00}), (Bytes{8, 0xFF}));
    EXPECT_EQ(storedForm({0x01, 0x01}), (Bytes{1, 0x01}));
    EXPECT_EQ(storedForm({0x00, 0x00}), (Bytes{0}));
}

TEST(StoredName, hasALongHeadFrom248BitsOn) {
    EXPECT_EQ(storedForm(codeBytes(247)).size(), 1U + 31);
    EXPECT_EQ(storedForm(codeBytes(247))[0], 247);
    const Bytes longer = storedForm(codeBytes(248));
    EXPECT_EQ(longer.size(), 3U + 31);
    EXPECT_EQ(Bytes(longer.begin(), longer.begin() + 3), (Bytes{248, 0xF8, 0x01}));
}

TEST(StoredName, keepsAKeyThatIsNoCodeBytesAsItStands) {
    EXPECT_EQ(storedForm({}), (Bytes{249, 0}));
    EXPECT_EQ(storedForm({'a'}), (Bytes{249, 1, 'a'}));
    EXPECT_EQ(storedForm({0x01, 0x08}), (Bytes{249, 2, 0x01, 0x08}));  // eight bits are no partial
    EXPECT_EQ(storedForm({0x02, 0x01}), (Bytes{249, 2, 0x02, 0x01}));  // a one past the last bit
}

TEST(StoredName, givesBackCodeBytesOfEveryLength) {
    for (std::size_t bitCount = 1; bitCount < 600; ++bitCount) {
        SCOPED_TRACE(bitCount);
        expectRoundTrip(codeBytes(bitCount));
    }
    expectRoundTrip(codeBytes(200'000));
}

TEST(StoredName, givesBackAnyKey) {
    for (const std::size_t size : {0U, 1U, 3U, 127U, 128U, 300U}) {
        SCOPED_TRACE(size);
        expectRoundTrip(Bytes(size, 0xEE));
    }
}

TEST(StoredName, tellsAllKeysOfUpToTwoBytesApart) {
    std::map<Bytes, Bytes> keyOfStored;
    const auto take = [&](const Bytes& key) {
        const Bytes stored = storedForm(key);
        ASSERT_EQ(keyOf(viewOf(stored)), key);
        ASSERT_TRUE(keyOfStored.emplace(stored, key).second);
    };
    take({});
    for (unsigned first = 0; first < 256; ++first) {
        const auto byte = static_cast<std::uint8_t>(first);
        take({byte});
        for (unsigned second = 0; second < 256; ++second)
            take({byte, static_cast<std::uint8_t>(second)});
    }
    EXPECT_EQ(keyOfStored.size(), 1U + 256 + 65536);
}

TEST(StoredName, isTheSameOnlyOfTheSameKey) {
    const std::vector<Bytes> keys{
        {},        {0, 0}, {1, 1},       {1, 2},           {1, 8},         {1},
        {1, 0, 0}, {2, 2}, codeBytes(9), codeBytes(10000), codeBytes(248), codeBytes(249)};
    for (std::size_t a = 0; a < keys.size(); ++a) {
        for (std::size_t b = 0; b < keys.size(); ++b) {
            const Bytes storedA = storedForm(keys[a]);
            const Bytes storedB = storedForm(keys[b]);
            EXPECT_EQ(isSameName(viewOf(storedA), viewOf(storedB)), a == b) << a << ' ' << b;
        }
    }
}

TEST(StoredName, isNoneWhereItIsCut) {
    for (const Bytes& key : {codeBytes(5), codeBytes(247), codeBytes(248), Bytes(200, 1)}) {
        const Bytes stored = storedForm(key);
        for (std::size_t size = 0; size < stored.size(); ++size) {
            const Bytes cut(stored.begin(), stored.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_EQ(viewOf(cut).data, nullptr) << size;
        }
    }
}

TEST(StoredName, isNoneWithAHeadThatMeansNothing) {
    for (const std::uint8_t head : Bytes{250, 255})
        EXPECT_EQ(viewOf({head, 1, 0, 0, 0, 0, 0, 0}).data, nullptr) << int{head};
}

TEST(StoredName, isNoneOfALengthThatNoMemoryHas) {
    for (const std::uint8_t head : {kLongName, kAnyKey})
        EXPECT_EQ(
            viewOf({head, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01, 0}).data,
            nullptr);
}

TEST(StoredName, followsWhatWasAppendedBefore) {
    FlatArray<std::uint8_t> out;
    appendStoredName(Bytes{1, 1}, out);
    appendStoredName(Bytes{'a'}, out);
    const NameView first = viewName(out.data(), out.end());
    EXPECT_EQ(keyOf(first), (Bytes{1, 1}));
    EXPECT_EQ(keyOf(viewName(first.end(), out.end())), (Bytes{'a'}));
}

TEST(Varint, givesBackNumbersOfEverySize) {
    for (unsigned bits = 0; bits <= 64; ++bits) {
        const std::uint64_t number = bits == 0 ? 0 : ~std::uint64_t{0} >> (64 - bits);
        Bytes bytes(kMaxVarintSize);
        const auto size =
            static_cast<std::size_t>(writeVarint(number, bytes.data()) - bytes.data());
        EXPECT_EQ(size, varintSize(number)) << bits;
        std::uint64_t read = 0;
        EXPECT_EQ(readVarint(bytes.data(), bytes.data() + size, read), bytes.data() + size);
        EXPECT_EQ(read, number);
        EXPECT_EQ(readVarint(bytes.data(), bytes.data() + size - 1, read), nullptr) << bits;
    }
}

TEST(Varint, hasSevenBitsAByteTheLowestFirst) {
    Bytes bytes(kMaxVarintSize);
    writeVarint(300, bytes.data());
    EXPECT_EQ(bytes[0], 0xAC);
    EXPECT_EQ(bytes[1], 0x02);
}

TEST(Varint, isNoneThatDoesNotEndInTenBytes) {
    const Bytes bytes(20, 0x80);
    std::uint64_t read = 0;
    EXPECT_EQ(readVarint(bytes.data(), bytes.data() + bytes.size(), read), nullptr);
}

}  // namespace
}  // namespace compressedpaths
