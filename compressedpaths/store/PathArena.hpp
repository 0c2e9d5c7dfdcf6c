#pragma once
// PathArena is the store of a trie: flat arrays that hold offsets only, and nothing for a file but
// its coded name.
//
// The children of a folder are items in the order of their positions: a run of files, or a folder.
// A run stands in the bytes of the names, its files one after the other; a folder has a record.
// Items form a ring, so that the one link that a folder has, to its last item, leads to the first
// as well:
//
//     record of "usr"   last ──▶ run [bin, lib] ──▶ folder "share" ──▶ run [src] ─┐
//                                      ▲                                          │
//                                      └──────────────────────────────────────────┘
//
// A file that becomes a folder keeps its name in its run and gets a record that is in no ring; a
// table finds it by folder and position. What stands in the arrays, byte by byte, is drawn in
// docs/image.md: an image holds them as they are.
//
// Everything that is read is checked where it is used, since arrays may come from an image; what
// leads nowhere throws InvalidImageException.
//
// Threads: reading (const) is safe from many threads while nobody adds.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "compressedpaths/store/FlatArray.hpp"
#include "compressedpaths/store/IdTable.hpp"
#include "compressedpaths/store/Lazy.hpp"
#include "compressedpaths/store/StoredName.hpp"

namespace compressedpaths {

/// A folder of a trie; the root is 0. Stays valid for the life of the trie.
enum class FolderId : std::uint32_t {};

class PathArena {
public:
    using Id = std::uint32_t;    // of a folder record
    using Link = std::uint32_t;  // an item: the offset of a run, or kFolderLink and a folder's id
    static constexpr Id kRoot = 0;
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;  // no folder, no item
    static constexpr Link kFolderLink = 0x80000000;

    struct Folder {
        Id parent;           // less than its own id; of the root itself
        std::uint32_t name;  // where its position, a varint, and its name stand; kNone of the root
        Link next;           // the item after it in its ring
        Link last;           // its own last item, kNone without children
    };

    /// A run as it stands in the names.
    struct Run {
        Link link;
        Link next;
        Id folder;
        std::uint32_t first;    // position of its first file
        std::uint32_t count;    // files, at least one
        std::uint32_t countAt;  // where count and flags stand
        std::uint32_t samples;  // where the offsets of every eighth name stand
        std::uint32_t names;    // where the first name stands
        bool hasWideSamples;
    };

    /// A child: a file in its run, or a folder (index 0).
    struct Place {
        Link link;
        std::uint32_t index;

        bool operator==(const Place&) const = default;
    };

    /// A child of a folder, on the way through all of them.
    struct Cursor {
        Id folder;
        std::uint32_t position;
        Link link;
        std::uint32_t index = 0;  // in run
        std::uint32_t name = 0;   // where the name of the file stands, if it is one
        Run run{};                // if the item is one; a copy that its next and count may outgrow

        bool isFile() const noexcept { return (link & kFolderLink) == 0; }
        Place place() const noexcept { return {link, index}; }
    };

    /// The arrays, for who writes and reads images.
    struct Arrays {
        FlatArray<std::uint8_t> names;
        FlatArray<Folder> folders;
        IdTable formerFiles;  // ids of folders that were files, by parent and position
    };

    PathArena();  // with the root alone
    PathArena(Arrays arrays, std::uint64_t seed) noexcept;
    PathArena(const PathArena&) = delete;
    PathArena& operator=(const PathArena&) = delete;

    const Arrays& arrays() const noexcept { return arrays_; }
    std::uint64_t seed() const noexcept { return seed_; }
    std::uint32_t folderCount() const noexcept {
        return static_cast<std::uint32_t>(arrays_.folders.size());
    }

    /// Most bytes of names and most folders, for tests: offsets have 31 bits.
    void limitTo(std::size_t nameBytes, std::size_t folders) noexcept;

    // --- Reading.

