// The saved form of a path set: the shape of the coding tree, the trie and the index, packed, and
// compressed as a whole. docs/format.md draws it.

#include <algorithm>
#include <numeric>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"

namespace compressedpaths {
namespace {

using sixpacks::ByteReader;
using sixpacks::PackedSizeT;
using sixpacks::packPackedSizeT;
using sixpacks::packSizeTVector;
using sixpacks::packVector;
using sixpacks::unpackSizeTVector;
using sixpacks::unpackVector;

// These numbers live in saved bytes.
constexpr std::uint8_t kFolderSection = 1;
constexpr std::uint8_t kTrackSection = 0;
constexpr PackedSizeT kCount8 = PackedSizeT::Uint64;  // counts that have no tag of their own
constexpr unsigned kCount8Size = 8;

void packCount8(std::size_t count, Bytes& out) {
    sixpacks::makePackerOfWidth(kCount8)->packValue(count, out);
}

PackedSizeT readWidth(ByteReader& in) {
    return static_cast<PackedSizeT>(in.readInteger(1));
}

/// The longest of some tracks and the largest position in them.
struct TrackExtent {
    std::size_t length = 0;
    std::size_t position = 0;

    void cover(const std::vector<std::size_t>& track) {
        length = std::max(length, track.size());
        for (const std::size_t value : track) position = std::max(position, value);
    }
};

}  // namespace

std::size_t HuffmanPathTree::serializePathTree(Bytes& structure, std::vector<Bytes>& keys) {
    return pathTree->serialize(structure, keys);
}

std::size_t HuffmanPathTree::deserializePathTree(Bytes& structure, std::vector<Bytes>& keys) {
    pathTree = std::make_unique<BPathTree>();
    pathCount = 0;
    pathCount = pathTree->deserialize(structure, keys);
    return pathCount;
}

void HuffmanPathTree::serialize(std::vector<std::uint8_t>& bytes, bool compress) {
    Bytes body;
    Bytes shape;
    sixpacks::boolVecToBytes(shape, boolTree);
    packVector(shape, body, kCount8);
    const std::size_t maxFanOut = packTrie(body);
    if (!folderTracks.empty()) packFolderSection(body, maxFanOut);
    if (!pathTracks.empty()) packTrackSection(body, maxFanOut);

    packCount8(body.size(), bytes);
    if (compress) body = sixpacks::compressUint8(body);
    bytes.insert(bytes.end(), body.begin(), body.end());
}

// The width tags of all sections are those of the counters, which may lag behind: a copy that
// shares the trie adds names and children, a first-met folder does not count for the depth, coded
// components may come from elsewhere. So each is raised to what the data need, and nothing is cut.

std::size_t HuffmanPathTree::packTrie(Bytes& body) {
    Bytes structure;
    std::vector<Bytes> keys;
    const std::size_t maxFanOut = serializePathTree(structure, keys);
    packVector(structure, body, kCount8);

    std::size_t longestKey = maxCodeBytes;
    for (const Bytes& key : keys) longestKey = std::max(longestKey, key.size());
    packCount8(keys.size(), body);
    const PackedSizeT lengthWidth = packPackedSizeT(longestKey, body);
    for (Bytes& key : keys) packVector(key, body, lengthWidth);
    return maxFanOut;
}

void HuffmanPathTree::packFolderSection(Bytes& body, std::size_t maxFanOut) const {
    body.push_back(kFolderSection);
    const std::size_t pathTotal =
        std::max(pathCount, partitionEnds.empty() ? 0 : partitionEnds.back());
    const PackedSizeT endWidth = packPackedSizeT(pathTotal, body);
    const PackedSizeT endCountWidth = packPackedSizeT(partitionEnds.size(), body);
    packSizeTVector(partitionEnds, body, endWidth, endCountWidth);

    TrackExtent extent{maxFolderDepth, maxFanOut};
    for (const std::vector<std::size_t>& track : folderTracks) extent.cover(track);
    packCount8(folderTracks.size(), body);
    const PackedSizeT positionWidth = packPackedSizeT(extent.position, body);
    const PackedSizeT lengthWidth = packPackedSizeT(extent.length, body);
    for (const std::vector<std::size_t>& track : folderTracks)
        packSizeTVector(track, body, positionWidth, lengthWidth);
}

void HuffmanPathTree::packTrackSection(Bytes& body, std::size_t maxFanOut) const {
    TrackExtent extent{maxTrackLength, maxFanOut};
    std::size_t largestNumber = maxTrackKey;
    for (const auto& [number, track] : pathTracks) {
        extent.cover(track);
        largestNumber = std::max(largestNumber, number);
    }
    body.push_back(kTrackSection);
    const PackedSizeT positionWidth = packPackedSizeT(extent.position, body);
    const PackedSizeT lengthWidth = packPackedSizeT(extent.length, body);
    const auto numberPacker = sixpacks::makePackerOfWidth(packPackedSizeT(largestNumber, body));
    for (const auto& [number, track] : pathTracks) {
        numberPacker->packValue(number, body);
        packSizeTVector(track, body, positionWidth, lengthWidth);
    }
}

void HuffmanPathTree::deserialize(std::vector<std::uint8_t>& bytes, bool compressed) {
    ByteReader in(bytes);
    const std::uint64_t bodySize = in.readInteger(kCount8Size);
    if (!compressed) return unpackBody(in);

    const std::uint64_t streamSize = bytes.size() - kCount8Size;
    if (bodySize / sixpacks::kMaxExpansion > streamSize) throw ImplausibleLengthException();
    const sixpacks::InflatedBlock block = sixpacks::inflateBlock(
        bytes.begin() + static_cast<std::ptrdiff_t>(kCount8Size), streamSize, bodySize);
    if (!block.isWhole) throw DamagedBlockException();
    ByteReader body(block.bytes);
    unpackBody(body);
}

void HuffmanPathTree::unpackBody(ByteReader& body) {
    Bytes shape;
    unpackVector(shape, body, kCount8);
    boolTree.clear();
    sixpacks::bytesToBoolVec(shape, boolTree);

    const std::size_t nodeCount = unpackTrie(body);
    decltype(pathTracks)().swap(pathTracks);
    if (body.isAtEnd()) return;
    std::uint64_t section = body.readInteger(1);
    if (section == kFolderSection) {
        unpackFolderSection(body, nodeCount);
        if (body.isAtEnd()) return;
        section = body.readInteger(1);
    }
    if (section == kTrackSection) unpackTrackSection(body);
}

/// Returns the number of structure bytes: the trie has at most that many nodes below the root.
std::size_t HuffmanPathTree::unpackTrie(ByteReader& body) {
    Bytes structure;
    unpackVector(structure, body, kCount8);
    const std::uint64_t keyCount = body.readInteger(kCount8Size);
    const PackedSizeT lengthWidth = readWidth(body);
    maxCodeBytes = 0;
    body.requireElements(keyCount, 1);  // the width may be none, which is found with the first key
    std::vector<Bytes> keys(keyCount);
    for (Bytes& key : keys) {
        unpackVector(key, body, lengthWidth);
        maxCodeBytes = std::max(maxCodeBytes, key.size());
    }
    deserializePathTree(structure, keys);
    return structure.size();
}

void HuffmanPathTree::unpackFolderSection(ByteReader& body, std::size_t nodeCount) {
    const PackedSizeT endWidth = readWidth(body);
    const PackedSizeT endCountWidth = readWidth(body);
    std::vector<std::size_t> ends;
    unpackSizeTVector(ends, body, endWidth, endCountWidth);
    const bool continues = partitionEnds.empty() || ends.empty() || partitionEnds.back() <= ends[0];
    if (!continues || !std::is_sorted(ends.begin(), ends.end()))
        throw DescendingPathTotalsException();
    partitionEnds.insert(partitionEnds.end(), ends.begin(), ends.end());
    if (!partitionEnds.empty()) pathCount = partitionEnds.back();

    const std::uint64_t trackCount = body.readInteger(kCount8Size);
    const PackedSizeT positionWidth = readWidth(body);
    const PackedSizeT lengthWidth = readWidth(body);
    maxFolderDepth = 0;
    body.requireElements(trackCount, 1);
    folderTracks.reserve(folderTracks.size() + trackCount);
    for (std::uint64_t left = trackCount; left > 0; --left) {
        std::vector<std::size_t> track;
        unpackSizeTVector(track, body, positionWidth, lengthWidth);
        if (!pathTree->leadsToFolder(track)) throw InvalidTrackException();
        maxFolderDepth = std::max(maxFolderDepth, track.size());
        trackEnds_.push_back(pathTree->guessTrackEnd(track));
        folderTracks.push_back(std::move(track));
    }
    readTrackEnds(nodeCount);
}

/// Works out what the last positions of the tracks are. With more files than the trie has nodes
/// the totals are not those of this trie: the guesses stand then, for the time that reading takes
/// would not be bounded by the size of the set.
void HuffmanPathTree::readTrackEnds(std::size_t nodeCount) {
    if (partitionEnds.empty() || partitionEnds.back() > nodeCount) return;
    std::vector<std::size_t> fileCounts(partitionEnds.size());
    std::adjacent_difference(partitionEnds.begin(), partitionEnds.end(), fileCounts.begin());
    trackEnds_ = pathTree->readTrackEnds(folderTracks, fileCounts);
}

void HuffmanPathTree::unpackTrackSection(ByteReader& body) {
    const PackedSizeT positionWidth = readWidth(body);
    const PackedSizeT lengthWidth = readWidth(body);
    const PackedSizeT numberWidth = readWidth(body);
    maxTrackLength = 0;
    maxTrackKey = 0;
    while (!body.isAtEnd()) {
        const std::size_t number = body.readInteger(sixpacks::byteSizeOf(numberWidth));
        maxTrackKey = std::max(maxTrackKey, number);
        std::vector<std::size_t> track;
        unpackSizeTVector(track, body, positionWidth, lengthWidth);
        if (track.empty() || !pathTree->leadsToNode(track)) throw InvalidTrackException();
        maxTrackLength = std::max(maxTrackLength, track.size());
        pathTracks[number] = std::move(track);
    }
    pathCount += pathTracks.size();
}

}  // namespace compressedpaths
