#pragma once
// The sets on which operations fail, and all that can be told of one:
//
//     const auto set = someSet();
//     const SetState before = stateOf(*set);

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "tests/compressedpaths/failing/RefusedBlocks.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {

inline const TextEntries kEntries{{{u"a"}, {u"b", u"c"}},
                                  {{}, {u"root"}},
                                  {{u"a", u"b"}, {u"d"}},
                                  {{u"a"}, {u"e", u"e"}},
                                  {{u"f", u"g"}, {}}};
/// A folder met again, a file that becomes a folder, new folders, a folder of no components.
inline const TextEntries kMore{{{u"a"}, {u"x", u"y"}},
                               {{u"a", u"c", u"z"}, {u"w"}},
                               {{u"h", u"i"}, {std::u16string(200, u'a')}},
                               {{}, {u"v"}}};

struct SetState {
    Bytes saved;
    std::vector<std::size_t> partitionEnds;
    std::vector<Track> folderTracks;
    std::map<std::size_t, Track> pathTracks;
    std::array<std::size_t, 5> counters;
    std::vector<Bytes> nodeStack;
    std::vector<Bytes> parentStack;
    Path currentPath;
    TextPaths names;
    std::u16string treeString;
    std::vector<double> frequencies;
    std::size_t nodeCount;
    std::size_t codeCount;

    bool operator==(const SetState&) const = default;
};

inline SetState stateOf(HuffmanPathTree& set) {
    const auto walk = BPathTreePeer::linkedWalk(HuffmanPathTreePeer::pathTree(set));
    const auto pathTracks = HuffmanPathTreePeer::pathTracks(set);
    const std::vector<std::size_t> ends = HuffmanPathTreePeer::partitionEnds(set);
    return {savedForm(set),
            ends,
            HuffmanPathTreePeer::folderTracks(set),
            {pathTracks.begin(), pathTracks.end()},
            {HuffmanPathTreePeer::maxFolderDepth(set), HuffmanPathTreePeer::maxTrackLength(set),
             HuffmanPathTreePeer::maxTrackKey(set), HuffmanPathTreePeer::iterationPosition(set),
             HuffmanPathTreePeer::pathCount(set)},
            keysOf(walk.nodeStack),
            keysOf(walk.parentStack),
            walk.currentPath,
            pathsByNumber(set, ends.empty() ? 0 : ends.back()),
            set.getTreeString(),
            set.getFrequencies(),
            HuffmanPathTreePeer::nodes(set).size(),
            HuffmanPathTreePeer::codes(set).size()};
}

inline std::unique_ptr<HuffmanPathTree> someSet() {
    auto set = std::make_unique<HuffmanPathTree>();
    buildSet(*set, kEntries);
    addSinglePath(*set, {u"s", u"t"});
    addSinglePath(*set, {u"a", u"b"});
    set->resetPathsToBTree();
    Path path;
    set->getNextPathFromBTree(path);
    return set;
}

/// A set, and what it was when the act began.
struct Subject {
    std::unique_ptr<HuffmanPathTree> set = someSet();
    SetState before = stateOf(*set);
};

inline std::vector<Path> codedLists(HuffmanPathTree& set, const TextEntries& entries,
                                    bool areFiles) {
    std::vector<Path> lists;
    for (const TextEntry& entry : entries) {
        Path& list = lists.emplace_back();
        for (const std::u16string& name : areFiles ? entry.files : entry.folder)
            list.push_back(set.generateCodeFor(name));
    }
    return lists;
}

}  // namespace compressedpaths