    std::uint32_t childCount(Id folder) const;
    bool hasChildren(Id id) const { return folder(id).last != kNone; }
    Id parentOf(Id folder) const;
    std::uint32_t positionOf(Id folder) const;  // not of the root
    NameView nameOf(Id folder) const;           // not of the root

    /// The name of a folder that stands after that of another with a lower id, as it does for all
    /// folders: `after` is where the other one ends, and becomes where this one does. So names that
    /// are read in the order of ids, as on the way down to a folder, take no more than all names.
    NameView nameAfter(Id folder, std::uint32_t& after) const;
    /// Throws InvalidImageException unless the names of all folders stand so. O(folders).
    void requireOwnNames() const;

    Run runAt(Link link) const;
    std::uint32_t nameOffset(const Run& run, std::uint32_t index) const;
    NameView nameAt(std::uint32_t offset) const;
    std::uint32_t nameAfter(std::uint32_t offset) const;  // where the next one stands
    NameView nameOf(const Place& place) const;
    NameView nameOf(const Cursor& child) const {
        return child.isFile() ? nameAt(child.name) : nameOf(child.link & ~kFolderLink);
    }
    Id folderOf(const Place& place) const;  // that the child is in
    std::uint32_t positionOf(const Place& place) const;

    /// The first child of a folder that has any; the next of a cursor whose folder has one.
    /// O(1) and O(1).
    Cursor firstChild(Id folder) const;
    void advance(Cursor& cursor) const;
    /// True if a file of the run has become a folder since it was added. O(1).
    bool hasFormerFiles(const Run& run) const noexcept;

    /// The folder that a child is, also one that was a file once; kNone of a file. O(1), expected.
    Id folderAt(const Cursor& cursor) const;
    Id folderAt(const Place& place) const;

    /// The last item of a folder that has children; the item after one that is not the last.
    Link lastItemOf(Id id) const { return folder(id).last; }
    Link itemAfter(Link link) const;

    /// The child at a position, or nothing. Goes through the items of the folder from `from` on, an
    /// item of it, or from the first. O(items + 8).
    std::optional<Place> childAt(Id folder, std::uint64_t position, Link from = kNone) const;

    /// The last name of a run before a file in it, or its own, that is found without going through
    /// others, and how many files on the file is. Reads a sample of the run, if any. O(1).
    struct NearName {
        std::uint32_t offset;
        std::uint32_t left;
    };
    NearName nearName(const Run& run, std::uint32_t index) const;

    /// Ask for the record of a folder, its name, anything in the names, or what nearName reads,
    /// before it is read. Only prefetchName reads: the record.
    void prefetchFolder(Id folder) const noexcept {
        __builtin_prefetch(arrays_.folders.data() + folder);
    }
    void prefetchAt(std::uint32_t offset) const noexcept {
        if (offset < arrays_.names.size()) __builtin_prefetch(arrays_.names.data() + offset);
    }
    void prefetchSample(const Run& run, std::uint32_t index) const noexcept;
    void prefetchName(Id id) const { prefetchAt(folder(id).name); }

    /// The ids of the folders from the first level down to `folder`, which is the last; none for
    /// the root. Replaces `chain`. O(depth).
    void chainTo(Id folder, std::vector<Id>& chain) const;
    /// Appends the keys of these folders, or those of the folders above a child and its own.
    /// O(depth).
    void appendKeysTo(Id folder, std::vector<std::vector<std::uint8_t>>& keys) const;
    void appendKeysOf(const Place& child, std::vector<std::vector<std::uint8_t>>& keys) const;

