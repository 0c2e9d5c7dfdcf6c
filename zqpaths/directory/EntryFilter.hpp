#pragma once
// EntryFilter decides what of the entries of a walk's directories is taken, as WalkOptions says.
//
// Threads: a filter never changes; any number of threads may ask it.

#include <dirent.h>

#include <string>
#include <string_view>

#include "zqpaths/directory/DirectoryWalk.hpp"
#include "zqpaths/directory/WalkedDirectory.hpp"
#include "zqpaths/exclusion/ExclusionRules.hpp"

namespace zqpaths {

class EntryFilter {
public:
    /// `options` live as long as the filter. Throws as ExclusionRules.
    explicit EntryFilter(const WalkOptions& options);

    /// Whether an entry of an open directory is one of those not to be taken.
    bool isNotTaken(int directory, const dirent& entry) const;

    /// What stands before the names in a directory where the exclusion rules look at them.
    std::string pathBefore(const WalkedDirectory& directory) const;

    /// Whether the rules leave out a name after `pathBefore`, which is the same again afterwards.
    bool isExcluded(std::string& pathBefore, std::string_view name, EntryKind kind) const;

    /// Whether the type of an entry is one that is reported.
    bool isReported(int directory, const dirent& entry, EntryKind kind) const;

    /// Whether the walk goes no deeper than into this directory.
    bool isDeepest(const WalkedDirectory& directory) const noexcept;

private:
    const WalkOptions& options_;
    ExclusionRules rules_;
};

}  // namespace zqpaths
