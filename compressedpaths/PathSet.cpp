// Adding paths, fetching them by number, walking over them, copying the set.

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

std::size_t longestOf(const std::vector<std::vector<Bytes>>& codedLists) {
    std::size_t longest = 0;
    for (const std::vector<Bytes>& list : codedLists)
        for (const Bytes& code : list) longest = std::max(longest, code.size());
    return longest;
}

bool isCodedWhole(const std::vector<std::vector<std::u16string>>& lists,
                  const std::vector<std::vector<Bytes>>& codedLists) {
    return std::equal(
        lists.begin(), lists.end(), codedLists.begin(), codedLists.end(),
        [](const auto& list, const auto& coded) { return list.size() == coded.size(); });
}

/// The path numbers as integers. They come from hosts whose only numbers are 64-bit floats.
std::vector<std::size_t> wholeNumbers(const std::vector<double>& requested, std::size_t pathCount) {
    std::vector<std::size_t> numbers;
    numbers.reserve(requested.size());
    for (const double number : requested) {
        // Written so that NaN is refused too, and nothing is converted that does not fit.
        if (!(number >= 1 && number < 0x1p64) || number != std::floor(number))
            throw InvalidPathNumberException();
        numbers.push_back(static_cast<std::size_t>(number));
        if (numbers.back() > pathCount) throw InvalidPathNumberException();
    }
    return numbers;
}

}  // namespace

HuffmanPathTree::HuffmanPathTree() : pathTree(std::make_unique<BPathTree>()) {}

HuffmanPathTree::~HuffmanPathTree() {
    clearThreadResources();
}

void HuffmanPathTree::addPathToBTreeFromAsyncData() {
    if (!isCodedWhole(asyncFolders, asyncCodedFolders) ||
        !isCodedWhole(asyncFiles, asyncCodedFiles))
        throw IncompleteBatchException();

    // Workers do not touch the counter, so that it is a true maximum however they interleave.
    maxCodeBytes =
        std::max({maxCodeBytes, longestOf(asyncCodedFolders), longestOf(asyncCodedFiles)});
    for (std::size_t i = 0; i < asyncCodedFolders.size(); ++i)
        addPathToBTree(asyncCodedFolders[i], asyncCodedFiles[i]);
    clearThreadResources();
}

void HuffmanPathTree::addPathToBTree(std::vector<Bytes>& codedFolders,
                                     std::vector<Bytes>& codedFiles) {
    std::vector<std::size_t> track;
    track.reserve(codedFolders.size() + 1);
    std::size_t priorChildCount = 0;
    const bool existed = pathTree->addPath(codedFolders, codedFiles, track, priorChildCount);
    if (existed) {
        track.push_back(priorChildCount);
        maxFolderDepth = std::max(maxFolderDepth, track.size());
    }
    pathCount += codedFiles.size();
    partitionEnds.push_back(pathCount);
    folderTracks.push_back(std::move(track));
    trackEnds_.push_back(existed ? BPathTree::TrackEnd::kFirstFile : BPathTree::TrackEnd::kFolder);
}

void HuffmanPathTree::addPathToBTree(std::vector<Bytes>& codedPath) {
    ++pathCount;
    std::vector<std::size_t> existing;
    if (!pathTree->addPath(codedPath, existing)) return;
    maxTrackLength = std::max(maxTrackLength, existing.size());
    maxTrackKey = std::max(maxTrackKey, pathCount);
    pathTracks[pathCount] = std::move(existing);
}

bool HuffmanPathTree::hasDuplicate(const std::uint64_t& pathNumber) {
    return pathTracks.contains(pathNumber);
}

void HuffmanPathTree::getPath(std::vector<Path>& foldersOut, std::vector<Path>& filesOut,
                              const std::vector<double>& requested) {
    const std::vector<std::size_t> numbers = wholeNumbers(requested, pathCount);
    if (partitionEnds.empty() && !folderTracks.empty()) {
        std::vector<Path> folders;
        for (const std::size_t number : numbers) {
            if (number > folderTracks.size()) throw InvalidPathNumberException();
            pathTree->traversePath(folderTracks[number - 1], folders.emplace_back());
        }
        std::move(folders.begin(), folders.end(), std::back_inserter(foldersOut));
        return;
    }

    std::vector<std::size_t> entries;
    std::vector<std::vector<std::size_t>> fileNumbers;
    std::size_t previous = 0;
    std::size_t filesBefore = 0;  // in the folder of the last of entries, where its track is silent
    for (const std::size_t number : numbers) {
        const auto end = std::lower_bound(partitionEnds.begin(), partitionEnds.end(), number);
        if (end == partitionEnds.end()) continue;  // a path that was added on its own
        const auto entry = static_cast<std::size_t>(end - partitionEnds.begin());
        if (entry >= folderTracks.size()) throw InvalidTrackException();
        const std::size_t start = entry == 0 ? 0 : partitionEnds[entry - 1];
        if (entries.empty() || entries.back() != entry || number < previous) {
            entries.push_back(entry);
            fileNumbers.emplace_back();
            filesBefore = folderTracks[entry].empty() ? rootChildrenBefore(entry) : 0;
        }
        fileNumbers.back().push_back(filesBefore + number - start);
        previous = number;
    }
    pathTree->getPath(foldersOut, filesOut, entries, folderTracks, trackEnds_, fileNumbers);
}

/// The number of children that the root had when an entry was added. The track of an entry without
/// folder components is empty and does not say where in the root its files begin; the entries
/// before it do, as long as no path was added on its own. O(entry).
std::size_t HuffmanPathTree::rootChildrenBefore(std::size_t entry) const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < entry; ++i) {
        if (folderTracks[i].empty())
            count += partitionEnds[i] - (i == 0 ? 0 : partitionEnds[i - 1]);
        else
            count = std::max(count, folderTracks[i].front() + 1);
    }
    return count;
}

void HuffmanPathTree::getNextPathFromBTree(Path& out) {
    ++iterationPosition;
    const auto duplicate = pathTracks.find(iterationPosition);
    if (duplicate != pathTracks.end())
        pathTree->traversePath(duplicate->second, out);
    else
        pathTree->getNextPath(out);
}

bool HuffmanPathTree::hasNextPathFromBTree() {
    return pathTracks.contains(iterationPosition + 1) || pathTree->hasNextPath();
}

void HuffmanPathTree::resetPathsToBTree() {
    pathTree->reset();
    iterationPosition = 0;
    clearThreadResources();
}

void HuffmanPathTree::copyTree(const HuffmanPathTree& other) {
    auto sharedTree = std::make_unique<BPathTree>(*other.pathTree);
    boolTree = other.boolTree;
    treeString = other.treeString;
    frequencies = other.frequencies;
    pathTracks = other.pathTracks;
    partitionEnds = other.partitionEnds;
    folderTracks = other.folderTracks;
    maxFolderDepth = other.maxFolderDepth;
    maxTrackLength = other.maxTrackLength;
    maxCodeBytes = other.maxCodeBytes;
    maxTrackKey = other.maxTrackKey;
    iterationPosition = other.iterationPosition;
    pathCount = other.pathCount;
    rootIndex = other.rootIndex;
    nodes = other.nodes;
    codes = other.codes;
    parents = other.parents;
    trackEnds_ = other.trackEnds_;
    codeWords_ = other.codeWords_;
    decodingTable_ = other.decodingTable_;
    pathTree = std::move(sharedTree);
}

}  // namespace compressedpaths
