#pragma once
// SavedSetReader reads the body of a saved set, which docs/format.md draws, into a set. Nothing is
// built before all has been read, since what stands last says how the index is meant; what was read
// up to a damaged place is built all the same before the damage is reported.
//
//     SavedSetReader(set, body).read();
//
// Threads: belongs to one thread.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/store/TrieBuilder.hpp"

namespace compressedpaths {

class SavedSetReader {
public:
    /// The body outlives the reader.
    SavedSetReader(HuffmanPathTree& set, std::span<const std::uint8_t> body) noexcept
        : set_(set), body_(body), begin_(body.data()) {}

    /// Throws what HuffmanPathTree::deserialize throws. O(body).
    void read();

private:
    /// A folder's track, followed as far as it goes. Tracks of a hostile form can be a byte each,
    /// so that little is kept of them.
    struct Track {
        TrieBuilder::Node node =
            TrieBuilder::kRootNode;  // where it ends; kNoNode past the last child
        TrieBuilder::Node parent = TrieBuilder::kRootNode;  // the node above
        std::uint32_t first = 0;                            // its first position
        std::uint32_t last = 0;                             // its last position
        std::uint8_t length = 0;                            // 2 stands for more, too
    };
    struct RepeatedTrack {
        std::uint64_t number;
        TrieBuilder::Node parent;
        std::uint32_t last;
    };
    /// Where the files of an entry begin.
    struct Start {
        TrieBuilder::Node folder;
        std::uint64_t first;
        bool existed;
    };

    void readShape();
    void readTrie();
    void readSections();
    void readFolders();
    bool readFirstFiles();
    void readRepeatedTracks();
    Start startOf(std::size_t entry, std::uint64_t& rootChildren) const;
    std::uint64_t countOf(std::size_t entry) const noexcept;
    FolderEntries::Place placeOf(const Start& start) const;
    template <class Visit>
    void forEachStart(Visit visit) const;
    void build();
    void listRepeated(FlatArray<HuffmanPathTree::RepeatedPath>& paths,
                      FlatArray<std::uint32_t>& order) const;

    HuffmanPathTree& set_;
    sixpacks::ByteReader body_;
    const std::uint8_t* begin_;
    FlatArray<std::uint64_t> keys_;  // where each key's length stands in the body
    unsigned keyLengthSize_ = 1;
    std::optional<TrieBuilder> trie_;
    std::vector<std::size_t> ends_;
    std::vector<Track> tracks_;
    std::vector<bool> isFirstFile_;  // by entry, or empty: the rule of the form decides then
    std::vector<RepeatedTrack> repeated_;
    std::size_t maxCodeBytes_ = 0;
    std::size_t maxFolderDepth_ = 0;
    std::size_t maxTrackLength_ = 0;
    std::size_t maxTrackKey_ = 0;
    bool hasFolders_ = false;
    bool hasRepeated_ = false;
    bool isWhole_ = false;  // all paths added again have been read
};

}  // namespace compressedpaths
