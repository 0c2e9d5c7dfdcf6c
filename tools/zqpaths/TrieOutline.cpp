#include "tools/zqpaths/TrieOutline.hpp"

#include <algorithm>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <utility>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

constexpr std::uint8_t kHasChildren = 0b01;
constexpr std::uint8_t kHasSibling = 0b10;
constexpr std::uint64_t kRoot = std::numeric_limits<std::uint64_t>::max();  // kRoot + 1 is 0

struct OpenFolder {
    std::uint64_t node = kRoot;
    bool hasSibling = false;
    std::uint64_t childCount = 0;
    std::uint64_t fileCount = 0;
};

/// Calls `enter(node, depth)` for each node and `leave(OpenFolder, depth)` for each folder when its
/// last node was entered, for the root last of all.
template <class Enter, class Leave>
void walkStructure(std::span<const std::uint8_t> structure, Enter enter, Leave leave) {
    std::vector<OpenFolder> open(structure.empty() ? 0 : 1);
    for (std::uint64_t node = 0; !open.empty(); ++node) {
        if (node == structure.size())
            throw Failure(ExitStatus::kDamaged, "damaged: the trie is not complete after its " +
                                                    std::to_string(node) + " nodes");
        const std::uint8_t kind = structure[node];
        if (kind > (kHasChildren | kHasSibling))
            throw Failure(ExitStatus::kDamaged, "damaged: node " + std::to_string(node) +
                                                    " of the trie is of the unknown kind " +
                                                    std::to_string(kind));
        enter(node, open.size());
        ++open.back().childCount;
        bool hasSibling = (kind & kHasSibling) != 0;
        if ((kind & kHasChildren) != 0) {
            open.push_back({node, hasSibling});
            continue;
        }
        ++open.back().fileCount;
        while (!hasSibling && !open.empty()) {
            const OpenFolder folder = open.back();
            open.pop_back();
            leave(folder, open.size());
            hasSibling = folder.hasSibling;
        }
    }
}

/// The number of files and one more than the folder's node; the root has 0 there.
using Candidate = std::pair<std::uint64_t, std::uint64_t>;

struct MoreFilesFirst {
    bool operator()(const Candidate& a, const Candidate& b) const {
        return a.first != b.first ? a.first > b.first : a.second < b.second;
    }
};

using LargestFolders = std::set<Candidate, MoreFilesFirst>;

/// Tracks are kept in a second walk: in the first one most candidates would be dropped again.
std::vector<TrieOutline::Folder> withTracks(const LargestFolders& largest,
                                            std::span<const std::uint8_t> structure) {
    std::vector<TrieOutline::Folder> folders;
    std::vector<std::pair<std::uint64_t, std::size_t>> awaited;  // candidate's node + 1, its place
    for (const auto& [fileCount, node] : largest) {
        awaited.emplace_back(node, folders.size());
        folders.push_back({{}, fileCount});
    }
    std::ranges::sort(awaited);
    auto next = std::ranges::upper_bound(awaited, std::pair(std::uint64_t{0}, folders.size()));
    std::vector<std::uint64_t> track;
    walkStructure(
        structure,
        [&](std::uint64_t node, std::size_t depth) {
            track.resize(depth - 1);
            track.push_back(node);
            if (next == awaited.end() || next->first != node + 1) return;
            folders[next->second].track = track;
            ++next;
        },
        [](const OpenFolder&, std::size_t) {});
    return folders;
}

}  // namespace

TrieOutline outlineTrie(std::span<const std::uint8_t> structure, std::size_t folderLimit) {
    TrieOutline outline;
    LargestFolders largest;
    walkStructure(
        structure,
        [&outline](std::uint64_t /*node*/, std::size_t depth) {
            ++outline.nodeCount;
            outline.depth = std::max<std::uint64_t>(outline.depth, depth);
        },
        [&](const OpenFolder& folder, std::size_t depth) {
            if (folder.node != kRoot) ++outline.folderCount;
            outline.fileCount += folder.fileCount;
            outline.fileDepthSum += folder.fileCount * (depth + 1);
            outline.widest = std::max(outline.widest, folder.childCount);
            if (folder.fileCount == 0) return;
            largest.emplace(folder.fileCount, folder.node + 1);
            if (largest.size() > folderLimit) largest.erase(std::prev(largest.end()));
        });
    outline.largestFolders = withTracks(largest, structure);
    return outline;
}

}  // namespace zqpaths
