#pragma once
// HuffmanPathTree holds a very large set of paths in little memory: a Huffman code over the UTF-16
// characters of path components, a trie of the coded components, and an index that gives any path
// back by its number.
//
//     HuffmanPathTree set;
//     set.deflateHuffman(frequencies, u"abc/");            // once, before anything else
//     set.generateCodeAsyncAndAddPaths(folders, files);    // as often as there are batches
//
//     std::vector<Path> codedFolders, codedFiles;
//     set.getPath(codedFolders, codedFiles, {1});          // the first path that was added
//     set.generatePathFrom(codedFiles[0][0]);              // its file name
//
//     std::vector<std::uint8_t> bytes;
//     set.serialize(bytes, true);                          // the set without its characters
//     HuffmanPathTree loaded;
//     loaded.deserialize(bytes, true);
//     loaded.inflateHuffman(set.getTreeString());          // the characters
//
// A character is one UTF-16 code unit: one beyond the basic plane is coded as two. A component is
// one folder name or the file name; its code bytes are its characters' code words, packed as
// sixpacks/BitVectors.hpp says. A folder entry is one folder, as a list of components, with files
// in it; entries own consecutive path numbers, from 1, in the order in which they were added.
//
// A failed operation leaves the set as it was, except where it says otherwise. What the exceptions
// mean is in HuffmanPathTreeExceptions.hpp, BPathTreeExceptions.hpp and docs/errors.md; all
// operations may also throw std::bad_alloc.
//
// Threads: a set belongs to one thread at a time; generateCodeAsyncAndAddPaths uses more of its
// own.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <stack>
#include <string>
#include <unordered_map>
#include <vector>

#include "compressedpaths/BPathTree.hpp"
#include "compressedpaths/CodeTables.hpp"
#include "compressedpaths/FrequencyHeap.hpp"
#include "compressedpaths/HuffmanPathTreeExceptions.hpp"

namespace compressedpaths {

namespace sixpacks {
class ByteReader;
}

class HuffmanPathTree {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;  // no position in the node table

    /// A node of the coding tree. A leaf has neither child.
    struct HNode {
        double frequency;     // of a character, or the sum of both children's; 0 after inflating
        char16_t character;   // of a leaf; 0 of an internal node
        std::uint32_t index;  // its position in the node table, or kNone before it is there
        std::uint32_t left;   // position of the child that bit 0 leads to, or kNone
        std::uint32_t right;  // position of the child that bit 1 leads to, or kNone

        bool isLeaf() const noexcept { return left == kNone && right == kNone; }
    };

    /// True if `a` comes out of the heap after `b`. Equal frequencies are ordered by the heap's
    /// steps alone.
    struct HNodeFrequencyComparator {
        bool operator()(const HNode& a, const HNode& b) const noexcept {
            return a.frequency > b.frequency;
        }
    };

    HuffmanPathTree();
    HuffmanPathTree(const HuffmanPathTree&) = delete;  // see copyTree
    HuffmanPathTree& operator=(const HuffmanPathTree&) = delete;
    virtual ~HuffmanPathTree();

    // --- The code. Either deflateHuffman, or setting a saved form and inflating it, once.

    /// Builds the code from the frequency of each character. The order of the map decides ties.
    /// Throws AlphabetTooSmallException, CodingTreeExistsException, and CodeWordsTooLongException
    /// after which the object cannot be used. O(n log n + bits of all code words).
    void deflateHuffman(const std::unordered_map<char16_t, double>& frequencyOf);

    /// The same from parallel inputs: `characterFrequencies` has a value for each of `characters`.
    /// The order of the characters decides ties; of a repeated one the first code word counts.
    void deflateHuffman(const double* characterFrequencies, const std::u16string& characters);

    /// The code bytes of a component: at least two. Throws NoCodeForEmptyString and
    /// CodeNotFoundException. O(characters).
    std::vector<std::uint8_t> generateCodeFor(const std::u16string& text);

    /// The component of code bytes; bits behind the last whole code word are dropped. Throws
    /// NoUsableCodingTreeException and InvalidCodeException. O(characters).
    std::u16string generatePathFrom(const std::vector<std::uint8_t>& code) const;

