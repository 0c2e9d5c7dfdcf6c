#include "compressedpaths/store/TrieBuilder.hpp"

#include <gtest/gtest.h>

#include <string>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "tests/support/Tries.hpp"
#include "tests/support/ZeroPages.hpp"

namespace compressedpaths {
namespace {

using Node = TrieBuilder::Node;

// Structure bytes: 1 has children, 2 a sibling follows.
constexpr std::uint8_t kLast = 0;
constexpr std::uint8_t kLastWithChildren = 1;
constexpr std::uint8_t kLeaf = 2;
constexpr std::uint8_t kWithChildren = 3;

/// A shape and keys of one letter a node.
struct Shape {
    Bytes structure;
    std::vector<Bytes> keys;

    Shape(Bytes bytes, const std::string& letters) : structure(std::move(bytes)) {
        for (const char letter : letters) keys.push_back(key(letter));
    }
    TrieBuilder builder() const { return {structure, keys.size()}; }
};

std::string decodedListing(const PathArena& arena, PathArena::Id folder = PathArena::kRoot) {
    std::string line;
    std::uint32_t left = arena.childCount(folder);
    if (left == 0) return line;
    for (auto child = arena.firstChild(folder);; arena.advance(child)) {
        line += static_cast<char>(keyOf(arena.nameOf(child))[0]);
        const PathArena::Id inside = arena.folderAt(child);
        if (inside != PathArena::kNone) line += '[' + decodedListing(arena, inside) + ']';
        if (--left == 0) return line;
    }
}

/// a with b, c with d and e, f; then g.
Shape sample() {
    return {{kWithChildren, kLeaf, kWithChildren, kLeaf, kLast, kLast, kLast}, "abcdefg"};
}

TEST(TrieBuilder, buildsTheTrieOfTheShape) {
    const Shape shape = sample();
    TrieBuilder builder = shape.builder();
    EXPECT_EQ(builder.error(), TrieBuilder::Error::kNone);
    EXPECT_EQ(builder.nodeCount(), 7U);
    EXPECT_EQ(builder.leafCount(), 5U);
    EXPECT_EQ(decodedListing(*builder.build(TrieBuilder::Keys(shape.keys))), "a[bc[de]f]g");
}

TEST(TrieBuilder, buildsAnEmptyTrieFromNoBytes) {
    const Shape shape({}, "");
    TrieBuilder builder = shape.builder();
    EXPECT_EQ(builder.error(), TrieBuilder::Error::kNone);
    const auto arena = builder.build(TrieBuilder::Keys(shape.keys));
    EXPECT_EQ(arena->folderCount(), 1U);
    EXPECT_EQ(decodedListing(*arena), "");
}

TEST(TrieBuilder, takesKeysAfterTheirLengths) {
    const Shape shape({kLeaf, kLast}, "ab");
    TrieBuilder builder = shape.builder();
    const Bytes bytes{0xEE, 1, 0, 'x', 1, 0, 'y'};
    const std::vector<std::uint64_t> lengthAt{1, 4};
    EXPECT_EQ(decodedListing(*builder.build(TrieBuilder::Keys(bytes.data(), lengthAt.data(), 2))),
              "xy");
}

TEST(TrieBuilder, followsTracksBeforeAnythingIsBuilt) {
    const TrieBuilder builder = sample().builder();
    EXPECT_EQ(builder.nodeAt({}), TrieBuilder::kRootNode);
    EXPECT_EQ(builder.nodeAt(Track{0, 1, 1}), 4U);
    EXPECT_EQ(builder.nodeAt(Track{1}), 6U);
    EXPECT_EQ(builder.nodeAt(Track{2}), TrieBuilder::kNoNode);
    EXPECT_EQ(builder.nodeAt(Track{1, 0}), TrieBuilder::kNoNode);
    EXPECT_EQ(builder.childCount(TrieBuilder::kRootNode), 2U);
    EXPECT_EQ(builder.childCount(0), 3U);
    EXPECT_EQ(builder.childCount(1), 0U);
    EXPECT_EQ(builder.childOf(0, 2), 5U);
}

TEST(TrieBuilder, saysWhereFoldersAndChildrenHaveCome) {
    const Shape shape = sample();
    TrieBuilder builder = shape.builder();
    const auto arena = builder.build(TrieBuilder::Keys(shape.keys));
    const PathArena::Id a = builder.folderOf(0);
    const PathArena::Id c = builder.folderOf(2);
    EXPECT_EQ(builder.folderOf(TrieBuilder::kRootNode), PathArena::kRoot);
    EXPECT_EQ(keyOf(arena->nameOf(c)), key('c'));
    EXPECT_EQ(arena->parentOf(c), a);
    for (std::size_t position = 0; position < 3; ++position) {
        const PathArena::Place place = builder.placeOf(0, position);
        EXPECT_EQ(arena->folderOf(place), a);
        EXPECT_EQ(arena->positionOf(place), position);
        EXPECT_EQ(keyOf(arena->nameOf(place)), key("bcf"[position]));
    }
    EXPECT_EQ(arena->folderAt(builder.placeOf(0, 1)), c);
}

TEST(TrieBuilder, putsFilesThatAreFoldersNowInOneRun) {
    const Shape shape = sample();
    TrieBuilder builder = shape.builder();
    builder.markFiles(0, 0, 2);
    const auto arena = builder.build(TrieBuilder::Keys(shape.keys));
    EXPECT_EQ(decodedListing(*arena), "a[bc[de]f]g");
    const PathArena::Link run = builder.placeOf(0, 0).link;
    EXPECT_EQ(builder.placeOf(0, 1), (PathArena::Place{run, 1}));
    EXPECT_EQ(arena->runAt(run).count, 3U);  // f follows them
    EXPECT_TRUE(arena->hasFormerFiles(arena->runAt(run)));
    EXPECT_EQ(arena->folderAt(builder.placeOf(0, 1)), builder.folderOf(2));
    EXPECT_EQ(arena->folderAt(builder.placeOf(0, 0)), PathArena::kNone);
}

TEST(TrieBuilder, putsAFolderThatWasNoFileBetweenRuns) {
    const Shape shape = sample();
    TrieBuilder builder = shape.builder();
    const auto arena = builder.build(TrieBuilder::Keys(shape.keys));
    EXPECT_NE(builder.placeOf(0, 0).link & PathArena::kFolderLink, PathArena::kFolderLink);
    EXPECT_EQ(builder.placeOf(0, 1).link, PathArena::kFolderLink | builder.folderOf(2));
    EXPECT_NE(builder.placeOf(0, 2).link, builder.placeOf(0, 0).link);
}

TEST(TrieBuilder, putsManyMarkedFoldersInOneRunWithSamples) {
    Shape shape({}, "");
    constexpr std::size_t kCount = 50;
    for (std::size_t i = 0; i < kCount; ++i) {
        shape.structure.push_back(i + 1 < kCount ? kWithChildren : kLastWithChildren);
        shape.structure.push_back(kLast);
        shape.keys.push_back(key('A'));
        shape.keys.push_back(key('x'));
    }
    TrieBuilder builder = shape.builder();
    builder.markFiles(TrieBuilder::kRootNode, 10, 30);
    const auto arena = builder.build(TrieBuilder::Keys(shape.keys));
    const PathArena::Link run = builder.placeOf(TrieBuilder::kRootNode, 10).link;
    EXPECT_EQ(arena->runAt(run).count, 30U);
    EXPECT_EQ(builder.placeOf(TrieBuilder::kRootNode, 39), (PathArena::Place{run, 29}));
    std::string expected;
    for (std::size_t i = 0; i < kCount; ++i) expected += "A[x]";
    EXPECT_EQ(decodedListing(*arena), expected);
}

TEST(TrieBuilder, ignoresMarksBeyondTheChildren) {
    const Shape shape = sample();
    TrieBuilder builder = shape.builder();
    builder.markFiles(0, 3, 1);
    builder.markFiles(0, 1, ~std::uint64_t{0});
    builder.markFiles(0, ~std::uint64_t{0}, 5);
    builder.markFiles(1, 0, 5);
    builder.markFiles(0, 0, 0);
    const auto arena = builder.build(TrieBuilder::Keys(shape.keys));
    EXPECT_EQ(decodedListing(*arena), "a[bc[de]f]g");
    EXPECT_EQ(builder.placeOf(0, 1).index, 1U);
}

TEST(TrieBuilder, makesAFolderOfALeafThatIsMarkedAsOne) {
    const Shape shape = sample();
    TrieBuilder builder = shape.builder();
    builder.markFolder(6);
    builder.markFolder(6);
    const auto arena = builder.build(TrieBuilder::Keys(shape.keys));
    EXPECT_EQ(decodedListing(*arena), "a[bc[de]f]g[]");
    EXPECT_EQ(keyOf(arena->nameOf(builder.folderOf(6))), key('g'));
    EXPECT_EQ(arena->childCount(builder.folderOf(6)), 0U);
}

TEST(TrieBuilder, buildsWhatStandsBeforeAnUnknownNode) {
    const Shape shape({kWithChildren, kLeaf, 7, kLast}, "abcd");
    TrieBuilder builder = shape.builder();
    EXPECT_EQ(builder.error(), TrieBuilder::Error::kUnknownNodeType);
    EXPECT_EQ(builder.nodeCount(), 3U);
    EXPECT_EQ(decodedListing(*builder.build(TrieBuilder::Keys(shape.keys))), "a[bc]");
    EXPECT_THROW(TrieBuilder::raise(builder.error()), UnknownNodeTypeException);
}

TEST(TrieBuilder, buildsWhatThereIsOfAShapeThatEnds) {
    const Shape whole = sample();
    const std::vector<std::string> expected{"",         "a[]",       "a[b]",      "a[bc[]]",
                                            "a[bc[d]]", "a[bc[de]]", "a[bc[de]f]"};
    for (std::size_t size = 1; size < 7; ++size) {
        for (const bool cutsKeys : {false, true}) {
            const std::size_t keyCount = cutsKeys ? size : 7;
            const auto structure = std::span(whole.structure).first(cutsKeys ? 7 : size);
            TrieBuilder builder(structure, keyCount);
            EXPECT_EQ(builder.error(), TrieBuilder::Error::kIncomplete);
            EXPECT_EQ(decodedListing(*builder.build(TrieBuilder::Keys(whole.keys))),
                      expected[size]);
        }
    }
    EXPECT_THROW(TrieBuilder::raise(TrieBuilder::Error::kIncomplete), IncompleteTrieException);
}

TEST(TrieBuilder, leavesOutWhatFollowsTheLastNode) {
    const Shape shape({kLast, kLast, 9}, "abc");
    TrieBuilder builder = shape.builder();
    EXPECT_EQ(builder.error(), TrieBuilder::Error::kNone);
    EXPECT_EQ(decodedListing(*builder.build(TrieBuilder::Keys(shape.keys))), "a");
}

TEST(TrieBuilder, buildsADeepTrieWithoutACallForEachLevel) {
    constexpr std::size_t kDepth = 300'000;
    Bytes structure(kDepth, kLastWithChildren);
    structure.push_back(kLast);
    const std::vector<Bytes> keys(kDepth + 1, key('a'));
    TrieBuilder builder(structure, keys.size());
    const auto arena = builder.build(TrieBuilder::Keys(keys));
    EXPECT_EQ(arena->folderCount(), kDepth + 1);
}

// Of none of which there is any more to read than that there are too many.
TEST(TrieBuilder, refusesMoreNodesThanNumbersReach) {
    constexpr std::size_t kTooMany = TrieBuilder::kNoNode;
    const ZeroPages pages(kTooMany);
    const std::span structure(reinterpret_cast<const std::uint8_t*>(pages.bytes().data()),
                              kTooMany);
    EXPECT_THROW(TrieBuilder(structure, kTooMany), SetTooLargeException);
    EXPECT_NO_THROW(TrieBuilder(structure, 1));
}

}  // namespace
}  // namespace compressedpaths
