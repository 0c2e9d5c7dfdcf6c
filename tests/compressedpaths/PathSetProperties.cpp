// Laws of the path set, for random sequences of folder entries over so few names that files become
// folders, folders are met again and names repeat.

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <functional>
#include <set>

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

rc::Gen<FolderEntries> entries(std::size_t leastFiles) {
    const auto entry = rc::gen::map(rc::gen::pair(namesUpTo(1, 4), namesUpTo(leastFiles, 4)),
                                    [](const std::pair<Names, Names>& lists) {
                                        return FolderEntry{lists.first, lists.second};
                                    });
    return rc::gen::container<FolderEntries>(entry);
}

TextPath pathOf(const FolderEntry& entry, const std::u16string& file) {
    TextPath path = entry.folder;
    path.push_back(file);
    return path;
}

/// Entries whose folders lead only through folders and files of entries before, and that name each
/// file once, as a listing of a file system does.
FolderEntries listedEntries() {
    std::vector<Names> known{{}};
    std::set<TextPath> listed;
    FolderEntries history;
    for (auto left = *rc::gen::inRange(1, 12); left > 0; --left) {
        FolderEntry entry{*rc::gen::elementOf(known), {}};
        if (entry.folder.empty() || *rc::gen::arbitrary<bool>())
            entry.folder.push_back(*rc::gen::element<std::u16string>(u"a", u"b", u"c"));
        for (const std::u16string& file : *namesUpTo(1, 3))
            if (listed.insert(pathOf(entry, file)).second) entry.files.push_back(file);
        if (entry.files.empty()) continue;

        known.push_back(entry.folder);
        for (const std::u16string& file : entry.files) known.push_back(pathOf(entry, file));
        history.push_back(entry);
    }
    RC_ASSERT(everyFolderWasListed(history));
    return history;
}

void requirePaths(HuffmanPathTree& set, const FolderEntries& history) {
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
    visit(*BPathTreePeer::root(tree));
    return leaves;
}

std::vector<Path> walkedCodes(HuffmanPathTree& set) {
    std::vector<Path> paths;
    set.resetPathsToBTree();
    while (set.hasNextPathFromBTree()) set.getNextPathFromBTree(paths.emplace_back());
    return paths;
}

RC_GTEST_PROP(PathSetProperties, everyNumberGivesThePathThatWasAdded, ()) {
    const FolderEntries history = *entries(0);
    HuffmanPathTree set;
    addCoded(set, history);
    requirePaths(set, history);
}

RC_GTEST_PROP(PathSetProperties, everyNumberGivesTheSamePathInACopy, ()) {
    const FolderEntries history = *entries(0);
    const FolderEntries more = *entries(0);
    HuffmanPathTree set;
    addCoded(set, history);
    HuffmanPathTree copy;
    copy.copyTree(set);
    addBatch(copy, more);
    requirePaths(set, history);
    FolderEntries all = history;
    all.insert(all.end(), more.begin(), more.end());
    requirePaths(copy, all);
}

RC_GTEST_PROP(PathSetProperties, everyNumberGivesItsPathAfterLoadingAListingOfEachFileOnce, ()) {
    const FolderEntries history = listedEntries();
    HuffmanPathTree set;
    addCoded(set, history);
    HuffmanPathTree loaded;
    reload(set, loaded, true);
    requirePaths(loaded, history);
}

RC_GTEST_PROP(PathSetProperties, anyRequestGivesItsPathsInItsOrder, ()) {
    const FolderEntries history = *entries(1);
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
    const FolderEntries history = *entries(0);
    HuffmanPathTree serial;
    addCoded(serial, history);
    HuffmanPathTree parallel;
    makeCode(parallel, u"abcd");
    addBatch(parallel, history);
    RC_ASSERT(savedForm(parallel) == savedForm(serial));
}

}  // namespace
}  // namespace compressedpaths
