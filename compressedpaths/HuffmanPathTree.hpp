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
// Threads: a set, and all sets that share its trie, belong to one thread at a time;
// generateCodeAsyncAndAddPaths uses more of its own. Operations that are const are safe from any
// number of threads at once while nobody changes the set or one that shares its trie.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <iosfwd>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stack>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "compressedpaths/BPathTree.hpp"
#include "compressedpaths/HuffmanPathTreeExceptions.hpp"
#include "compressedpaths/coding/CodeTables.hpp"
#include "compressedpaths/coding/CodedBatch.hpp"
#include "compressedpaths/coding/FrequencyHeap.hpp"
#include "compressedpaths/store/FolderEntries.hpp"

namespace compressedpaths {

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
    /// Throws AlphabetTooSmallException, CodingTreeExistsException and CodeWordsTooLongException.
    /// O(n log n + bits of all code words).
    void deflateHuffman(const std::unordered_map<char16_t, double>& frequencyOf);

    /// The same from parallel inputs: `characterFrequencies` has a value for each of `characters`.
    /// The order of the characters decides ties; of a repeated one the first code word counts.
    void deflateHuffman(const double* characterFrequencies, const std::u16string& characters);

    /// The code bytes of a component: at least two. Throws NoCodeForEmptyString and
    /// CodeNotFoundException. O(characters).
    std::vector<std::uint8_t> generateCodeFor(const std::u16string& text);

    /// The component of code bytes; bits after the last whole code word are dropped. Throws
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
    void setFrequencies(std::vector<double>& values);  // takes the values, which are empty then

    /// Rebuilds the coding tree from shape and tree string; decoding works then, coding does not.
    /// An empty shape gives no tree. Throws IncompleteCodingTreeException and
    /// CodingTreeExistsException. O(nodes).
    void inflate();

    /// Takes the tree string, rebuilds the coding tree and the code: what a loaded set needs.
    /// Throws as inflate, and CodeWordsTooLongException. O(nodes + bits of all code words).
    void inflateHuffman(const std::u16string& characters);

    // --- The paths.

    /// Adds a batch: the i-th folder with the i-th list of file names. Components are coded on all
    /// cores, from the lists given, and added in their order, so that the set does not depend on
    /// the threads. Throws NoCodeForEmptyString, CodeNotFoundException, UnequalBatchListsException
    /// and SetTooLargeException: then nothing of the batch is in the set; a batch that could not be
    /// coded is kept aside until the next batch or reset. O(characters), expected.
    void generateCodeAsyncAndAddPaths(std::vector<std::vector<std::u16string>>& folders,
                                      std::vector<std::vector<std::u16string>>& files);

    /// Adds a batch that the caller has coded, on the calling thread alone. Throws
    /// SetTooLargeException. O(bytes), expected.
    void addCodedBatch(const CodedBatch& batch);

    /// Adds one folder entry of coded components, which are moved into the set: those that were not
    /// there are left empty. Throws SetTooLargeException. O(bytes), expected.
    void addPathToBTree(std::vector<Bytes>& codedFolders, std::vector<Bytes>& codedFiles);

    /// Adds one coded path. If it was there, it gets a number all the same and the walk gives it
    /// again at that number; getPath does not count it. Throws SetTooLargeException.
    void addPathToBTree(std::vector<Bytes>& codedPath);

    /// Adds the coded batch that was kept aside. Throws IncompleteBatchException if some of it has
    /// not been coded.
    void addPathToBTreeFromAsyncData();

    /// True if the path with this number was there when it was added on its own. O(log paths).
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
    /// a path was added again, appends that path; it throws NoMorePathException past the last.
    void resetPathsToBTree();
    bool hasNextPathFromBTree();
    void getNextPathFromBTree(Path& out);

    /// Makes this set a copy of the other. Both share the trie: what is added through one appears
    /// in the walk of both, though not under a number of the other. O(entries).
    void copyTree(const HuffmanPathTree& other);

    // --- The paths as text. A path is its components joined as hosts join them: no separator after
    // the first, which carries its own. As bytes, the unit 0xDC00 + byte is that byte (0x80 on).

    /// The number of paths; they are numbered from 1.
    std::size_t size() const noexcept { return pathCount; }

