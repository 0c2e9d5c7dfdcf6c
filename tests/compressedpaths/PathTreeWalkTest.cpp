#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compressedpaths/BPathTree.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

using testing::ThrowsMessage;

constexpr const char* kNoMore = "No more paths to provide.";

Path next(BPathTree& tree) {
    Path components;
    tree.getNextPath(components);
    return components;
}

void expectNoNextPath(BPathTree& tree) {
    Path components = path("kept");
    EXPECT_FALSE(tree.hasNextPath());
    EXPECT_THAT([&] { tree.getNextPath(components); }, ThrowsMessage<NoMorePathException>(kNoMore));
    EXPECT_EQ(components, path("kept"));
}

void addThreePaths(BPathTree& tree) {
    for (const char* letters : {"ab", "acd", "e"}) addSingle(tree, path(letters));
}

TEST(PathTreeWalk, hasNoPathInAnEmptyTree) {
    BPathTree tree;
    expectNoNextPath(tree);
    tree.reset();
    expectNoNextPath(tree);
    EXPECT_TRUE(BPathTreePeer::linkedWalk(tree).parentStack.empty());
}

TEST(PathTreeWalk, hasNoPathBeforeItIsStarted) {
    BPathTree tree;
    addSingle(tree, path("a"));
    expectNoNextPath(tree);
}

TEST(PathTreeWalk, leavesNothingOpenAfterASinglePath) {
    BPathTree tree;
    addSingle(tree, path("a"));
    tree.reset();
    EXPECT_TRUE(tree.hasNextPath());
    EXPECT_EQ(next(tree), path("a"));
    const auto walk = BPathTreePeer::linkedWalk(tree);
    EXPECT_TRUE(walk.nodeStack.empty());
    EXPECT_TRUE(walk.parentStack.empty());
    EXPECT_TRUE(walk.currentPath.empty());
    expectNoNextPath(tree);
}

TEST(PathTreeWalk, givesFilesOfAFolderInTheOrderOfAdding) {
    BPathTree tree;
    Path folder = path("ab");
    std::vector<Bytes> files{key('z'), key('x')};
    Track track;
    std::size_t prior = 0;
    tree.addPath(folder, files, track, prior);
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("abz"), path("abx")}));
}

TEST(PathTreeWalk, goesDownBeforeItGoesOn) {
    BPathTree tree;
    addThreePaths(tree);
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("ab"), path("acd"), path("e")}));
    expectNoNextPath(tree);
}

TEST(PathTreeWalk, keepsTheFoldersAboveTheNextNodeOpen) {
    BPathTree tree;
    addThreePaths(tree);
    tree.reset();
    auto walk = BPathTreePeer::linkedWalk(tree);
    EXPECT_EQ(walk.nodeStack.size(), 2U);
    EXPECT_EQ(walk.parentStack.size(), 1U);
    next(tree);
    walk = BPathTreePeer::linkedWalk(tree);
    EXPECT_EQ(walk.currentPath, path("a"));
    EXPECT_EQ(walk.parentStack.size(), 2U);
    EXPECT_EQ(walk.nodeStack.top(), walk.root->children[0]->children[1]);
    next(tree);
    walk = BPathTreePeer::linkedWalk(tree);
    EXPECT_EQ(walk.currentPath, Path{});
    EXPECT_EQ(walk.parentStack.size(), 1U);
    EXPECT_EQ(walk.parentStack.top(), walk.root);
    next(tree);
    EXPECT_TRUE(BPathTreePeer::linkedWalk(tree).parentStack.empty());
}

TEST(PathTreeWalk, closesSeveralFoldersAfterTheirLastFile) {
    BPathTree tree;
    for (const char* letters : {"abcd", "e", "fg"}) addSingle(tree, path(letters));
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("abcd"), path("e"), path("fg")}));
}

TEST(PathTreeWalk, replacesWhatTheCallersPathHeld) {
    BPathTree tree;
    addSingle(tree, path("a"));
    tree.reset();
    Path components = path("wxyz");
    tree.getNextPath(components);
    EXPECT_EQ(components, path("a"));
}

TEST(PathTreeWalk, canBeStartedAnewInTheMiddle) {
    BPathTree tree;
    addThreePaths(tree);
    tree.reset();
    next(tree);
    EXPECT_EQ(next(tree), path("acd"));
    tree.reset();
    EXPECT_EQ(next(tree), path("ab"));
    EXPECT_EQ(next(tree), path("acd"));
    EXPECT_EQ(next(tree), path("e"));
    expectNoNextPath(tree);
}

