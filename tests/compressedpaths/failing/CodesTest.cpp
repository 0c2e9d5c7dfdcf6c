// Lack of memory while a code is made or given characters.

#include <gtest/gtest.h>

#include <memory>
#include <unordered_map>
#include <vector>

#include "tests/compressedpaths/failing/FailingSets.hpp"

namespace compressedpaths {
namespace {

using Peer = HuffmanPathTreePeer;

TEST(FailingAllocations, leaveASetWithoutACode) {
    const std::u16string characters = u"abcdefg";
    const std::vector<double> frequencies{1, 2, 3, 4, 5, 6, 7};
    HuffmanPathTree expected;
    expected.deflateHuffman(frequencies.data(), characters);
    const std::size_t failures = forEachBlock(
        [] { return std::make_unique<HuffmanPathTree>(); },
        [&](HuffmanPathTree& set) { set.deflateHuffman(frequencies.data(), characters); },
        [](HuffmanPathTree& set) {
            EXPECT_TRUE(set.getBoolTree().empty());
            EXPECT_TRUE(set.getTreeString().empty());
            EXPECT_TRUE(set.getFrequencies().empty());
            EXPECT_TRUE(Peer::nodes(set).empty());
            EXPECT_TRUE(Peer::codes(set).empty());
            EXPECT_THROW(set.generateCodeFor(u"a"), CodeNotFoundException);
        },
        [&](HuffmanPathTree& set) {
            EXPECT_EQ(set.getTreeString(), expected.getTreeString());
            EXPECT_EQ(set.generateCodeFor(u"abcdefg"), expected.generateCodeFor(u"abcdefg"));
            EXPECT_EQ(set.generatePathFrom(set.generateCodeFor(u"gag")), u"gag");
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocations, leaveASetWithoutACodeOfAMap) {
    const std::unordered_map<char16_t, double> frequencyOf{{u'a', 1}, {u'b', 2}, {u'c', 3}};
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<HuffmanPathTree>(); },
                     [&](HuffmanPathTree& set) { set.deflateHuffman(frequencyOf); },
                     [](HuffmanPathTree& set) {
                         EXPECT_TRUE(set.getBoolTree().empty());
                         EXPECT_TRUE(Peer::nodes(set).empty());
                         EXPECT_TRUE(Peer::codes(set).empty());
                     },
                     [](HuffmanPathTree& set) {
                         EXPECT_EQ(set.generatePathFrom(set.generateCodeFor(u"cab")), u"cab");
                     });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocations, leaveALoadedSetWithoutItsCharacters) {
    HuffmanPathTree source;
    buildSet(source, kEntries);
    const Bytes form = savedForm(source);
    const std::size_t failures = forEachBlock(
        [&] {
            auto set = std::make_unique<HuffmanPathTree>();
            Bytes bytes = form;
            set->deserialize(bytes, false);
            return set;
        },
        [&](HuffmanPathTree& set) { set.inflateHuffman(source.getTreeString()); },
        [&](HuffmanPathTree& set) {
            EXPECT_EQ(set.getBoolTree(), source.getBoolTree());
            EXPECT_TRUE(set.getTreeString().empty());
            EXPECT_TRUE(Peer::nodes(set).empty());
            EXPECT_TRUE(Peer::codes(set).empty());
            EXPECT_EQ(savedForm(set), form);
        },
        [](HuffmanPathTree& set) {
            EXPECT_EQ(pathsByNumber(set, pathsOf(kEntries).size()), pathsOf(kEntries));
            EXPECT_EQ(set.generatePathFrom(set.generateCodeFor(u"name")), u"name");
        });
    EXPECT_GT(failures, 0U);
}

}  // namespace
}  // namespace compressedpaths
