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
#include "zqpaths/directory/KnownDirectories.hpp"
#include "zqpaths/directory/OpenDirectories.hpp"
#include "zqpaths/directory/WalkedDirectory.hpp"

namespace zqpaths {

class DirectoryReader {
public:
    /// `known` outlives the reader, and may be null. Throws as ExclusionRules.
    DirectoryReader(const WalkOptions& options, const KnownDirectories* known)
        : options_(options), known_(known), filter_(options_), open_(options.follow) {}

    /// Fills in what is in `directory` and returns its sub-directories, in byte order; neighbours
    /// that are known and as they were as one that is kept. The root is read before all others.
    /// Throws nothing: what goes wrong is left in `directory`.
    std::list<WalkedDirectory> read(WalkedDirectory& directory) noexcept;

    /// Takes a directory as one that has been read, without reading it: those above it come first,
    /// and what is below it will be read. Throws std::bad_alloc; what cannot be opened is found out
    /// again below it.
    void lead(WalkedDirectory& directory);

    /// Nothing below `directory` will be read any more.
    void drop(const WalkedDirectory& directory) { open_.drop(directory); }

private:
    /// Whether the walk goes into an open directory.
    bool isEntered(WalkedDirectory& directory, int descriptor) const;
    bool isAsItWas(const WalkedDirectory& directory) const;
    std::list<WalkedDirectory> knownSubdirectories(WalkedDirectory& directory) const;
    std::list<WalkedDirectory> readNames(WalkedDirectory& directory, DIR* stream) const;
    /// Puts an entry where it belongs: among the files, the sub-directories, or those left out.
    void sortIn(WalkedDirectory& directory, std::string& pathBefore, int descriptor,
                const dirent& entry, std::vector<std::string>& subdirectories) const;
    std::list<WalkedDirectory> subdirectoriesOf(WalkedDirectory& directory,
                                                std::vector<std::string> names) const;
    bool isWalked(int directory, const dirent& entry) const;

    const WalkOptions options_;
    const KnownDirectories* const known_;
    const EntryFilter filter_;
    OpenDirectories open_;
};

}  // namespace zqpaths
