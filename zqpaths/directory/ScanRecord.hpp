#pragma once
// A scan record is what a set remembers of the directories that its paths come from, so that they
// need not all be read to see what has changed: for each root its options and the tree of the
// directories that were read, with the times and the inode that each had then.
//
//     ScanWriter writer({"/usr", began, {}});
//     writer.add({.name = "", .subdirectoryCount = 1, .state = ScanState::kRead, .stamp = ...});
//     writer.add({.name = "bin", ...});
//     const std::vector<std::byte> bytes = joinScans({std::move(writer).finish()});
//     const std::vector<Scan> scans = decodeScans(bytes);  // scans[0].directories[1].name == "bin"
//
// docs/zqp.md draws the bytes. A directory takes some thirty of them. They hold names and deltas as
// they are: compressed, they would take two thirds and ten times as long.
//
// Threads: free functions without state; a writer belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zqpaths/Export.hpp"

namespace zqpaths {

/// What tells that a directory is still the one that was read, and has the names that it had.
struct DirectoryStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t modified = 0;  // nanoseconds since 1970: the names
    std::int64_t changed = 0;   // and rights, owner, ...

    bool operator==(const DirectoryStamp&) const = default;
};

enum class ScanState : std::uint8_t {
    kRead = 0,        // it is as it was while its stamp is
    kReadAgain = 1,   // it was read, but its stamp does not say all: it is to be read again
    kUnreadable = 2,  // what is in it is not known
    kLeftOut = 3,     // the walk does not go into it: a loop, another file system
};

/// How a walk was told to read: "hidden" with an empty value, "exclude" with a pattern. In order; a
/// key may come more than once.
using ScanOptions = std::vector<std::pair<std::string, std::string>>;

/// A directory of a scan, before those in it.
struct ScannedDirectory {
    std::string_view name{};              // in the one that it is in; empty for the root
    std::uint32_t subdirectoryCount = 0;  // those that stand right in it
    ScanState state = ScanState::kRead;
    DirectoryStamp stamp{};
    // Places in the scan, which follow from the order.
    std::uint32_t parent = 0;  // of the root, itself
    std::uint32_t end = 0;     // after all below it
    std::uint32_t depth = 0;   // names below the root
};

/// The root as it was given, when the scan began in nanoseconds since 1970, and how it was made.
struct ScanHead {
    std::string root;
    std::int64_t began = 0;
    ScanOptions options;
};

struct Scan : ScanHead {
    std::vector<ScannedDirectory> directories;  // each before its sub-directories, in byte order
};

/// A scan as bytes, to be joined with others.
struct EncodedScan {
    ScanHead head;
    std::uint64_t directoryCount = 0;
    std::vector<std::byte> tree;

    /// Whether both say the same of the same directories, whenever they were made.
    bool saysTheSameAs(const EncodedScan& other) const {
        return head.root == other.head.root && head.options == other.head.options &&
               tree == other.tree;
    }
};

/// Takes the directories of one scan in their order.
class ZQPATHS_EXPORT ScanWriter {
public:
    explicit ScanWriter(ScanHead head);

    /// Looks at name, number of sub-directories, state and stamp. One that has changed less than
    /// two seconds before the scan began is to be read again, whatever its state says: it may
    /// change once more without a sign of it. Throws only std::bad_alloc.
    void add(const ScannedDirectory& directory);

    /// Adds directories of another scan, from one up to the one before `end`.
    void copy(const Scan& from, std::size_t first, std::size_t end);

    EncodedScan finish() &&;

private:
    EncodedScan scan_;
    std::int64_t settledBefore_;  // when the last change of what can be relied on was
    std::uint64_t lastInode_ = 0;
    std::uint64_t lastDevice_ = 0;
    std::int64_t lastModified_ = 0;
};

/// The time by which a scan's beginning is told.
ZQPATHS_EXPORT std::int64_t nowInNanoseconds() noexcept;

/// The record of all scans, for a file. O(bytes).
ZQPATHS_EXPORT std::vector<std::byte> joinScans(std::span<const EncodedScan> scans);

/// The scans of a record, apart as they were joined; none of no bytes. Throw Error kDamaged without
/// a place for bytes that cannot be a record. O(bytes).
ZQPATHS_EXPORT std::vector<EncodedScan> splitScans(std::span<const std::byte> record);

/// The same, read. The bytes outlive the scans: names refer to them.
ZQPATHS_EXPORT std::vector<Scan> decodeScans(std::span<const std::byte> record);

}  // namespace zqpaths
