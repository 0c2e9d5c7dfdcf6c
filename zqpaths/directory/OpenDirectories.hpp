#pragma once
// OpenDirectories opens the directories of a walk relative to one another and keeps few of them
// open: those that were used last. One that had to be closed is opened again by the names that lead
// to it.
//
// Threads: calls may come from several threads, each for a directory of its own.

#include <dirent.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "zqpaths/directory/WalkedDirectory.hpp"

namespace zqpaths {

struct CloseDirectory {
    void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

class OpenDirectories {
public:
    /// Directories that are kept open, the root among them. A process may often open no more than
    /// 1,024 files, and the program around the walk wants some of them.
    static constexpr std::size_t kMaxKept = 64;

    /// Links are followed to the root, and further down if `follow` says so.
    explicit OpenDirectories(bool follow) noexcept : follow_(follow) {}

    /// A stream of its own, at the front. Nothing, with errno set, if the directory or one that
    /// leads to it cannot be opened. Throws std::bad_alloc.
    DirectoryStream open(const WalkedDirectory& directory);

    /// Keeps a directory for those in it to be opened from.
    void keep(const WalkedDirectory& directory, DirectoryStream stream);

    /// Closes a directory that nothing more is opened from.
    void drop(const WalkedDirectory& directory);

private:
    using Shared = std::shared_ptr<DIR>;  // one that is closed may be in use by another thread

    struct Kept {
        const WalkedDirectory* directory;
        Shared stream;
    };

    Shared find(const WalkedDirectory* directory);
    void keepShared(const WalkedDirectory* directory, Shared stream);
    Shared reopen(const WalkedDirectory& directory);

    const bool follow_;
    std::mutex mutex_;
    std::vector<Kept> kept_;  // the root, then the others, those used last at the end
};

}  // namespace zqpaths