    /// The first child folder with this stored name, or kNone. Builds an order of all folders when
    /// it is first called after adding. O(log folders).
    Id findFolder(Id parent, std::span<const std::uint8_t> storedName) const;
    /// The folders in a folder, in the order of their names, or ascending. O(log folders), and
    /// O(folders in it * log) for the latter.
    std::span<const Id> foldersByNameIn(Id parent) const;
    std::vector<Id> foldersIn(Id parent) const;
    /// Those of some folders by name that do not come before a stored name. O(log folders).
    std::span<const Id> fromName(std::span<const Id> byName,
                                 std::span<const std::uint8_t> storedName) const;
    bool isNamed(Id folder, std::span<const std::uint8_t> storedName) const {
        return compareNames(folder, storedName) == 0;
    }
    const FlatArray<Id>& foldersByName() const;
    bool isOrderedByName() const;
    void setFoldersByName(FlatArray<Id> order) noexcept { foldersByName_.set(std::move(order)); }

    // --- Adding, as one step that happens as a whole or not at all.

    /// Files that have been appended: `skip` files of the run stand before them.
    struct Appended {
        Link run;
        std::uint32_t skip;
    };

    class Transaction {
    public:
        /// Throws only std::bad_alloc. O(1), or O(folders) the first time.
        explicit Transaction(PathArena& arena);
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        // NOLINTNEXTLINE(bugprone-exception-escape): see there
        ~Transaction();  // undoes what was done unless it was committed

        void commit() noexcept { isCommitted_ = true; }

        /// The first child with this stored name: a folder's id, or the place of a file, or
        /// neither.
        struct Found {
            Id folder = kNone;
            Place file{kNone, 0};

            bool isThere() const noexcept { return folder != kNone || file.link != kNone; }
        };
        Found find(Id parent, std::span<const std::uint8_t> storedName);

        /// A folder in `parent` at the end of its children; one for a file that is there.
        Id makeFolder(Id parent, std::span<const std::uint8_t> storedName);
        Id makeFolderOf(const Place& file);
        /// The folder that a child is, or becomes by something being added inside.
        Id enter(const Found& child) {
            return child.folder != kNone ? child.folder : makeFolderOf(child.file);
        }

        /// Appends `count` files, at least one, whose stored names stand one after the other.
        Appended appendFiles(Id folder, std::span<const std::uint8_t> storedNames,
                             std::uint32_t count);

    private:
        /// What to undo: a folder's link to its last item, the files of a run, a former file.
        struct Change {
            enum class Kind : std::uint8_t { kLastItem, kRunCount, kRunFlags, kFormerFile } kind;
            std::uint32_t of;
            std::uint32_t before;
        };

        Id addFolder(Id parent, std::uint32_t position, std::span<const std::uint8_t> storedName);
        void extendOpenRun(const Run& run, std::span<const std::uint8_t> storedNames,
                           std::uint32_t count);
        void noteLastItem(Id folder);
        // NOLINTNEXTLINE(bugprone-exception-escape): see there
        void undo(const Change& change) noexcept;

        PathArena& arena_;
        std::size_t namesBefore_;
        std::size_t foldersBefore_;
        std::vector<Change> changes_;
        bool isCommitted_ = false;
    };

private:
    friend class TrieBuilder;
    friend class Transaction;

    /// The files of a folder with many children, by the hash of their names, and its runs.
    struct WideFolder {
        Link seen = kNone;                       // the item taken in last
        std::uint32_t seenInRun = 0;             // files of it that have been taken in
        FlatArray<Link> runs;                    // ascending
        IdTable names{IdTable::Tags::kInSlots};  // offsets; of equal names the first
    };
    static bool hasSampleBefore(const Run& run, std::uint32_t index) noexcept;
    static std::uint32_t sampleOffset(const Run& run, std::uint32_t index) noexcept;
    static constexpr std::uint32_t kWideFolder = 64;  // children; with fewer a scan is as fast