    /// At a leaf: appends its character to `text`, sets `position` to the root and returns true.
    /// Throws InvalidCodeException if the node table has no such position. O(1).
    bool appendToPathIfLeaf(std::int32_t& position, std::u16string& text) const;

    /// Calls `visitor(HuffmanPathTree*, HNode&)` with a copy of each node, in pre-order: a node,
    /// its left subtree, its right one. Visits nothing without a coding tree. O(nodes).
    template <class F>
    void traverse(F visitor);

    // --- The forms of the coding tree that are saved.

    std::u16string getTreeString() const;  // characters of the leaves in pre-order
    void setTreeString(const std::u16string& characters);
    std::vector<bool> getBoolTree() const;             // the shape in pre-order: true is a leaf
    std::vector<double> getFrequencies() const;        // of the leaves in pre-order
    void setFrequencies(std::vector<double>& values);  // takes the values over, leaves none behind

    /// Rebuilds the coding tree from shape and tree string; decoding works then, coding does not.
    /// An empty shape gives no tree. Throws IncompleteCodingTreeException and
    /// CodingTreeExistsException. O(nodes).
    void inflate();

    /// Takes the tree string, rebuilds the coding tree and the code: what a loaded set needs.
    /// Throws as inflate, and CodeWordsTooLongException. O(nodes + bits of all code words).
    void inflateHuffman(const std::u16string& characters);

    // --- The paths.

    /// Adds a batch: the i-th folder with the i-th list of file names. Components are coded on all
    /// cores and added in the order given, so that the set does not depend on the threads.
    /// Throws NoCodeForEmptyString, CodeNotFoundException, UnequalBatchListsException: then nothing
    /// of the batch is in the set, and its memory is given back by the next batch or reset.
    /// O(characters), expected.
    void generateCodeAsyncAndAddPaths(std::vector<std::vector<std::u16string>>& folders,
                                      std::vector<std::vector<std::u16string>>& files);

    /// Adds one folder entry of coded components, which are moved into the set.
    void addPathToBTree(std::vector<Bytes>& codedFolders, std::vector<Bytes>& codedFiles);

    /// Adds one coded path. If it was there, it gets a number all the same and the walk gives it
    /// again at that number; getPath does not count it.
    void addPathToBTree(std::vector<Bytes>& codedPath);

    /// Adds the coded batch. Throws IncompleteBatchException if some of it has not been coded.
    void addPathToBTreeFromAsyncData();

    /// True if the path with this number was there when it was added on its own. O(1), expected.
    bool hasDuplicate(const std::uint64_t& pathNumber);

    /// The paths with the requested numbers, coded: for each run of ascending numbers in one folder
    /// entry, its folder at the end of `foldersOut` and its files at the end of `filesOut`.
    /// Throws InvalidPathNumberException; and InvalidTrackException or InvalidFileNumberException
    /// if a damaged set was loaded. Nothing is appended then. O(numbers * log entries + bytes
    /// appended).
    void getPath(std::vector<Path>& foldersOut, std::vector<Path>& filesOut,
                 const std::vector<double>& requested);

    /// The walk over all paths, in the order of the trie. resetPathsToBTree starts it, also anew;
    /// start it after adding. getNextPathFromBTree replaces `out` by the next coded path, or, where
    /// a path was added again, appends that path; it throws NoMorePathException behind the last.
    void resetPathsToBTree();
    bool hasNextPathFromBTree();
    void getNextPathFromBTree(Path& out);

    /// Makes this set a copy of the other. Both share the nodes of the trie: what is added through
    /// one appears in the walk of both, though not under a number of the other.
    void copyTree(const HuffmanPathTree& other);

    // --- The saved form; docs/format.md draws it.

    /// Appends the saved form to `bytes`. O(size of the set).
    void serialize(std::vector<std::uint8_t>& bytes, bool compress);

    /// Reads the saved form that `bytes` begins with into this newly constructed set. Throws
    /// PrematureEndException, ImplausibleLengthException, DamagedBlockException,
    /// InvalidUintConversionException, UnknownNodeTypeException, IncompleteTrieException,
    /// DescendingPathTotalsException and InvalidTrackException; what was read up to there then
    /// stays. O(size of the set).
    void deserialize(std::vector<std::uint8_t>& bytes, bool compressed);

