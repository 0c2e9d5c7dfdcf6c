#pragma once
// A walk over all that a directory holds, at any depth:
//
//     walkDirectory("/usr", {.jobs = 4}, [](std::string_view path) { ... },  // "/usr/bin/x"
//                   [](std::string_view path, std::string_view reason) { ... });
//
// What is no directory, or of the types asked for, is reported, in each directory in byte order and
// before its sub-directories, which follow in byte order; the number of threads changes nothing in
// that. An empty directory gives nothing. Symbolic links are reported and not followed, except for
// the root itself. Directories are opened relative to one another, so that no path is too long, and
// few are open at a time, so that none is too deep.
//
// Threads: walks may run side by side; the callbacks are called by the thread that walks.

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/Export.hpp"
#include "zqpaths/directory/FileIdentity.hpp"
#include "zqpaths/directory/LeftOutNames.hpp"
#include "zqpaths/directory/ScanRecord.hpp"

namespace zqpaths {

struct WalkOptions {
    bool follow = false;         // symbolic links to directories are walked, not reported
    bool oneFileSystem = false;  // directories of other file systems than the root's are left out
    bool skipHidden = false;     // names that begin with '.' are left out; the root never is
    unsigned jobs = 1;           // threads that read directories; 0 for one a core

    /// Patterns as ExclusionRules takes them, about the names from the root on. Directories that
    /// are left out are not entered.
    std::vector<std::string> exclude{};

    /// What is reported: 'f' for files, 'l' for symbolic links, 'd' for directories below the root,
    /// which end without a separator. Without a letter, all but directories, of whatever type.
    std::string types{};

    std::optional<std::uint64_t> maxDepth{};  // at most so many names below the root; at least 1
    std::vector<FileIdentity> notTaken{};     // neither reported nor counted as left out
};

/// Takes the path of something that is reported: the root as given, a separator unless the
/// root ends with one, and the names from there. The view is valid during the call.
using EntryVisitor = std::function<void(std::string_view path)>;

/// Takes the path of what could not be read, and why: in the system's words, or which directory
/// above it a followed link leads back to.
using ErrorVisitor = std::function<void(std::string_view path, std::string_view reason)>;

/// A directory that the walk has come to. What is in it follows. All views are valid during the
/// call.
struct MetDirectory {
    std::string_view path;                     // as of what is in it, with a separator at the end
    ScannedDirectory directory;                // its name, and what is to be recorded of it
    std::optional<std::uint32_t> known;        // its place in what is known
    bool isUnchanged = false;                  // and nothing is told of its files
    std::span<const std::string> files{};      // the names of what is reported, in byte order
    std::span<const std::string_view> gone{};  // sub-directories that are known and not there
};
using DirectoryVisitor = std::function<void(const MetDirectory& directory)>;

/// Takes directories that are as they were, with all below them: from one place of what is known up
/// to the one before another.
using KeptVisitor = std::function<void(std::uint32_t first, std::uint32_t end)>;

/// Takes the name of a sub-directory.
using NameVisitor = std::function<void(std::string_view name)>;

/// What is told of a walk, in its order: a directory, what is reported in it, then those below.
struct WalkVisitors {
    ErrorVisitor onError;
    // These may be empty.
    EntryVisitor onPath{};
    DirectoryVisitor onDirectory{};
    KeptVisitor onKept{};
    NameVisitor onSubdirectory{};  // by a part that goes into none: those that the walk goes into
};

struct KnownDirectories;

/// Walks `root`. With `known`, directories that are as they were are not read, and what they leave
/// out is not counted: those that have none below them that is not are kept, as a whole. Else as
/// the next. O(entries log entries of one directory that is read + those that are known and not
/// kept).
ZQPATHS_EXPORT LeftOutNames walkDirectory(const std::string& root, const WalkOptions& options,
                                          const WalkVisitors& visitors,
                                          const KnownDirectories* known = nullptr);

/// A part of a walk: a directory, alone or with all below it.
struct WalkPart {
    std::vector<std::string> names{};  // that lead to it from the root; none for the root itself
    bool isDeep = true;                // else what is directly in it, and nothing further down

    bool operator==(const WalkPart&) const = default;
};

/// Walks a part of what is below `root` as the whole walk does: patterns, depth, file systems and
/// loops count from the root on. What is in a directory alone, and then, one after the other, the
/// parts of the sub-directories that it tells of are all of the directory, so that several
/// processes can share a walk:
///
///     {{}, false}               /usr/x
///     {{"bin"}, true}           /usr/bin/a  /usr/bin/b  /usr/bin/c/d
///     {{"lib"}, false}          /usr/lib/e
///     {{"lib", "f"}, true}      /usr/lib/f/g
///
/// Throws as the next. O(names that lead to it + what it walks).
ZQPATHS_EXPORT LeftOutNames walkPart(const std::string& root, const WalkPart& part,
                                     const WalkOptions& options, const WalkVisitors& visitors);

/// Walks `root` and tells how many names it has left out. What cannot be read goes to `onError`,
/// the walk goes on past it. Throws Error kWrongUse for patterns beyond all bounds, std::bad_alloc,
/// std::system_error if a thread cannot be started, and what the callbacks throw. O(entries log
/// entries of one directory); holds the names of the directories ahead on the way down, and of a
/// fixed number of others that were read ahead.
ZQPATHS_EXPORT LeftOutNames walkDirectory(const std::string& root, const WalkOptions& options,
                                          const EntryVisitor& onPath, const ErrorVisitor& onError);

}  // namespace zqpaths