    /// Appends the path that getPath gives for this number. Paths that were added on their own
    /// shift the numbers of the entry after them, whose last ones are then those of no file. Throws
    /// InvalidPathNumberException beyond all entries, InvalidFileNumberException beyond the files
    /// of a folder, and what decoding throws if a damaged set was loaded; `text` is then as it was.
    /// O(log entries + characters).
    void appendText(std::size_t number, std::string_view separator, std::string& text) const;
    void appendText(std::size_t number, std::u16string_view separator, std::u16string& text) const;

    /// Calls `visit` for the paths numbered `first` to `last`, in that order, or for none if last
    /// is below first. The text is gone after the call. Numbers beyond all entries, of paths that
    /// were added on their own, are passed over. Throws InvalidPathNumberException before the first
    /// call unless the set has both numbers, and as appendText at a number that is that of no file.
    /// O(characters).
    void forEachText(
        std::size_t first, std::size_t last, std::string_view separator,
        const std::function<void(std::size_t number, std::string_view text)>& visit) const;

    /// The same for any numbers, in the order given; soonest if they ascend. Throws as appendText,
    /// up to kFetchedTogether - 1 numbers before the one that it is about. O(log entries +
    /// characters) each.
    void forEachText(
        std::span<const std::size_t> numbers, std::string_view separator,
        const std::function<void(std::size_t number, std::string_view text)>& visit) const;
    static constexpr std::size_t kFetchedTogether = 16;

    /// Replaces `text` by the next path of the walk that resetPathsToBTree starts, which then goes
    /// on after it, also for getNextPathFromBTree. What a folder has in common with the one before
    /// is decoded once. Throws NoMorePathException past the last, and as appendText; the walk and
    /// `text` are then as they were. O(characters).
    void getNextTextFromBTree(std::string_view separator, std::string& text);

    /// Gives what getNextPathFromBTree would put into an empty path to `visit`, and goes on after
    /// it. Throws as that and as `visit`; whatever is thrown but NoMorePathException, the walk
    /// stays where it was, so that no path is lost to a caller that could not take it.
    void visitNextPathFromBTree(const std::function<void(const Path& path)>& visit);

    // --- Finding. None of these looks at the whole set, but for an order of all folders and all
    // entries that a set not opened from an image makes when it is first asked, and that adding
    // drops: O(folders log folders + entries log entries).

    using FolderId = compressedpaths::FolderId;

    /// Path numbers; both ends belong to the range.
    struct NumberRange {
        std::size_t first;
        std::size_t last;

        bool operator==(const NumberRange&) const = default;
    };

    /// The folder with these components; without any, the root. O(components * log folders).
    std::optional<FolderId> folderOf(const std::vector<std::u16string>& components) const;

    /// The folders in a folder, in the order in which they were made. Throws InvalidTrackException
    /// if there is no such folder, as do all that are asked about one. O(log folders +
    /// sub-folders).
    std::vector<FolderId> foldersIn(FolderId folder) const;
    /// Those of them whose name is `name`, or `name` and any number of `filler` after it. Does not
    /// look at others, but for those whose names take more than 247 bits. O(log folders), for each
    /// `filler` that the longest name has room for.
    std::vector<FolderId> foldersNamed(FolderId folder, std::u16string_view name,
                                       char16_t filler) const;

    /// The numbers of the files that were added to a folder, ascending. O(log entries + ranges).
    std::vector<NumberRange> entriesOf(FolderId folder) const;

    /// The lowest number of a file of this name in a folder. O(log entries + names of the folder).
    std::optional<std::size_t> numberOf(FolderId folder, const std::u16string& fileName) const;

    /// The numbers of all files in a folder whose name is `name`, or `name` and any number of
    /// `filler` after it, ascending. O(log entries + names of the folder).
    std::vector<std::size_t> numbersNamed(FolderId folder, std::u16string_view name,
                                          char16_t filler) const;

    /// The name of a folder: its last component, empty for the root. O(characters).
    std::u16string nameOf(FolderId folder) const;
    /// Throws InvalidImageException if names of folders lie over one another, as an image may say.
    /// To be asked before all of them are read, which is in proportion to the image then.
    /// O(folders).
    void requireOwnNames() const { arena().requireOwnNames(); }
    /// The folder that a folder is in; of the root, the root. O(1).
    FolderId parentOf(FolderId folder) const;

