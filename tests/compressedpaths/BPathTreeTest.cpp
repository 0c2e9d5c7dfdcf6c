#include "compressedpaths/BPathTree.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/Peers.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

using testing::ThrowsMessage;

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
constexpr const char* kNothingToWalk = "Cannot traverse an empty tree for a path.";
constexpr const char* kEmptyTrack = "Cannot traverse an tree for an empty path track.";
constexpr const char* kBadTrack = "The track leads to no node of the tree.";
constexpr const char* kBadFile = "The file number leads to no file of the folder.";

struct Added {
    bool existed;
    Track track;
    std::size_t priorChildCount;
};

Added addFolder(BPathTree& tree, Path folder, std::vector<Bytes> files) {
    Added added{};
    added.existed = tree.addPath(folder, files, added.track, added.priorChildCount);
    return added;
}

struct Fetched {
    std::vector<Path> folders;
    std::vector<Path> files;
};

Fetched fetch(BPathTree& tree, const Track& track, const std::vector<std::size_t>& numbers) {
    Fetched fetched;
    tree.getPath(fetched.folders, fetched.files, {0}, {track}, {numbers});
    return fetched;
}

TEST(BPathTree, isNewAndEmptyWithoutFlag) {
    BPathTree tree;
    const auto walk = BPathTreePeer::linkedWalk(tree);
    EXPECT_TRUE(walk.root->key.empty());
    EXPECT_TRUE(walk.root->children.empty());
    EXPECT_TRUE(walk.nodeStack.empty());
    EXPECT_TRUE(walk.parentStack.empty());
    EXPECT_TRUE(walk.currentPath.empty());
    EXPECT_TRUE(BPathTreePeer::nodeStack(tree).empty());
    EXPECT_TRUE(BPathTreePeer::parentStack(tree).empty());
    EXPECT_FALSE(BPathTreePeer::flag(tree));
}

TEST(BPathTree, findsASingleComponentTheSecondTime) {
    BPathTree tree;
    EXPECT_EQ(addSingle(tree, path("a")), std::make_pair(false, Track{}));
    EXPECT_EQ(addSingle(tree, path("a")), std::make_pair(true, Track{0}));
    EXPECT_EQ(BPathTreePeer::root(tree)->children.size(), 1U);
}

TEST(BPathTree, reportsOnlyTheLeadingComponentsThatWereThere) {
    BPathTree tree;
    addSingle(tree, path("ab"));
    EXPECT_EQ(addSingle(tree, path("ac")), std::make_pair(false, Track{0}));
    const auto root = BPathTreePeer::root(tree);
    const auto& children = root->children[0]->children;
    ASSERT_EQ(children.size(), 2U);
    EXPECT_EQ(children[1]->key, key('c'));
}

TEST(BPathTree, isUnchangedByAPathWithoutComponents) {
    BPathTree tree;
    EXPECT_EQ(addSingle(tree, {}), std::make_pair(false, Track{}));
    EXPECT_TRUE(BPathTreePeer::root(tree)->children.empty());
}

TEST(BPathTree, takesOverOnlyTheComponentsItCreates) {
    BPathTree tree;
    addSingle(tree, path("a"));
    Path components = path("ab");
    Track existing{7};
    EXPECT_FALSE(tree.addPath(components, existing));
    EXPECT_EQ(components, (Path{key('a'), {}}));
    EXPECT_EQ(existing, (Track{7, 0}));
}

TEST(BPathTree, takesOverFolderComponentsAndFileNames) {
    BPathTree tree;
    Path folder = path("ab");
    std::vector<Bytes> files{key('x'), key('y')};
    Track track;
    std::size_t prior = 0;
    EXPECT_FALSE(tree.addPath(folder, files, track, prior));
    EXPECT_EQ(folder, (Path{{}, {}}));
    EXPECT_EQ(files, (std::vector<Bytes>{{}, {}}));
    EXPECT_EQ(track, (Track{0, 0}));
    EXPECT_EQ(prior, kNone);
}

TEST(BPathTree, putsFilesWithoutFolderBelowTheRoot) {
    BPathTree tree;
    const Added added = addFolder(tree, {}, {key('x'), key('y')});
    EXPECT_FALSE(added.existed);
    EXPECT_EQ(added.priorChildCount, kNone);
    EXPECT_EQ(added.track, Track{});
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("x"), path("y")}));
}

TEST(BPathTree, appendsFilesToAFolderWithoutLookingForEqualOnes) {
    BPathTree tree;
    addFolder(tree, path("a"), {key('x'), key('y'), key('z')});
    const Added added = addFolder(tree, path("a"), {key('x'), key('w')});
    EXPECT_TRUE(added.existed);
    EXPECT_EQ(added.priorChildCount, 3U);
    EXPECT_EQ(added.track, (Track{0}));
    const auto root = BPathTreePeer::root(tree);
    const auto& children = root->children[0]->children;
    ASSERT_EQ(children.size(), 5U);
    EXPECT_EQ(children[3]->key, key('x'));
    EXPECT_EQ(children[4]->key, key('w'));
}