    std::size_t serializePathTree(Bytes& structure, std::vector<Bytes>& keys);
    std::size_t deserializePathTree(Bytes& structure, std::vector<Bytes>& keys);

private:
    friend class HuffmanPathTreePeer;

    using HNodeHeap = FrequencyHeap<HNode, HNodeFrequencyComparator>;

    void requireNoCodingTree() const;
    void makeHeapAndTree(const std::unordered_map<char16_t, double>& frequencyOf);
    void makeHeapAndTree(const double* characterFrequencies, const std::u16string& characters);
    void generateTree(HNodeHeap& heap);
    void generateCompressedTree();
    void requireBearableCodeWords() const;
    void generateCode();
    void addCode(const HNode& leaf);
    void buildDecodingTable();
    Bytes codeOf(const std::u16string& text) const;

    std::size_t sizeOfSavedTree(const std::u16string& characters) const;
    void inflateFromBoolTree();
    void inflateFromCompressedTree();

    void generateCodeForPath(std::size_t first, std::size_t last);
    void codeAllInParallel();
    void clearThreadResources();

    std::size_t rootChildrenBefore(std::size_t entry) const;

    std::size_t packTrie(Bytes& body);
    void packFolderSection(Bytes& body, std::size_t maxFanOut) const;
    void packTrackSection(Bytes& body, std::size_t maxFanOut) const;
    void unpackBody(sixpacks::ByteReader& body);
    std::size_t unpackTrie(sixpacks::ByteReader& body);
    void unpackFolderSection(sixpacks::ByteReader& body, std::size_t nodeCount);
    void readTrackEnds(std::size_t nodeCount);
    void unpackTrackSection(sixpacks::ByteReader& body);

    std::vector<bool> boolTree;           // shape of the coding tree in pre-order, true is a leaf
    std::u16string treeString;            // characters of the leaves in pre-order
    std::unique_ptr<BPathTree> pathTree;  // never null
    // By path number: the child positions that lead to a path that was there when added on its own.
    std::unordered_map<std::size_t, std::vector<std::size_t>> pathTracks;
    std::vector<std::size_t> partitionEnds;  // paths up to and with each folder entry; ascending
    // By folder entry: the track of the folder, and, if it was there, the position of its first
    // file.
    std::vector<std::vector<std::size_t>> folderTracks;
    // The counters are maxima that the saved form takes its widths from.
    std::size_t maxFolderDepth = 0;     // positions in folderTracks, of folders that were there
    std::size_t maxTrackLength = 0;     // positions in pathTracks
    std::size_t maxCodeBytes = 0;       // bytes of one component
    std::size_t maxTrackKey = 0;        // path number in pathTracks
    std::size_t iterationPosition = 0;  // paths that the walk has given
    std::size_t pathCount = 0;
    std::vector<double> frequencies;  // of the leaves in pre-order
    std::uint32_t rootIndex = 0;
    std::vector<HNode> nodes;  // a node's index is its position
    std::unordered_map<char16_t, std::deque<bool>>
        codes;  // code words, first step from the root first
    std::unordered_map<std::uint32_t, std::uint32_t> parents;  // scratch: parent of a node
    // A batch between coding and adding; a slot is written by the one worker that codes its entry.
    std::vector<std::vector<std::u16string>> asyncFolders;
    std::vector<std::vector<std::u16string>> asyncFiles;
    std::vector<std::vector<Bytes>> asyncCodedFolders;
    std::vector<std::vector<Bytes>> asyncCodedFiles;
    std::mutex asyncFoldersMutex;
    std::mutex asyncFilesMutex;

    std::vector<BPathTree::TrackEnd> trackEnds_;  // parallel to folderTracks; not saved
    CodeWordTable codeWords_;                     // derived from codes
    DecodingTable decodingTable_;                 // derived from nodes
};

template <class F>
void HuffmanPathTree::traverse(F visitor) {
    if (rootIndex >= nodes.size()) return;

    std::stack<HNode, std::vector<HNode>> open;
    open.push(nodes[rootIndex]);
    while (!open.empty()) {
        HNode node = open.top();
        open.pop();
        visitor(this, node);
        if (node.right != kNone) open.push(nodes[node.right]);
        if (node.left != kNone) open.push(nodes[node.left]);
    }
}

}  // namespace compressedpaths