TEST(PathTreeWalk, givesEqualNamesOnceEach) {
    BPathTree tree;
    Path folder = path("a");
    std::vector<Bytes> files{key('x'), key('x'), key('x')};
    Track track;
    std::size_t prior = 0;
    tree.addPath(folder, files, track, prior);
    EXPECT_EQ(walked(tree), std::vector<Path>(3, path("ax")));
}

TEST(PathTreeWalk, givesAFolderWithoutFilesAsAPath) {
    BPathTree tree;
    Path folder = path("ab");
    std::vector<Bytes> files;
    Track track;
    std::size_t prior = 0;
    tree.addPath(folder, files, track, prior);
    EXPECT_EQ(walked(tree), (std::vector<Path>{path("ab")}));
}

TEST(PathTreeWalk, seesWhatIsAddedBelowANodeThatIsStillToBeVisited) {
    BPathTree tree;
    addThreePaths(tree);
    tree.reset();
    next(tree);
    addSingle(tree, path("acf"));
    next(tree);
    EXPECT_EQ(next(tree), path("acf"));
}

TEST(PathTreeWalk, endsWheneverPathsAreAddedMeanwhile) {
    BPathTree tree;
    addThreePaths(tree);
    tree.reset();
    std::size_t steps = 0;
    for (; tree.hasNextPath() && steps < 100; ++steps) {
        next(tree);
        addSingle(tree, path("ag"));
        addSingle(tree, {key('h'), key(static_cast<char>('a' + steps))});
    }
    EXPECT_EQ(steps, 3U);
    EXPECT_EQ(walked(tree).size(), 7U);
}

TEST(PathTreeWalk, pushesChildrenSoThatTheFirstIsOnTop) {
    BPathTree tree;
    for (const char* letters : {"a", "b", "c"}) addSingle(tree, path(letters));
    const auto root = BPathTreePeer::root(tree);
    BPathTree::NodeStack stack;
    tree.pushAllChildren(root, stack);
    ASSERT_EQ(stack.size(), 3U);
    EXPECT_EQ(stack.top()->key, key('a'));
    EXPECT_TRUE(BPathTreePeer::nodeStack(tree).empty());
    tree.pushAllChildren(root);
    EXPECT_EQ(BPathTreePeer::nodeStack(tree), stack);
    const auto leaf = stack.top();
    tree.pushAllChildren(leaf, stack);
    EXPECT_EQ(stack.size(), 3U);
}

TEST(PathTreeWalk, findsNoLastChildWithoutAParent) {
    BPathTree tree;
    addSingle(tree, path("a"));
    const auto root = BPathTreePeer::root(tree);
    const auto& child = root->children[0];
    BPathTree::NodeStack stack;
    EXPECT_FALSE(tree.isNodeAtEndOfParent(child, stack));
    EXPECT_FALSE(tree.isNodeAtEndOfParent(child));
    stack.push(child);
    EXPECT_FALSE(tree.isNodeAtEndOfParent(child, stack));
}

TEST(PathTreeWalk, tellsTheLastChildByIdentity) {
    BPathTree tree;
    Path folder = path("a");
    std::vector<Bytes> files{key('x'), key('x')};
    Track track;
    std::size_t prior = 0;
    tree.addPath(folder, files, track, prior);
    const auto root = BPathTreePeer::root(tree);
    const auto& parent = root->children[0];
    BPathTree::NodeStack stack;
    stack.push(parent);
    EXPECT_FALSE(tree.isNodeAtEndOfParent(parent->children[0], stack));
    EXPECT_TRUE(tree.isNodeAtEndOfParent(parent->children[1], stack));
}

TEST(PathTreeWalk, comparesWithTheParentsOfAWalkByHand) {
    BPathTree tree;
    addThreePaths(tree);
    const auto root = BPathTreePeer::root(tree);
    BPathTreePeer::parentStack(tree).push(root);
    EXPECT_FALSE(tree.isNodeAtEndOfParent(root->children[0]));
    EXPECT_TRUE(tree.isNodeAtEndOfParent(root->children[1]));
}

TEST(PathTreeWalk, isNotMovedByAWalkByHand) {
    BPathTree tree;
    addThreePaths(tree);
    tree.reset();
    next(tree);
    const auto root = BPathTreePeer::root(tree);
    tree.pushAllChildren(root);
    BPathTreePeer::parentStack(tree).push(root);
    EXPECT_EQ(next(tree), path("acd"));
    EXPECT_EQ(next(tree), path("e"));
    expectNoNextPath(tree);
}

}  // namespace
}  // namespace compressedpaths