TEST(BPathTree, countsTheChildrenOfAFolderThatGetsNoFiles) {
    BPathTree tree;
    addFolder(tree, path("a"), {key('x'), key('y')});
    const Added added = addFolder(tree, path("a"), {});
    EXPECT_TRUE(added.existed);
    EXPECT_EQ(added.priorChildCount, 2U);
}

TEST(BPathTree, walksIntoAFileThatIsNamedLikeAFolder) {
    BPathTree tree;
    addFolder(tree, path("a"), {key('x'), key('y')});
    const Added added = addFolder(tree, path("ax"), {key('z')});
    EXPECT_TRUE(added.existed);
    EXPECT_EQ(added.track, (Track{0, 0}));
    EXPECT_EQ(added.priorChildCount, 0U);
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("axz"), path("ay")}));
}

TEST(BPathTree, walksIntoTheFirstOfEqualChildren) {
    BPathTree tree;
    addFolder(tree, path("a"), {key('x'), key('x')});
    EXPECT_EQ(addFolder(tree, path("ax"), {key('z')}).track, (Track{0, 0}));
}

TEST(BPathTree, comparesKeysByLengthAndBytes) {
    BPathTree tree;
    addSingle(tree, {{1}});
    EXPECT_FALSE(addSingle(tree, {{1, 0}}).first);
    EXPECT_FALSE(addSingle(tree, {{}}).first);
    EXPECT_TRUE(addSingle(tree, {{}}).first);
    const auto root = BPathTreePeer::root(tree);
    const auto& children = root->children;
    EXPECT_EQ(tree.findNode({1, 0}, children), 1U);
    EXPECT_EQ(tree.findNode({}, children), 2U);
    EXPECT_EQ(tree.findNode({0}, children), kNone);
}

TEST(BPathTree, knowsALeafByItsMissingChildren) {
    BPathTree tree;
    addSingle(tree, path("ab"));
    const auto root = BPathTreePeer::root(tree);
    const auto& folder = root->children[0];
    EXPECT_FALSE(tree.isLeaf(folder));
    EXPECT_TRUE(tree.isLeaf(folder->children[0]));
}

TEST(BPathTree, findsOrAppendsAChild) {
    const BPathTree tree;
    std::vector<std::shared_ptr<BPathTree::BNode>> children;
    bool existed = true;
    Bytes name = key('a');
    EXPECT_EQ(tree.addIfExistsAndFind(children, name, existed), 0U);
    EXPECT_FALSE(existed);
    EXPECT_TRUE(name.empty());
    name = key('a');
    EXPECT_EQ(tree.addIfExistsAndFind(children, name, existed), 0U);
    EXPECT_TRUE(existed);
    EXPECT_EQ(name, key('a'));
}

TEST(BPathTree, appendsTheKeysAlongATrack) {
    BPathTree tree;
    addSingle(tree, path("ab"));
    addSingle(tree, path("ac"));
    Path components = path("-");
    tree.traversePath({0, 1}, components);
    EXPECT_EQ(components, path("-ac"));
    tree.traversePath({0}, components);
    EXPECT_EQ(components, path("-aca"));
}

TEST(BPathTree, refusesToTraverseAnEmptyTreeWhateverTheTrack) {
    BPathTree tree;
    Path components = path("-");
    for (const Track& track : {Track{}, Track{0}}) {
        EXPECT_THAT([&] { tree.traversePath(track, components); },
                    ThrowsMessage<NoTreeToTraverseException>(kNothingToWalk));
    }
    EXPECT_EQ(components, path("-"));
}

TEST(BPathTree, refusesToTraverseAnEmptyTrack) {
    BPathTree tree;
    addSingle(tree, path("a"));
    Path components;
    EXPECT_THAT([&] { tree.traversePath({}, components); },
                ThrowsMessage<EmptyPathForTraverseException>(kEmptyTrack));
}

TEST(BPathTree, refusesToTraverseATrackThatLeadsToNoNode) {
    BPathTree tree;
    addSingle(tree, path("ab"));
    Path components = path("-");
    for (const Track& track : {Track{1}, Track{0, 1}, Track{0, 0, 0}, Track{kNone}}) {
        EXPECT_THAT([&] { tree.traversePath(track, components); },
                    ThrowsMessage<InvalidTrackException>(kBadTrack));
    }
    EXPECT_EQ(components, path("-"));
}

TEST(BPathTree, fetchesFilesOfAFolderThatATrackEndsAt) {
    BPathTree tree;
    addFolder(tree, path("ab"), {key('x'), key('y'), key('z')});
    const Fetched fetched = fetch(tree, {0, 0}, {3, 1});
    EXPECT_EQ(fetched.folders, (std::vector<Path>{path("ab")}));
    EXPECT_EQ(fetched.files, (std::vector<Path>{path("zx")}));
}