    [[noreturn]] static void refuse();
    std::uint32_t readNumber(const std::uint8_t*& in) const;
    void advanceToNextItem(Cursor& cursor) const;
    const Folder& folder(Id id) const;
    std::uint32_t placeOf(Link link) const;
    Link nextOf(Link link) const;
    void setNext(Link link, Link next) noexcept;
    Cursor cursorAt(Id folder, std::uint32_t position, Link link) const;
    std::uint64_t hashOfName(Id parent, std::span<const std::uint8_t> storedName) const noexcept;
    std::uint64_t hashOfFolder(Id folder) const;
    std::uint64_t hashOfFormerFile(Id folder) const;
    std::span<const std::uint8_t> storedNameAt(std::uint32_t offset) const;
    std::uint32_t storedNameOffset(Id folder) const;
    bool hasName(std::uint32_t offset, std::span<const std::uint8_t> storedName) const noexcept;
    Id formerFileAt(Id parent, std::uint32_t position) const;
    IdTable tableOfFormerFiles() const;

    void prepareForAdding();
    void requireRoom(std::size_t nameBytes, std::size_t folders) const;
    Link beginRun(Id folder, std::uint32_t first, std::uint32_t count, std::size_t namesSize);
    void finishRun(Link link);
    void makeFormerFile(Id folder, Link run);
    void finishLoading() noexcept;
    void writeFolder(Id parent, std::uint32_t position, std::span<const std::uint8_t> storedName);
    void appendItem(Id folder, Link link) noexcept;
    Place findFile(Id parent, std::span<const std::uint8_t> storedName);
    Place findFileByTable(Id parent, std::span<const std::uint8_t> storedName);
    void takeInChildren(Id parent, WideFolder& wide);
    FlatArray<Id> orderFolders() const;
    bool isBefore(Id a, Id b) const;
    int compareNames(Id a, std::span<const std::uint8_t> storedName) const;

    Arrays arrays_;
    std::uint64_t seed_;
    std::size_t maxNameBytes_ = kFolderLink - 64;
    std::size_t maxFolders_ = kFolderLink - 1;

    // For adding only.
    IdTable folders_{IdTable::Tags::kInSlots};  // all folders but the root, by parent and name
    bool hasFolderTable_ = false;
    Id loadedFolders_ = 1;             // those below may have a file of the same name before them
    std::vector<bool> isTwinChecked_;  // by id; true if it is known which comes first
    Link openRun_ = kNone;             // whose files end where the names end
    std::unordered_map<Id, WideFolder> wideFolders_;