    /// Folders have the ids from 0 on. The folder that one is in has a lower id than itself.
    std::size_t folderCount() const noexcept { return arena().folderCount(); }

    /// Which folders have a name that holds `text`, by their ids; the root has an empty name. Names
    /// are not decoded: the code bits of the text are looked for. O(folders + bytes of their coded
    /// names).
    std::vector<bool> foldersNamedWith(std::u16string_view text) const;

    /// Calls `visit` for the files of a range, ascending: a folder, and the numbers of files in it
    /// that were added together. Throws InvalidPathNumberException before the first call unless the
    /// set has both numbers, InvalidImageException for a folder that there is not. Numbers beyond
    /// all entries are passed over. O(log entries + entries of the range).
    void forEachEntry(NumberRange range,
                      const std::function<void(FolderId folder, NumberRange numbers)>& visit) const;

    /// Calls `visit` for the numbers of a range whose file name holds `text`, ascending. Names are
    /// not decoded: the code bits of the text are looked for. Throws as forEachText. O(bytes of the
    /// coded names).
    void forEachNameWith(std::u16string_view text, NumberRange range,
                         const std::function<void(std::size_t number)>& visit) const;

    // --- The saved form; docs/format.md draws it.

    /// Appends the saved form to `bytes`. O(size of the set).
    void serialize(std::vector<std::uint8_t>& bytes, bool compress);

    /// Reads the saved form that `bytes` begins with into this newly constructed set. Throws
    /// PrematureEndException, ImplausibleLengthException, DamagedBlockException,
    /// InvalidUintConversionException, UnknownNodeTypeException, IncompleteTrieException,
    /// DescendingPathTotalsException, InvalidTrackException and SetTooLargeException; what was read
    /// up to there then stays. Refuses a body that inflates to more than `maxBodySize` bytes, or
    /// than deflate can reach. Takes at most 64 KiB and 64 bytes for each byte of the body.
    /// O(body).
    void deserialize(std::vector<std::uint8_t>& bytes, bool compressed,
                     std::uint64_t maxBodySize = std::numeric_limits<std::uint64_t>::max());

    std::size_t serializePathTree(Bytes& structure, std::vector<Bytes>& keys);
    std::size_t deserializePathTree(Bytes& structure, std::vector<Bytes>& keys);

    // --- Images: the arrays of a set as they are, to be mapped; docs/image.md draws them.

    /// Writes the image of this set. Throws ImageNotWrittenException if the stream fails.
    /// O(size of the set).
    void writeImage(std::ostream& out) const;

    /// A set on the bytes of an image, which outlive it and every set that shares its trie. Nothing
    /// is copied or rebuilt; adding copies the arrays. Throws InvalidImageException if the header
    /// is that of no image; what else is wrong is refused where it is met, with
    /// InvalidImageException too. O(characters of the alphabet).
    static std::unique_ptr<HuffmanPathTree> openImage(std::span<const std::byte> image);

    /// Throws InvalidImageException unless all sums hold and every offset leads where it should.
    /// O(size of the image).
    static void verifyImage(std::span<const std::byte> image);

    /// The tables that names are coded with.
    const CodeTables& codeTables() const noexcept { return codeTables_; }

private:
    friend class HuffmanPathTreePeer;
    friend class ImageReader;
    friend class ImageWriter;
    friend class SavedSetReader;

    using Id = PathArena::Id;
    class Addition;
    class BodySections;
    using HNodeHeap = FrequencyHeap<HNode, HNodeFrequencyComparator>;

    /// A path that was there when it was added on its own.
    struct RepeatedPath {
        std::size_t number;
        PathArena::Place place;
    };

    void requireNoCodingTree() const;
    void makeHeapAndTree(const double* characterFrequencies, const std::u16string& characters);
    void generateTree(HNodeHeap& heap);
    void generateCompressedTree();
    static void requireBoundedCodeWords(const std::vector<bool>& shape);
    void generateCode();
    void addCode(const HNode& leaf);
    void ensureCodingTree() const;
    void takeCodingTree(HuffmanPathTree& made) const noexcept;
    void buildCodeTables();
    void verifyCode() const;
    void verifyIndex() const;

