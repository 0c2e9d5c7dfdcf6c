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
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/Export.hpp"
#include "zqpaths/directory/FileIdentity.hpp"
#include "zqpaths/directory/LeftOutNames.hpp"

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

/// Walks `root` and tells how many names it has left out. What cannot be read goes to `onError`,
/// the walk goes on past it. Throws Error kWrongUse for patterns beyond all bounds, std::bad_alloc,
/// std::system_error if a thread cannot be had, and what the callbacks throw. O(entries log entries
/// of one directory); holds the names of the directories ahead on the way down, and of a fixed
/// number of others that were read ahead.
ZQPATHS_EXPORT LeftOutNames walkDirectory(const std::string& root, const WalkOptions& options,
                                          const EntryVisitor& onPath, const ErrorVisitor& onError);

}  // namespace zqpaths
