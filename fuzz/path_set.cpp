// Any bytes as a saved path set and any tree string beside it. What loads is walked, fetched and
// decoded; saved and loaded again it is the same set, whichever of the two forms it is saved in.
//
// The body of a compressed form is changed as it is before it is compressed.

#include <map>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/SavedForm.hpp"
#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Mutation.hpp"
#include "fuzz/Require.hpp"
#include "tests/support/Peers.hpp"

using namespace compressedpaths;
using fuzzing::InputScript;
using fuzzing::require;
using fuzzing::succeeds;
using Peer = HuffmanPathTreePeer;

namespace {

/// Paths that are walked or fetched at most: a deep trie has long paths, all of them together too
/// long.
constexpr std::size_t kMaxPaths = 100;

bool load(HuffmanPathTree& set, Bytes& bytes, bool compressed) {
    return succeeds<sixpacks::PrematureEndException, ImplausibleLengthException,
                    DamagedBlockException, sixpacks::InvalidUintConversionException,
                    UnknownNodeTypeException, IncompleteTrieException,
                    DescendingPathTotalsException, InvalidTrackException, SetTooLargeException>(
        [&] { set.deserialize(bytes, compressed); });
}

void decodeAll(const HuffmanPathTree& set, const Path& path) {
    for (const Bytes& code : path)
        succeeds<NoUsableCodingTreeException, InvalidCodeException>(
            [&] { set.generatePathFrom(code); });
}

void walk(HuffmanPathTree& set) {
    set.resetPathsToBTree();
    for (std::size_t walked = 0; walked < kMaxPaths && set.hasNextPathFromBTree(); ++walked) {
        Path path;
        set.getNextPathFromBTree(path);
        require(!path.empty(), "a path has components");
        decodeAll(set, path);
    }
}

void fetch(HuffmanPathTree& set, std::size_t number) {
    std::vector<Path> folders;
    std::vector<Path> files;
    const bool found =
        succeeds<InvalidPathNumberException, InvalidTrackException, InvalidFileNumberException,
                 NoTreeToTraverseException, EmptyPathForTraverseException>(
            [&] { set.getPath(folders, files, {static_cast<double>(number)}); });
    require(found || (folders.empty() && files.empty()), "nothing of a refused fetch");
    for (const Path& folder : folders) decodeAll(set, folder);
    for (const Path& names : files) decodeAll(set, names);
}

/// Everything that is saved, in an order of its own.
struct Content {
    explicit Content(const HuffmanPathTree& set)
        : shape(set.getBoolTree()),
          partitionEnds(Peer::partitionEnds(set)),
          folderTracks(Peer::folderTracks(set)),
          pathCount(Peer::pathCount(set)) {
        const auto tracks = Peer::pathTracks(set);
        pathTracks.insert(tracks.begin(), tracks.end());
        Peer::pathTree(set).serialize(structure, keys);
    }
    bool operator==(const Content&) const = default;

    std::vector<bool> shape;
    Bytes structure;
    std::vector<Bytes> keys;
    std::vector<std::size_t> partitionEnds;
    std::vector<std::vector<std::size_t>> folderTracks;
    std::map<std::size_t, std::vector<std::size_t>> pathTracks;
    std::size_t pathCount;
};

void requireLoadsAsSaved(HuffmanPathTree& set, bool compress) {
    Bytes saved;
    set.serialize(saved, compress);
    HuffmanPathTree again;
    require(load(again, saved, compress), "what is saved can be loaded");
    require(Content(again) == Content(set), "a set loads as it was saved");

    Bytes savedAgain;
    again.serialize(savedAgain, false);
    Bytes plain;
    set.serialize(plain, false);
    require(savedAgain.size() == plain.size(), "a set is saved the same way each time");
}

}  // namespace

/// A larger body is changed where it stands, compressed.
constexpr std::size_t kMaxBodySize = 1 << 16;

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    fuzzing::Random random(seed);
    InputScript script(data, size);
    const bool compressed = script.byte() % 2 == 1;
    script.bytes(2 * std::size_t{script.byte()});
    const std::uint64_t bodySize = script.integer(kCount8Size);
    Bytes block = script.rest();
    if (!compressed || block.empty() || bodySize > kMaxBodySize || fuzzing::below(8, random) == 0)
        return LLVMFuzzerMutate(data, size, maxSize);

    const std::size_t blockAt = size - block.size();
    Bytes body = sixpacks::decompressUint8(block.begin(), block.size(), bodySize);
    const std::size_t before = body.size();
    body.resize(before + 64);
    body.resize(LLVMFuzzerMutate(body.data(), before, body.size()));
    const Bytes changed = sixpacks::compressUint8(body);
    if (changed.size() > maxSize - blockAt) return size;
    sixpacks::writeInteger(body.size(), kCount8Size, data + blockAt - kCount8Size);
    std::copy(changed.begin(), changed.end(), data + blockAt);
    return blockAt + changed.size();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    const bool compressed = script.byte() % 2 == 1;
    std::u16string characters;
    for (unsigned left = script.byte(); left > 0; --left)
        characters.push_back(static_cast<char16_t>(script.integer(2)));

    Bytes bytes = script.rest();
    HuffmanPathTree set;
    const bool isLoaded = load(set, bytes, compressed);
    succeeds<IncompleteCodingTreeException, CodeWordsTooLongException>(
        [&] { set.inflateHuffman(characters); });
    walk(set);
    for (std::size_t number = 0; number < kMaxPaths; ++number) fetch(set, number);
    fetch(set, Peer::pathCount(set));
    if (!isLoaded) return 0;

    // A form from elsewhere may hold more than a set does, and wider tags; what is saved does not.
    Bytes saved;
    set.serialize(saved, false);
    HuffmanPathTree normal;
    require(load(normal, saved, false), "what is saved can be loaded");
    requireLoadsAsSaved(normal, false);
    requireLoadsAsSaved(normal, true);
    return 0;
}