    std::size_t sizeOfSavedTree(const std::u16string& characters) const;
    void inflateFromBoolTree();
    void inflateFromCompressedTree();

    void keepBatchAside(const std::vector<std::vector<std::u16string>>& folders,
                        const std::vector<std::vector<std::u16string>>& files) noexcept;
    void clearThreadResources();
    void addCodedBatches(std::span<const CodedBatch* const> batches);
    std::size_t addEntry(PathArena::Transaction& adding, std::vector<PathArena::Id>& chain,
                         const CodedBatch::Entry& entry, std::span<const std::uint8_t> names);

    PathArena& arena() noexcept { return pathTree->arena(); }
    const PathArena& arena() const noexcept { return std::as_const(*pathTree).arena(); }
    std::uint64_t totalOfEntries() const noexcept;
    std::optional<FolderEntries::Cursor> entryHolding(std::size_t number) const;
    std::optional<PathArena::Place> findFile(const FolderEntries::Entry& entry, std::uint64_t index,
                                             PathArena::Link from = PathArena::kNone) const;
    PathArena::Place fileOf(const FolderEntries::Entry& entry, std::uint64_t index) const;
    PathArena::Id folderOfEntry(const FolderEntries::Place& place) const;
    std::uint64_t firstChildOf(const FolderEntries::Place& place) const;
    std::vector<std::size_t> trackTo(PathArena::Id folder) const;
    std::vector<std::size_t> trackOfEntry(const FolderEntries::Place& place) const;
    Path pathOfTrack(std::size_t number) const;
    template <class Visit>
    void forEachEntry(Visit visit) const;
    void forgetPaths() noexcept;
    void reserveForRepeatedPath();
    void rememberRepeatedPath(std::size_t number, const PathArena::Place& place);

    // What the described fields of these names hold, made where it is wanted. Total of paths up to
    // and with each entry; track of each entry; child positions of paths that were added again.
    std::vector<std::size_t> partitionEnds() const;
    std::vector<std::vector<std::size_t>> folderTracks() const;
    std::unordered_map<std::size_t, std::vector<std::size_t>> pathTracks() const;

    /// The folders of a path as text, and how far it is that of each.
    struct FolderText {
        std::string text;
        std::string separator;
        std::vector<Id> folders;
        std::vector<std::size_t> ends;
    };
    void setFolders(FolderText& folder, std::span<const Id> folders,
                    std::string_view separator) const;
    template <class Step>
    void stepWalk(Step step);

    /// A file's name and the folder that it is in.
    struct FileName {
        PathArena::Id folder;
        NameView name;
    };
    /// The files of an entry, one after the other.
    class FileNames {
    public:
        FileNames(const HuffmanPathTree& set, const FolderEntries::Entry& entry,
                  std::uint64_t index);

        bool isThere();
        FileName get();
        FileName next();  // the same, and goes on
        /// True if this file is in the run that the entry begins in, as most are; and if those
        /// after it are, up to an index.
        bool isInRun() const noexcept { return isInRunUpTo(index_ + 1); }
        bool isInRunUpTo(std::uint64_t index) const noexcept {
            return entry_.place.run != PathArena::kNone && entry_.place.skip + index <= run_.count;
        }
        template <class Find>
        std::uint64_t skipTo(Find find, std::uint64_t most);

    private:
        std::optional<PathArena::Place> findAfterRun();

        const HuffmanPathTree& set_;
        FolderEntries::Entry entry_;
        std::uint64_t index_;
        PathArena::Run run_{};
        std::uint32_t offset_ = 0;  // of the name, while it is in the run
        // The item that the file before was in, after the run: the next is not before it.
        PathArena::Link item_ = PathArena::kNone;
    };
    FileName fileNameOf(const FolderEntries::Entry& entry, std::uint64_t index) const;
    class FetchedTogether;

    /// The paths of files as text, one after the other. What the folder of one has in common with
    /// the folder of the file before is decoded once.
    class FileTexts {
    public:
        FileTexts(const HuffmanPathTree& set, std::string_view separator) noexcept
            : set_(set), separator_(separator) {}

        /// Valid until the next call. Throws as appendText.
        std::string_view textOf(const FileName& file);