TEST(BPathTree, fetchesFilesOfABatchThatFoundItsFolder) {
    BPathTree tree;
    addFolder(tree, path("a"), {key('x')});
    Added added = addFolder(tree, path("a"), {key('y'), key('z')});
    added.track.push_back(added.priorChildCount);
    const Fetched fetched = fetch(tree, added.track, {1, 2});
    EXPECT_EQ(fetched.folders, (std::vector<Path>{path("a")}));
    EXPECT_EQ(fetched.files, (std::vector<Path>{path("yz")}));
}

TEST(BPathTree, takesTheTrackByEntryAndTheNumbersByPlace) {
    BPathTree tree;
    addFolder(tree, path("a"), {key('x'), key('y')});
    addFolder(tree, path("b"), {key('z')});
    std::vector<Path> folders{path("-")};
    std::vector<Path> files{path("-")};
    tree.getPath(folders, files, {1, 0}, {{0}, {1}}, {{1}, {2}});
    EXPECT_EQ(folders, (std::vector<Path>{path("-"), path("b"), path("a")}));
    EXPECT_EQ(files, (std::vector<Path>{path("-"), path("z"), path("y")}));
}

TEST(BPathTree, fetchesNothingForNoEntries) {
    BPathTree tree;
    addFolder(tree, path("a"), {key('x')});
    std::vector<Path> folders{path("-")};
    std::vector<Path> files;
    tree.getPath(folders, files, {}, {{0}}, {});
    EXPECT_EQ(folders, (std::vector<Path>{path("-")}));
    EXPECT_TRUE(files.empty());
}

TEST(BPathTree, refusesFileNumbersThatAreNotThereAndAppendsNothing) {
    BPathTree tree;
    addFolder(tree, path("a"), {key('x'), key('y')});
    std::vector<Path> folders;
    std::vector<Path> files;
    for (const std::size_t number : {std::size_t{0}, std::size_t{3}, kNone}) {
        EXPECT_THAT(
            [&] {
                tree.getPath(folders, files, {0, 0}, {{0}}, {{1}, {number}});
            },
            ThrowsMessage<InvalidFileNumberException>(kBadFile));
    }
    EXPECT_THAT([&] { tree.getPath(folders, files, {0}, {{0}}, {}); },
                ThrowsMessage<InvalidFileNumberException>(kBadFile));
    EXPECT_TRUE(folders.empty());
    EXPECT_TRUE(files.empty());
}

TEST(BPathTree, refusesTracksOfNoFolderAndAppendsNothing) {
    BPathTree tree;
    addFolder(tree, path("a"), {key('x')});
    std::vector<Path> folders;
    std::vector<Path> files;
    for (const Track& track : {Track{1, 0}, Track{0, 2}, Track{0, 0, 1}, Track{kNone}}) {
        EXPECT_THAT(
            [&] {
                tree.getPath(folders, files, {0, 1}, {{0}, track}, {{1}, {1}});
            },
            ThrowsMessage<InvalidTrackException>(kBadTrack));
    }
    EXPECT_THAT([&] { tree.getPath(folders, files, {1}, {{0}}, {{1}}); },
                ThrowsMessage<InvalidTrackException>(kBadTrack));
    EXPECT_TRUE(folders.empty());
    EXPECT_TRUE(files.empty());
}

TEST(BPathTree, sharesItsNodesWithItsCopies) {
    BPathTree tree;
    addSingle(tree, path("a"));
    BPathTree copy(tree);
    addSingle(copy, path("b"));
    addSingle(tree, path("c"));
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("a"), path("b"), path("c")}));
    EXPECT_EQ(walked(copy), walked(tree));
}

TEST(BPathTree, handsItsFlagOnToACopy) {
    BPathTree tree;
    BPathTreePeer::flag(tree) = true;
    BPathTree copy(tree);
    EXPECT_TRUE(BPathTreePeer::flag(copy));
}

TEST(BPathTree, givesACopyItsPlaceInTheWalk) {
    BPathTree tree;
    for (const char* text : {"ax", "ay", "b"}) addSingle(tree, path(text));
    tree.reset();
    Path next;
    tree.getNextPath(next);
    BPathTree copy(tree);
    copy.getNextPath(next);
    EXPECT_EQ(next, path("ay"));
    copy.getNextPath(next);
    EXPECT_EQ(next, path("b"));
    EXPECT_FALSE(copy.hasNextPath());
    tree.getNextPath(next);
    EXPECT_EQ(next, path("ay"));
}

TEST(BPathTree, livesOnInACopy) {
    auto tree = std::make_unique<BPathTree>();
    addSingle(*tree, path("abc"));
    BPathTree copy(*tree);
    tree.reset();
    EXPECT_EQ(walked(copy), (std::vector<Path>{path("abc")}));
}

}  // namespace
}  // namespace compressedpaths
