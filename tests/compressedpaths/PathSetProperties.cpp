// Laws of the path set, for random sequences of folder entries over so few names that files become
// folders, folders are met again and names repeat.

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <functional>

#include "tests/support/FolderHistories.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths {
namespace {

rc::Gen<Names> namesUpTo(std::size_t least, std::size_t most) {
    return rc::gen::mapcat(rc::gen::inRange(least, most + 1), [](std::size_t count) {
        return rc::gen::container<Names>(
            count, rc::gen::element<std::u16string>(u"a", u"b", u"c", u"ab", u"dd"));
    });
}

rc::Gen<TextEntries> entries(std::size_t leastFiles) {
    const auto entry = rc::gen::map(rc::gen::pair(namesUpTo(1, 4), namesUpTo(leastFiles, 4)),
                                    [](const std::pair<Names, Names>& lists) {
                                        return TextEntry{lists.first, lists.second};
                                    });
    return rc::gen::container<TextEntries>(entry);
}

void requirePaths(HuffmanPathTree& set, const TextEntries& history) {
    const TextPaths expected = pathsOf(history);
    RC_LOG() << describe(history) << std::endl;
    RC_ASSERT(pathsByNumber(set, expected.size()) == expected);
}

/// The leaves of a trie in their order, by the plain definition.
std::vector<Path> leavesOf(const BPathTree& tree) {
    std::vector<Path> leaves;
    Path above;
    const std::function<void(const BPathTree::BNode&)> visit = [&](const BPathTree::BNode& node) {
        for (const auto& child : node.children) {
            above.push_back(child->key);
            if (child->children.empty()) leaves.push_back(above);
            visit(*child);
            above.pop_back();
        }
    };
    const auto root = BPathTreePeer::root(tree);
    visit(*root);
    return leaves;
}

std::vector<Path> walkedCodes(HuffmanPathTree& set) {
    std::vector<Path> paths;
    set.resetPathsToBTree();
    while (set.hasNextPathFromBTree()) set.getNextPathFromBTree(paths.emplace_back());
    return paths;
}

RC_GTEST_PROP(PathSetProperties, everyNumberGivesThePathThatWasAdded, ()) {
    const TextEntries history = *entries(0);
    HuffmanPathTree set;
    addCoded(set, history);
    requirePaths(set, history);
}

RC_GTEST_PROP(PathSetProperties, everyNumberGivesTheSamePathInACopy, ()) {
    const TextEntries history = *entries(0);
    const TextEntries more = *entries(0);
    HuffmanPathTree set;
    addCoded(set, history);
    HuffmanPathTree copy;
    copy.copyTree(set);
    addBatch(copy, more);
    requirePaths(set, history);
    TextEntries all = history;
    all.insert(all.end(), more.begin(), more.end());
    requirePaths(copy, all);
}

RC_GTEST_PROP(PathSetProperties, everyNumberGivesItsPathAfterLoading, ()) {
    const TextEntries history = *entries(0);
    HuffmanPathTree set;
    addCoded(set, history);
    HuffmanPathTree loaded;
    reload(set, loaded, true);
    requirePaths(loaded, history);
}

RC_GTEST_PROP(PathSetProperties, anyRequestGivesItsPathsInItsOrder, ()) {
    const TextEntries history = *entries(1);
    const TextPaths paths = pathsOf(history);
    RC_PRE(!paths.empty());
    HuffmanPathTree set;
    addCoded(set, history);
    const auto numbers = *rc::gen::container<std::vector<std::size_t>>(
        rc::gen::inRange<std::size_t>(1, paths.size() + 1));
    TextPaths expected;
    for (const std::size_t number : numbers) expected.push_back(paths[number - 1]);
    RC_ASSERT(pathsNumbered(set, {numbers.begin(), numbers.end()}) == expected);
}

RC_GTEST_PROP(PathSetProperties, theWalkGivesEveryLeafInTheOrderOfTheTrie, ()) {
    HuffmanPathTree set;
    addCoded(set, *entries(0));
    RC_ASSERT(walkedCodes(set) == leavesOf(HuffmanPathTreePeer::pathTree(set)));
}

RC_GTEST_PROP(PathSetProperties, savingALoadedSetGivesTheSameBytes, ()) {
    HuffmanPathTree set;
    addCoded(set, *entries(0));
    const bool compress = *rc::gen::arbitrary<bool>();
    HuffmanPathTree loaded;
    reload(set, loaded, compress);
    RC_ASSERT(savedForm(loaded) == savedForm(set));
    RC_ASSERT(savedForm(loaded, true) == savedForm(set, true));
    RC_ASSERT(walkedCodes(loaded) == walkedCodes(set));
}

RC_GTEST_PROP(PathSetProperties, aSetOfSinglePathsWalksTheSameAfterLoading, ()) {
    HuffmanPathTree set;
    makeCode(set, u"abcd");
    for (const Names& path : *rc::gen::container<std::vector<Names>>(namesUpTo(1, 3)))
        addSinglePath(set, path);
    HuffmanPathTree loaded;
    reload(set, loaded, true);
    RC_ASSERT(walkedCodes(loaded) == walkedCodes(set));
    RC_ASSERT(HuffmanPathTreePeer::pathTracks(loaded) == HuffmanPathTreePeer::pathTracks(set));
}

RC_GTEST_PROP(PathSetProperties, parallelCodingGivesTheBytesOfSerialCoding, ()) {
    const TextEntries history = *entries(0);
    HuffmanPathTree serial;
    addCoded(serial, history);
    HuffmanPathTree parallel;
    makeCode(parallel, u"abcd");
    addBatch(parallel, history);
    RC_ASSERT(savedForm(parallel) == savedForm(serial));
}

}  // namespace
}  // namespace compressedpaths
