#pragma once
// DirectoryReader reads one directory of a walk: what is no directory in it, and its
// sub-directories.
//
// Threads: calls may come from several threads, each for a directory of its own.

#include <list>
#include <string>
#include <vector>

#include "zqpaths/directory/DirectoryWalk.hpp"
#include "zqpaths/directory/EntryFilter.hpp"
#include "zqpaths/directory/OpenDirectories.hpp"
#include "zqpaths/directory/WalkedDirectory.hpp"

namespace zqpaths {

class DirectoryReader {
public:
    /// Throws as ExclusionRules.
    explicit DirectoryReader(const WalkOptions& options)
        : options_(options), filter_(options_), open_(options.follow) {}

    /// Fills in what is in `directory` and returns its sub-directories, in byte order. The root is
    /// read before all others. Throws nothing: what goes wrong is left in `directory`.
    std::list<WalkedDirectory> read(WalkedDirectory& directory) noexcept;

    /// Nothing below `directory` will be read any more.
    void drop(const WalkedDirectory& directory) { open_.drop(directory); }

private:
    /// Whether the walk goes into an open directory.
    bool isEntered(WalkedDirectory& directory, int descriptor) const;
    std::list<WalkedDirectory> readNames(WalkedDirectory& directory, DIR* stream) const;
    /// Puts an entry where it belongs: among the files, the sub-directories, or those left out.
    void sortIn(WalkedDirectory& directory, std::string& pathBefore, int descriptor,
                const dirent& entry, std::vector<std::string>& subdirectories) const;
    bool isWalked(int directory, const dirent& entry) const;

    const WalkOptions options_;
    const EntryFilter filter_;
    OpenDirectories open_;
};

}  // namespace zqpaths
