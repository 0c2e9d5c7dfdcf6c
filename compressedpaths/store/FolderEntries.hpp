#pragma once
// FolderEntries is the index of a set: for each folder entry, in the order of adding, how many path
// numbers it has and where its files begin. Entries are varints in blocks of kBlockSize, found by
// the total of paths before a block:
//
//     FolderEntries entries;
//     entries.reserveForOne();
//     entries.append({.pathCount = 3, .place = ...});
//     entries.holding(2).entry.place;      // the entry that path number 2 belongs to
//
// An entry's numbers and its place come in pairs. A saved form can have more of one than of the
// other; what is left over waits for its partner.
//
// Threads: as a std::vector.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "compressedpaths/store/FlatArray.hpp"
#include "compressedpaths/store/PathArena.hpp"

namespace compressedpaths {

class FolderEntries {
public:
    static constexpr std::size_t kBlockSize = 16;
    static constexpr std::uint64_t kMaxPathCount = ~std::uint64_t{0} >> 3;  // three bits are flags

    /// Where the files of an entry begin. `existed`: the folder was there before, so that the track
    /// of the entry ends with the position of its first file.
    struct Place {
        bool existed = false;
        PathArena::Link run = PathArena::kNone;   // the run that the first file is in, or kNone:
        std::uint32_t skip = 0;                   // files of the run before it
        PathArena::Id folder = PathArena::kRoot;  // without a run, the folder
        std::uint64_t firstChild = 0;             // and the position
    };
    struct Entry {
        std::uint64_t pathCount = 0;  // its path numbers
        Place place;
    };

    /// The start of each block. It lives in images.
    struct Block {
        std::uint64_t pathsBefore;
        std::uint64_t offset;  // in bytes()
    };

    /// An entry, and how to go on to the next.
    struct Cursor {
        std::size_t number = 0;         // of the entry, from 0
        std::uint64_t pathsBefore = 0;  // in the entries before
        Entry entry;
        std::uint64_t offset = 0;     // of the next entry in bytes()
        PathArena::Link lastRun = 0;  // which the next run is counted from

        std::uint64_t pathsUpTo() const noexcept { return pathsBefore + entry.pathCount; }
    };

    FolderEntries() = default;
    /// Entries on arrays from outside. `lastRun` is the run that the next entry would be counted
    /// from.
    FolderEntries(FlatArray<std::uint8_t> bytes, FlatArray<Block> blocks, std::size_t size,
                  std::uint64_t pathCount, PathArena::Link lastRun) noexcept
        : bytes_(std::move(bytes)),
          blocks_(std::move(blocks)),
          size_(size),
          pathCount_(pathCount),
          lastRun_(lastRun) {}

    std::size_t size() const noexcept { return size_; }  // pairs
    std::uint64_t pathCount() const noexcept { return pathCount_; }
    PathArena::Link lastRun() const noexcept { return lastRun_; }
    const FlatArray<std::uint8_t>& bytes() const noexcept { return bytes_; }
    const FlatArray<Block>& blocks() const noexcept { return blocks_; }

    /// Totals without a place, and places without a total; one of them is empty.
    const std::vector<std::uint64_t>& unpairedCounts() const noexcept { return unpairedCounts_; }
    const std::vector<Place>& unpairedPlaces() const noexcept { return unpairedPlaces_; }

    /// Makes room for one entry more. Throws only std::bad_alloc; nothing has changed then.
    void reserveForOne();

    /// Appends an entry that there is room for. O(1); O(unpaired) while there are any.
    void append(const Entry& entry) noexcept;

    /// Appends one half of an entry, after all that are whole; either counts or places. Throw only
    /// std::bad_alloc; nothing has changed then.
    void reserveUnpaired(std::size_t counts, std::size_t places);
    void appendCount(std::uint64_t pathCount);
    void appendPlace(const Place& place);

    /// Where the entries end, and the way back to there.
    struct Mark {
        std::size_t byteSize;
        std::size_t blockCount;
        std::size_t size;
        std::uint64_t pathCount;
        PathArena::Link lastRun;
        std::vector<std::uint64_t> unpairedCounts;
        std::vector<Place> unpairedPlaces;
    };
    Mark mark() const;
    void rollBack(Mark& mark) noexcept;

    /// The entry with this number, which there is; the entry that a path number (from 1) belongs
    /// to, or nothing; the next one. Throw InvalidImageException if the bytes are damaged.
    /// O(kBlockSize), O(log entries), O(1).
    Cursor at(std::size_t number) const;
    std::optional<Cursor> holding(std::uint64_t pathNumber) const;

    /// The two halves of holding, for who looks for many entries and does not wait for the memory
    /// of one: the block that a path number of pathCount() is in, whose bytes are asked for, and
    /// the entry there. O(log entries) and O(kBlockSize).
    std::size_t blockOf(std::uint64_t pathNumber) const noexcept;
    Cursor holdingIn(std::size_t block, std::uint64_t pathNumber) const;

    void advance(Cursor& cursor) const;

    void shrink() noexcept {
        bytes_.shrink();
        blocks_.shrink();
    }

private:
    Cursor startOf(std::size_t block) const;
    void read(Cursor& cursor) const;
    void write(const Entry& entry) noexcept;

    FlatArray<std::uint8_t> bytes_;
    FlatArray<Block> blocks_;
    std::size_t size_ = 0;
    std::uint64_t pathCount_ = 0;
    PathArena::Link lastRun_ = 0;  // of the entries in the last block
    std::vector<std::uint64_t> unpairedCounts_;
    std::vector<Place> unpairedPlaces_;
};

}  // namespace compressedpaths