    private:
        void setFolder(PathArena::Id folder);

        const HuffmanPathTree& set_;
        std::string_view separator_;
        FolderText text_;  // of the folder, with a file name after it meanwhile
        std::vector<PathArena::Id> chain_;
        PathArena::Id folder_ = PathArena::kNone;
        std::size_t folderSize_ = 0;
    };
    template <class Text, class Separator>
    void appendPath(std::size_t number, Separator separator, Text& text) const;

    class NameSearch;
    std::optional<FlatArray<std::uint8_t>> storedNameOf(std::u16string_view component) const;
    std::optional<FolderEntries::Cursor> firstEntryOf(NumberRange range) const;
    PathArena::Id existing(FolderId folder) const;
    void appendLongNamed(std::span<const PathArena::Id> inFolder, std::u16string_view name,
                         char16_t filler, std::vector<FolderId>& found) const;
    const FlatArray<std::uint32_t>& entriesByFolder() const;
    FolderEntries::Cursor entryAt(std::uint32_t number) const;
    template <class Visit>
    void forEachEntryOf(PathArena::Id folder, Visit visit) const;

    const RepeatedPath* repeatedPathAt(std::size_t number) const;
    const std::uint32_t* repeatedPathsFrom(std::size_t number) const;
    const RepeatedPath& repeatedPath(std::uint32_t position) const;

    std::vector<bool> boolTree;           // shape of the coding tree in pre-order, true is a leaf
    std::u16string treeString;            // characters of the leaves in pre-order
    std::unique_ptr<BPathTree> pathTree;  // never null
    // The counters are maxima that the saved form takes its widths from.
    std::size_t maxFolderDepth = 0;     // positions in folderTracks, of folders that were there
    std::size_t maxTrackLength = 0;     // positions in pathTracks
    std::size_t maxCodeBytes = 0;       // bytes of one component
    std::size_t maxTrackKey = 0;        // path number in pathTracks
    std::size_t iterationPosition = 0;  // paths that the walk has given
    std::size_t pathCount = 0;
    std::vector<double> frequencies;  // of the leaves in pre-order
    // The coding tree itself. A set that was opened from an image makes it when it is first needed.
    mutable std::uint32_t rootIndex = 0;
    mutable std::vector<HNode> nodes;  // a node's index is its position
    mutable std::unordered_map<char16_t, std::deque<bool>>
        codes;  // code words, first step from the root first
    mutable std::unordered_map<std::uint32_t, std::uint32_t> parents;  // scratch: parent of a node
    // A batch that could not be coded. The two mutexes belong to the described object and guard
    // nothing: each worker fills a batch of its own.
    std::vector<std::vector<std::u16string>> asyncFolders;
    std::vector<std::vector<std::u16string>> asyncFiles;
    std::vector<std::vector<Bytes>> asyncCodedFolders;
    std::vector<std::vector<Bytes>> asyncCodedFiles;
    std::mutex asyncFoldersMutex;
    std::mutex asyncFilesMutex;

    // Fields of our own end in an underscore; those above have fixed names.
    FolderEntries entries_;
    FlatArray<RepeatedPath> repeatedPaths_;   // in the order in which they were added
    FlatArray<std::uint32_t> repeatedOrder_;  // their positions, ascending by number
    CodeTables codeTables_;                   // derived from boolTree and treeString
    bool isCodingTreeDeferred_ = false;       // it has to be made from boolTree and treeString
    Lazy<bool> isCodingTreeMade_;             // from them
    Lazy<FlatArray<std::uint32_t>> entriesByFolder_;  // entries in the order of (folder, number)
    FolderText walkText_;                             // of the folder that the walk has come to
};

template <class F>
void HuffmanPathTree::traverse(F visitor) {
    ensureCodingTree();
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

/// Calls `visit(cursor)` for every entry that has numbers and a place.
template <class Visit>
void HuffmanPathTree::forEachEntry(Visit visit) const {
    if (entries_.size() == 0) return;
    FolderEntries::Cursor cursor = entries_.at(0);
    while (true) {
        visit(std::as_const(cursor));
        if (cursor.number + 1 == entries_.size()) return;
        entries_.advance(cursor);
    }
}

}  // namespace compressedpaths