    Lazy<FlatArray<Id>> foldersByName_;
    // For an image in whose table of former files searches take many steps, as by chance they do
    // not.
    static constexpr std::size_t kMostSteps = 128;
    mutable std::atomic<bool> isCrowded_{false};
    Lazy<IdTable> ownFormerFiles_;
};

// What fetching a path goes through, here so that it is inlined.

namespace arena {

inline constexpr std::size_t kLinkSize = sizeof(PathArena::Link);
inline constexpr std::uint32_t kHasFormerFiles = 1;  // a file of the run has become a folder
inline constexpr std::uint32_t kWideSamples = 2;     // of four bytes, not of two
inline constexpr unsigned kCountShift = 2;
inline constexpr std::uint32_t kSampleDistance = 8;  // names
inline constexpr std::uint32_t kMaxPlainRun = 16;    // files of a run without samples

template <class T>
T load(const std::uint8_t* from) noexcept {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

}  // namespace arena

inline const PathArena::Folder& PathArena::folder(Id id) const {
    if (id >= arrays_.folders.size()) refuse();
    return arrays_.folders[id];
}

inline PathArena::Id PathArena::parentOf(Id id) const {
    const Id parent = folder(id).parent;
    if (parent >= id && id != kRoot) refuse();  // ids ascend downwards, so that every way up ends
    return parent;
}

inline NameView PathArena::nameAt(std::uint32_t offset) const {
    if (offset >= arrays_.names.size()) refuse();
    const NameView name = viewName(arrays_.names.data() + offset, arrays_.names.end());
    if (name.data == nullptr) refuse();
    return name;
}

inline std::uint32_t PathArena::nameAfter(std::uint32_t offset) const {
    if (offset >= arrays_.names.size()) refuse();
    const std::uint32_t head = arrays_.names[offset];
    if (head < kLongName) return offset + 1 + (head + 7) / 8;
    return static_cast<std::uint32_t>(nameAt(offset).end() - arrays_.names.data());
}

/// A varint of the names, which ends in them.
inline std::uint32_t PathArena::readNumber(const std::uint8_t*& in) const {
    if (in != arrays_.names.end() && *in < 0x80) return *in++;
    std::uint64_t number = 0;
    in = readVarint(in, arrays_.names.end(), number);
    if (in == nullptr || number > 0xFFFFFFFF) refuse();
    return static_cast<std::uint32_t>(number);
}

inline PathArena::Run PathArena::runAt(Link link) const {
    const std::size_t size = arrays_.names.size();
    if (link >= size || size - link <= arena::kLinkSize) refuse();
    const std::uint8_t* const begin = arrays_.names.data();
    const std::uint8_t* in = begin + link + arena::kLinkSize;

    Run run;
    run.link = link;
    run.next = arena::load<Link>(begin + link);
    run.folder = readNumber(in);
    run.first = readNumber(in);
    run.countAt = static_cast<std::uint32_t>(in - begin);
    const std::uint32_t countAndFlags = readNumber(in);
    run.count = countAndFlags >> arena::kCountShift;
    run.hasWideSamples = (countAndFlags & arena::kWideSamples) != 0;
    run.samples = static_cast<std::uint32_t>(in - begin);
    const std::uint64_t sampleCount =
        run.count <= arena::kMaxPlainRun ? 0 : (run.count - 1) / arena::kSampleDistance;
    const std::uint64_t names = run.samples + sampleCount * (run.hasWideSamples ? 4 : 2);
    if (names >= size || run.count == 0 || std::uint64_t{run.first} + run.count > kFolderLink)
        refuse();
    run.names = static_cast<std::uint32_t>(names);
    return run;
}

/// Whether a sample says where a name before a file of the run, or its own, stands; and where that
/// sample stands.
inline bool PathArena::hasSampleBefore(const Run& run, std::uint32_t index) noexcept {
    return run.count > arena::kMaxPlainRun && index >= arena::kSampleDistance;
}

inline std::uint32_t PathArena::sampleOffset(const Run& run, std::uint32_t index) noexcept {
    const std::uint32_t sample = index / arena::kSampleDistance - 1;
    return run.samples + sample * (run.hasWideSamples ? 4 : 2);
}

inline void PathArena::prefetchSample(const Run& run, std::uint32_t index) const noexcept {
    if (hasSampleBefore(run, index)) prefetchAt(sampleOffset(run, index));
}

inline PathArena::NearName PathArena::nearName(const Run& run, std::uint32_t index) const {
    if (!hasSampleBefore(run, index)) return {run.names, index};
    const std::uint8_t* const sample = arrays_.names.data() + sampleOffset(run, index);
    const std::uint64_t distance = run.hasWideSamples ? arena::load<std::uint32_t>(sample)
                                                      : arena::load<std::uint16_t>(sample);
    if (run.names + distance >= arrays_.names.size()) refuse();
    return {static_cast<std::uint32_t>(run.names + distance), index % arena::kSampleDistance};
}

inline bool PathArena::hasFormerFiles(const Run& run) const noexcept {
    return (arrays_.names[run.countAt] & arena::kHasFormerFiles) != 0;
}

inline void PathArena::advance(Cursor& cursor) const {
    if (cursor.isFile() && cursor.index + 1 < cursor.run.count) {
        ++cursor.index;
        ++cursor.position;
        cursor.name = nameAfter(cursor.name);
    } else {
        advanceToNextItem(cursor);
    }
}

inline PathArena::Id PathArena::folderAt(const Cursor& cursor) const {
    if (!cursor.isFile()) return cursor.link & ~kFolderLink;
    return hasFormerFiles(cursor.run) ? formerFileAt(cursor.folder, cursor.position) : kNone;
}

}  // namespace compressedpaths
